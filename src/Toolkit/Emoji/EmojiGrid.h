#pragma once

#include <QTableView>
#include <QTimer>

namespace tembra {

class EmojiGridModel;

/// A table view of emoji in rows under headings.
///
/// Arrows, Home, End and the page keys move; Return or a click chooses. The Menu key, Alt+Down, a
/// right click or a long press asks for the skin tones of an emoji that has some.
class EmojiGrid final : public QTableView
{
    Q_OBJECT

public:
    /// @p model must live as long.
    explicit EmojiGrid(EmojiGridModel &model, QWidget *parent = nullptr);

    /// As wide as its columns, with room for a scroll bar, and so many rows high.
    void setVisibleRows(int rows);
    /// As large as all it has.
    void fitToContent();
    /// Scrolls so that @p row is the first.
    void scrollToRow(int row);

Q_SIGNALS:
    void chosen(const QString &emoji);
    void skinTonesRequested(const QModelIndex &index);
    /// The pointer is over an emoji, or (an invalid index) over none any more.
    void pointedAt(const QModelIndex &index);
    void scrolled();
    /// Up, from the first row.
    void leftUpwards();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    void layOutRows();
    void requestSkinTones(const QModelIndex &index);
    void handleLongPress();
    void handleClick(const QModelIndex &index);
    bool moveByKey(const QKeyEvent *event);

    EmojiGridModel &m_model;
    QTimer m_longPress;
    bool m_wasLongPress = false; ///< Letting go is no click then.
};

} // namespace tembra
