#pragma once

#include <QPoint>
#include <QTextCursor>

#include <optional>

class QDropEvent;

namespace tembra {

class TokenEditor;
class TokenView;

/// Drags the selection of a token field, and inserts what is dropped on the field.
class TokenDragAndDrop
{
public:
    /// Both must live as long.
    TokenDragAndDrop(TokenView &view, TokenEditor &editor) : m_view(view), m_editor(editor) {}

    /// Notes a press on the selection at @p point of the viewport; a drag or a click may follow.
    void press(const QPoint &point) { m_pressed = point; }
    void cancelPress() { m_pressed.reset(); }
    bool isPressed() const { return m_pressed.has_value(); }
    /// Starts a drag once the pointer is far enough from the press, and returns when it has ended;
    /// the field may be gone by then.
    void move(const QPoint &point);
    /// The point that was pressed, if no drag came of it.
    std::optional<QPoint> release();
    /// Inserts the data at the pointer, or moves the selection there if it comes from this field.
    void drop(QDropEvent &event);

private:
    void startDrag(const QPoint &point);

    TokenView &m_view;
    TokenEditor &m_editor;
    std::optional<QPoint> m_pressed;
    QTextCursor m_dragged; ///< The selection while it is dragged.
};

} // namespace tembra
