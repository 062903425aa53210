#pragma once

#include <QTableView>
#include <QTimer>

namespace tembra {

class EmojiGridDelegate;
class EmojiGridModel;
struct EmojiEntry;

/// Emoji in rows under headings, of which only what is seen is drawn.
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
    const EmojiEntry *currentEntry() const;
    /// Scrolls so that @p row is the first.
    void scrollToRow(int row);

Q_SIGNALS:
    void chosen(const QString &emoji);
    void tonesWanted(const QModelIndex &index);
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
    void paintEvent(QPaintEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    void layOutRows();
    void wantTones(const QModelIndex &index);
    void pressedLong();
    void wasClicked(const QModelIndex &index);
    bool moveByKey(const QKeyEvent *event);

    EmojiGridModel &m_model;
    EmojiGridDelegate *m_delegate;
    QTimer m_longPress;
    bool m_wasLongPress = false; ///< Letting go is no click then.
};

} // namespace tembra
