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

    /// Writes a name being typed into its record; the editor stays open.
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

    /// Shows a tooltip with the whole texts of a row when one of them is elided.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    mutable QPointer<RowNameEditor> m_openEditor;
};

} // namespace tembra
