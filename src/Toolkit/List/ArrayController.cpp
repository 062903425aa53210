#include "Toolkit/List/ArrayController.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/Abbreviation.h"
#include "Toolkit/List/ObjectSorting.h"
#include "Toolkit/List/PropertyObservation.h"

#include <QItemSelectionModel>
#include <QMetaProperty>
#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>

namespace tembra {

namespace {

/// Beyond this many steps a view is told to start afresh: each step costs it all rows it knows.
constexpr qsizetype mostRemovalSteps = 200;

QSet<const QObject *> pointersOf(const ArrayController::ObjectList &objects)
{
    QSet<const QObject *> pointers;
    pointers.reserve(objects.size());
    for (const ArrayController::Object &object : objects)
        pointers.insert(object.get());
    return pointers;
}

/// Runs of neighbouring rows, as (first, last), of rows in ascending order.
QList<std::pair<int, int>> rangesOf(const QList<int> &rows)
{
    QList<std::pair<int, int>> ranges;
    for (const int row : rows) {
        if (!ranges.isEmpty() && ranges.last().second == row - 1)
            ranges.last().second = row;
        else
            ranges.append({row, row});
    }
    return ranges;
}

QMetaProperty propertyOf(const QObject &object, const QByteArray &name)
{
    const QMetaObject *metaObject = object.metaObject();
    return metaObject->property(metaObject->indexOfProperty(name.constData()));
}

} // namespace

ArrayController::ArrayController(QObject *parent) : QAbstractTableModel(parent) {}

ArrayController::~ArrayController() = default;

void ArrayController::setColumns(const QList<QByteArray> &properties)
{
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        beginResetModel();
        for (const Object &object : std::as_const(m_content))
            stopObserving(object);
        m_columns = properties;
        m_editable = QList<bool>(properties.size(), false);
        endResetModel();
    }
    writeSelectionToView();
}

void ArrayController::setHeaderTitles(const QStringList &titles)
{
    m_headerTitles = titles;
    if (!m_columns.isEmpty())
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, int(m_columns.size()) - 1);
}

void ArrayController::setColumnEditable(int column, bool editable)
{
    m_editable[column] = editable;
}

void ArrayController::setContent(const ObjectList &objects)
{
    if (objects == m_content) {
        rearrangeObjects();
        return;
    }
    require(pointersOf(objects).size() == objects.size(), "An object is listed at most once");
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        beginResetModel();
        for (const Object &object : std::as_const(m_content))
            stopObserving(object);
        m_content = objects;
        m_arranged = sortedObjects(m_content, m_sortDescriptors, m_tieKey);
        m_rows.clear();
        endResetModel();
    }
    deselectUnlisted();
}

bool ArrayController::updateContent(const ObjectList &objects)
{
    const QSet<const QObject *> kept = pointersOf(objects);
    ObjectList vanished = m_content;
    vanished.removeIf([&kept](const Object &object) { return kept.contains(object.get()); });
    removeObjects(vanished);
    const bool hasNewRows = objects.size() > m_content.size();
    addObjects(objects);
    m_content = objects;
    return hasNewRows;
}

void ArrayController::setSortDescriptors(const QList<SortDescriptor> &descriptors)
{
    m_sortDescriptors = descriptors;
}

void ArrayController::rearrangeObjects()
{
    ObjectList arranged = sortedObjects(m_content, m_sortDescriptors, m_tieKey);
    if (arranged == m_arranged)
        return;
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
        const QModelIndexList before = persistentIndexList();
        QList<const QObject *> objects;
        for (const QModelIndex &index : before)
            objects.append(m_arranged.at(index.row()).get());
        m_arranged = std::move(arranged);
        m_rows.clear();
        QModelIndexList after;
        for (qsizetype i = 0; i < before.size(); ++i)
            after.append(index(rowOf(objects.at(i)), before.at(i).column()));
        changePersistentIndexList(before, after);
        Q_EMIT layoutChanged({}, VerticalSortHint);
    }
    writeSelectionToView();
}

ArrayController::Object ArrayController::objectAt(int row) const
{
    return m_arranged.value(row);
}

int ArrayController::rowOf(const QObject *object) const
{
    if (m_rows.isEmpty()) {
        m_rows.reserve(m_arranged.size());
        for (qsizetype row = 0; row < m_arranged.size(); ++row)
            m_rows.insert(m_arranged.at(row).get(), int(row));
    }
    return m_rows.value(object, -1);
}

void ArrayController::setNewObject(std::function<Object()> newObject)
{
    m_newObject = std::move(newObject);
}

void ArrayController::setDeleteObjects(std::function<void(const ObjectList &)> deleteObjects)
{
    m_deleteObjects = std::move(deleteObjects);
}

void ArrayController::add()
{
    require(bool(m_newObject), "A controller that adds knows where new objects come from");
    const Object object = m_newObject();
    require(bool(object), "A new object is an object");
    addObjects({object});
    setSelectedObjects({object});
}

void ArrayController::remove()
{
    const ObjectList objects = m_selected;
    removeObjects(objects);
    if (m_deleteObjects)
        m_deleteObjects(objects);
}

void ArrayController::addObjects(const ObjectList &objects)
{
    const ObjectList added = unlisted(objects);
    if (added.isEmpty())
        return;
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        beginInsertRows({}, rowCount(), rowCount() + int(added.size()) - 1);
        m_content += added;
        m_arranged += added;
        m_rows.clear();
        endInsertRows();
    }
    writeSelectionToView();
}

void ArrayController::removeObjects(const ObjectList &objects)
{
    QList<int> rows;
    for (const Object &object : objects) {
        if (const int row = rowOf(object.get()); row >= 0)
            rows.append(row);
    }
    if (rows.isEmpty())
        return;
    std::sort(rows.begin(), rows.end());
    const QList<std::pair<int, int>> ranges = rangesOf(rows);
    const QSet<const QObject *> gone = pointersOf(objects);
    const auto isGone = [&gone](const Object &object) { return gone.contains(object.get()); };
    for (const int row : std::as_const(rows))
        stopObserving(m_arranged.at(row));
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        m_content.removeIf(isGone);
        if (ranges.size() > mostRemovalSteps) {
            beginResetModel();
            m_arranged.removeIf(isGone);
            m_rows.clear();
            endResetModel();
        } else {
            removeRanges(ranges);
        }
    }
    deselectUnlisted();
}

void ArrayController::removeRanges(const QList<std::pair<int, int>> &ranges)
{
    for (auto range = ranges.crbegin(); range != ranges.crend(); ++range) {
        const auto [first, last] = *range;
        beginRemoveRows({}, first, last);
        m_arranged.remove(first, last - first + 1);
        m_rows.clear();
        endRemoveRows();
    }
}

ArrayController::ObjectList ArrayController::unlisted(const ObjectList &objects) const
{
    QSet<const QObject *> seen;
    ObjectList result;
    for (const Object &object : objects) {
        if (rowOf(object.get()) >= 0 || seen.contains(object.get()))
            continue;
        seen.insert(object.get());
        result.append(object);
    }
    return result;
}

int ArrayController::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_arranged.size());
}

int ArrayController::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant ArrayController::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    observe(m_arranged.at(index.row()));
    QObject *object = m_arranged.at(index.row()).get();
    if (role == ObjectRole)
        return QVariant::fromValue(object);
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return propertyOf(*object, m_columns.at(index.column())).read(object);
    if (role == Qt::AccessibleTextRole)
        return singleLine(data(index, Qt::DisplayRole).toString());
    return {};
}

bool ArrayController::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    const Object object = m_arranged.at(index.row());
    const QMetaProperty property = propertyOf(*object, m_columns.at(index.column()));
    const bool emptied = value.typeId() == QMetaType::QString && value.toString().isEmpty();
    if (!property.write(object.get(), emptied ? QVariant(QString()) : value))
        return false;
    if (!property.hasNotifySignal())
        Q_EMIT dataChanged(index, index);
    return true;
}

QVariant ArrayController::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_headerTitles.value(section);
    return {};
}

Qt::ItemFlags ArrayController::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.isValid() && m_editable.at(index.column()))
        flags |= Qt::ItemIsEditable;
    return flags;
}

void ArrayController::sort(int column, Qt::SortOrder order)
{
    setSortDescriptors({});
    if (column >= 0 && column < columnCount())
        setSortDescriptors({{m_columns.at(column), order == Qt::AscendingOrder}});
    rearrangeObjects();
}

// Observes a row once it is read, so that a list of any length holds what is shown. One observation
// for each row and column: a list that many objects tell their changes to directly
// would have to search all of them for the one that speaks.
void ArrayController::observe(const Object &object) const
{
    if (m_observations.contains(object.get()))
        return;
    auto *self = const_cast<ArrayController *>(this);
    QList<PropertyObservation *> &observations = m_observations[object.get()];
    for (int column = 0; column < m_columns.size(); ++column) {
        const QMetaProperty property = propertyOf(*object, m_columns.at(column));
        require(property.isValid(), "Every column is a property of every listed object");
        if (!property.hasNotifySignal())
            continue;
        observations.append(new PropertyObservation(
            object.get(), m_columns.at(column),
            [self, listed = object.get(), column] { self->objectChanged(listed, column); }, self));
    }
}

void ArrayController::stopObserving(const Object &object)
{
    const QList<PropertyObservation *> observations = m_observations.take(object.get());
    for (PropertyObservation *observation : observations) {
        disconnect(object.get(), nullptr, observation, nullptr);
        // It may be telling of the very change that takes the object off the list.
        observation->deleteLater();
    }
}

void ArrayController::objectChanged(const QObject *object, int column)
{
    const int row = rowOf(object);
    if (row >= 0 && column < columnCount())
        Q_EMIT dataChanged(index(row, column), index(row, column));
}

QList<int> ArrayController::selectionIndexes() const
{
    QList<int> rows;
    rows.reserve(m_selected.size());
    for (const Object &object : m_selected)
        rows.append(rowOf(object.get()));
    return rows;
}

int ArrayController::selectionIndex() const
{
    return m_selected.isEmpty() ? -1 : rowOf(m_selected.first().get());
}

void ArrayController::setSelectedObjects(const ObjectList &objects)
{
    ObjectList listed;
    QSet<const QObject *> seen;
    for (const Object &object : objects) {
        if (rowOf(object.get()) < 0 || seen.contains(object.get()))
            continue;
        seen.insert(object.get());
        listed.append(object);
    }
    replaceSelection(listed);
}

void ArrayController::setSelectionIndex(int row)
{
    const Object object = objectAt(row);
    setSelectedObjects(object ? ObjectList{object} : ObjectList());
}

void ArrayController::bindSelection(QItemSelectionModel *selectionModel)
{
    require(!selectionModel || selectionModel->model() == this,
            "A bound selection is of this list");
    if (m_selectionModel)
        disconnect(m_selectionModel, nullptr, this, nullptr);
    m_selectionModel = selectionModel;
    if (!selectionModel)
        return;
    connect(selectionModel, &QItemSelectionModel::selectionChanged, this,
            &ArrayController::readSelectionFromView);
    writeSelectionToView();
}

void ArrayController::replaceSelection(const ObjectList &objects)
{
    const bool changed = objects != m_selected;
    m_selected = objects;
    writeSelectionToView();
    if (changed)
        Q_EMIT selectionChanged();
}

void ArrayController::deselectUnlisted()
{
    ObjectList listed = m_selected;
    listed.removeIf([this](const Object &object) { return rowOf(object.get()) < 0; });
    replaceSelection(listed);
}

void ArrayController::readSelectionFromView(const QItemSelection &selected, const QItemSelection &)
{
    if (m_ignoreView)
        return;
    ObjectList objects;
    QSet<const QObject *> known;
    for (const Object &object : std::as_const(m_selected)) {
        if (!m_selectionModel->rowIntersectsSelection(rowOf(object.get())))
            continue;
        objects.append(object);
        known.insert(object.get());
    }
    for (const QItemSelectionRange &range : selected) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const Object object = objectAt(row);
            if (known.contains(object.get()))
                continue;
            known.insert(object.get());
            objects.append(object);
        }
    }
    if (objects == m_selected)
        return;
    m_selected = objects;
    Q_EMIT selectionChanged();
}

void ArrayController::writeSelectionToView()
{
    if (!m_selectionModel || m_ignoreView)
        return;
    const QScopedValueRollback ignoring(m_ignoreView, true);
    QList<int> rows = selectionIndexes();
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    const int lastColumn = std::max(0, columnCount() - 1);
    for (const int row : std::as_const(rows)) {
        if (!selection.isEmpty() && selection.last().bottom() == row - 1)
            selection.last() = QItemSelectionRange(selection.last().topLeft(),
                                                   index(row, lastColumn));
        else
            selection.append(QItemSelectionRange(index(row, 0), index(row, lastColumn)));
    }
    m_selectionModel->select(selection, QItemSelectionModel::ClearAndSelect);
    const QModelIndex current = m_selectionModel->currentIndex();
    if (!rows.isEmpty() && !std::binary_search(rows.begin(), rows.end(), current.row()))
        m_selectionModel->setCurrentIndex(index(selectionIndex(), std::max(0, current.column())),
                                          QItemSelectionModel::NoUpdate);
}

} // namespace tembra
