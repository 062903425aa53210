#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

namespace tembra {

class RowNameEditor;
struct CounterpartRowViewModel;

/// Draws a row of the teammate list in two lines, the name with the tag emoji above the most recent
/// meeting, and edits the name in place.
class CounterpartRowDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Writes a name being typed into its record, and lets the typing go on.
    void commitOpenEditor();

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

    /// Shows the texts of a row that is cut short in whole.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    mutable QPointer<RowNameEditor> m_openEditor;
};

} // namespace tembra
