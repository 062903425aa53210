#pragma once

#include <QTreeView>

namespace tembra {

/// The rows of a list in the tag browser, of any number: selected, hovered and focused as a whole.
class BrowserRowsView final : public QTreeView
{
    Q_OBJECT

public:
    explicit BrowserRowsView(QWidget *parent = nullptr);

    int currentRow() const { return currentIndex().row(); }

protected:
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                 const QModelIndex &index) const override;
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace tembra
