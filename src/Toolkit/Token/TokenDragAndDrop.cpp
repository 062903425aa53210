#include "Toolkit/Token/TokenDragAndDrop.h"

#include "Toolkit/Token/TokenEditor.h"
#include "Toolkit/Token/TokenView.h"

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>

#include <utility>

namespace tembra {

void TokenDragAndDrop::move(const QPoint &point)
{
    if (m_pressed && (point - *m_pressed).manhattanLength() >= QApplication::startDragDistance())
        startDrag(*std::exchange(m_pressed, std::nullopt));
}

std::optional<QPoint> TokenDragAndDrop::release()
{
    return std::exchange(m_pressed, std::nullopt);
}

void TokenDragAndDrop::startDrag(const QPoint &point)
{
    m_dragged = m_editor.cursor();
    // The drag is not the field's own: the field may be gone before the pointer lets go.
    auto *drag = new QDrag(QCoreApplication::instance());
    drag->setMimeData(m_editor.selectionData().release());
    if (const int token = m_view.tokenAt(point); token >= 0) {
        const QRect rect = m_view.tokenRect(m_editor.text().tokensBefore(token));
        drag->setPixmap(m_view.viewport()->grab(rect));
        drag->setHotSpot(point - rect.topLeft());
    }
    const QPointer<TokenView> view(&m_view);
    const Qt::DropActions actions = m_view.isReadOnly() ? Qt::CopyAction
                                                        : Qt::CopyAction | Qt::MoveAction;
    const Qt::DropAction done = drag->exec(actions, Qt::CopyAction);
    if (!view)
        return;
    // Within the field the drop has moved it already.
    QTextCursor dragged = std::exchange(m_dragged, {});
    if (done == Qt::MoveAction && dragged.hasSelection()) {
        const TokenEditor::EditBlock block(m_editor);
        dragged.removeSelectedText();
    }
}

void TokenDragAndDrop::drop(QDropEvent &event)
{
    const int position = m_view.cursorForPosition(event.position().toPoint()).position();
    bool isDropped = false;
    if (m_view.isReadOnly()) {
        // Nothing can be dropped.
    } else if (!m_dragged.isNull()) {
        const QTextCursor dragged = std::exchange(m_dragged, {});
        isDropped = dragged.hasSelection();
        m_editor.moveText(dragged, position);
        event.setDropAction(Qt::MoveAction);
    } else {
        m_editor.select(position, position);
        isDropped = m_editor.paste(*event.mimeData());
    }
    event.setAccepted(isDropped);
    if (!isDropped)
        event.setDropAction(Qt::IgnoreAction);
}

} // namespace tembra
