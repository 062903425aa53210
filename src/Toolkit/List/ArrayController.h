#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QPointer>

#include <functional>
#include <memory>

class QItemSelection;
class QItemSelectionModel;

namespace tembra {

class PropertyObservation;

/// Manages a list of objects with an order and a selection, as a table whose columns are properties.
///
/// `content` is the list as it was given; `arrangedObjects` is the same list in the order of the
/// sort descriptors as of the last rearrangement: an object whose values change keeps its row until
/// `rearrangeObjects` is called. The selection belongs to the objects, not to their rows. An object
/// is in the list at most once; the controller shares ownership of what it lists.
class ArrayController : public QAbstractTableModel
{
    Q_OBJECT

public:
    using Object = std::shared_ptr<QObject>;
    using ObjectList = QList<Object>;

    struct SortDescriptor
    {
        QByteArray key;
        bool ascending = true;
    };

    /// A number that each object has for itself and keeps.
    using TieKey = std::function<qint64(const QObject &)>;

    enum Role {
        ObjectRole = Qt::UserRole, ///< The row's object as a `QObject *`.
    };

    explicit ArrayController(QObject *parent = nullptr);
    ~ArrayController() override;

    /// The properties shown as columns 0, 1, …; their titles are empty until `setHeaderTitles`.
    void setColumns(const QList<QByteArray> &properties);
    QList<QByteArray> columns() const { return m_columns; }
    void setHeaderTitles(const QStringList &titles);
    /// An editable column writes what is typed into the property; an emptied text becomes missing.
    void setColumnEditable(int column, bool editable);

    ObjectList content() const { return m_content; }
    /// Replaces the list and arranges it; what stays in the list stays selected.
    void setContent(const ObjectList &objects);
    /// Replaces the list row by row: what stays keeps its row and its editor, what is new is
    /// appended. Nothing is arranged. Returns whether something is new.
    bool updateContent(const ObjectList &objects);

    QList<SortDescriptor> sortDescriptors() const { return m_sortDescriptors; }
    /// Takes effect at the next rearrangement. The first descriptor decides, the others break ties;
    /// what is still equal stands in the order of the tie key, without one in that of `content`.
    void setSortDescriptors(const QList<SortDescriptor> &descriptors);
    /// Takes effect at the next rearrangement.
    void setTieKey(TieKey tieKey) { m_tieKey = std::move(tieKey); }
    /// Sorts again. Rows move in one layout change, so selections, editors and scrolling survive.
    void rearrangeObjects();

    ObjectList arrangedObjects() const { return m_arranged; }
    Object objectAt(int row) const;
    /// The row of @p object, −1 when it is not listed.
    int rowOf(const QObject *object) const;

    /// The selected objects in the order in which they were picked.
    ObjectList selectedObjects() const { return m_selected; }
    QList<int> selectionIndexes() const;
    /// The row of the first selected object, −1 without a selection.
    int selectionIndex() const;
    /// Selects those of @p objects that are listed.
    void setSelectedObjects(const ObjectList &objects);
    void setSelectionIndex(int row);

    /// Keeps the selection of a view and of this controller in step, both ways. One view at a time;
    /// call it again after the view got another selection model.
    void bindSelection(QItemSelectionModel *selectionModel);

    /// Where `add` gets a new object from.
    void setNewObject(std::function<Object()> newObject);
    /// What `remove` does to the objects beyond taking them off the list.
    void setDeleteObjects(std::function<void(const ObjectList &)> deleteObjects);
    /// Appends a new object and makes it the selection.
    virtual void add();
    /// Takes the selected objects off the list and hands them to the deleter; then nothing is selected.
    virtual void remove();

    /// Appends objects to the list; those that are listed already are left out.
    void addObjects(const ObjectList &objects);
    /// Takes objects off the list and out of the selection; unknown ones are no error.
    void removeObjects(const ObjectList &objects);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    void sort(int column, Qt::SortOrder order) override;

Q_SIGNALS:
    /// Another set of objects is selected (moving rows alone does not change the selection).
    void selectionChanged();

private:
    ObjectList unlisted(const ObjectList &objects) const;
    void observe(const Object &object) const;
    void stopObserving(const Object &object);
    void objectChanged(const QObject *object, int column);
    void removeRanges(const QList<std::pair<int, int>> &ranges);
    void replaceSelection(const ObjectList &objects);
    void deselectUnlisted();
    void readSelectionFromView(const QItemSelection &selected, const QItemSelection &deselected);
    void writeSelectionToView();

    QList<QByteArray> m_columns;
    QStringList m_headerTitles;
    QList<bool> m_editable;
    QList<SortDescriptor> m_sortDescriptors;
    TieKey m_tieKey;
    ObjectList m_content;
    ObjectList m_arranged;
    ObjectList m_selected;
    /// Of the rows that were read: nobody can show an old value of the others.
    mutable QHash<const QObject *, QList<PropertyObservation *>> m_observations;
    mutable QHash<const QObject *, int> m_rows; ///< Filled on demand; empty after rows moved.
    QPointer<QItemSelectionModel> m_selectionModel;
    bool m_ignoreView = false;
    std::function<Object()> m_newObject;
    std::function<void(const ObjectList &)> m_deleteObjects;
};

} // namespace tembra
