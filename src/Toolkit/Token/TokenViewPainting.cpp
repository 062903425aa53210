#include "Toolkit/Token/TokenView.h"

#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Token/TokenObject.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QToolTip>

#include <cmath>

// Where tokens are, and how they look.

namespace tembra {

namespace {

/// A layout counts what an input method is composing, a document does not.
int positionInLayout(const QTextLayout &layout, int position)
{
    const bool isBehind = position >= layout.preeditAreaPosition();
    return position + (isBehind ? int(layout.preeditAreaText().size()) : 0);
}

} // namespace

QRectF TokenView::tokenCell(int position) const
{
    return tokenCell(position, m_text->token(m_text->objectAt(position)));
}

QRectF TokenView::tokenCell(int position, TokenText::Token *token) const
{
    const QTextLayout &layout = *document()->firstBlock().layout();
    const int inLayout = positionInLayout(layout, position);
    const QTextLine line = layout.lineForTextPosition(inLayout);
    if (!line.isValid())
        return {};
    const double width = m_tokenObject->width(token);
    const double start = line.cursorToX(inLayout);
    // Among right-to-left text it stands at the other side of its beginning. Beyond the ends of
    // the line the nearest character would answer.
    const double middle = start + width / 2;
    const bool isAfterStart = middle < line.naturalTextRect().right()
                              && line.xToCursor(middle, QTextLine::CursorOnCharacter) == inLayout;
    const TokenMetrics &metrics = m_tokenObject->metrics();
    const double baseline = line.y() + line.ascent();
    const double padding = (metrics.pillHeight - metrics.textHeight) / 2;
    const QRectF cell(isAfterStart ? start : start - width,
                      std::round(baseline - metrics.ascent - padding), width, metrics.pillHeight);
    const QPointF origin =
        document()->documentLayout()->blockBoundingRect(document()->firstBlock()).topLeft();
    return cell.translated(origin - scrollOffset());
}

QPointF TokenView::scrollOffset() const
{
    const QScrollBar *bar = horizontalScrollBar();
    const int horizontal = isRightToLeft() ? bar->maximum() - bar->value() : bar->value();
    return QPointF(horizontal, verticalScrollBar()->value());
}

QRect TokenView::tokenRect(int index) const
{
    const int position = m_text->positionOfToken(index);
    return position < 0 ? QRect() : tokenCell(position).toRect();
}

int TokenView::tokenAt(const QPoint &point) const
{
    const int caret = cursorForPosition(point).position();
    for (const int position : {caret - 1, caret}) {
        if (m_text->objectAt(position) && tokenCell(position).contains(point))
            return position;
    }
    return -1;
}

bool TokenView::isInSelection(const QPoint &point) const
{
    const QTextCursor cursor = textCursor();
    const auto isSelected = [&cursor](int position) {
        return position >= cursor.selectionStart() && position < cursor.selectionEnd();
    };
    if (const int token = tokenAt(point); token >= 0)
        return isSelected(token);
    const int exact = document()->documentLayout()->hitTest(point + scrollOffset(), Qt::ExactHit);
    return exact >= 0 && cursor.hasSelection() && exact >= cursor.selectionStart()
           && exact <= cursor.selectionEnd();
}

int TokenView::selectedToken() const
{
    const QTextCursor cursor = textCursor();
    const int start = cursor.selectionStart();
    const bool isOne = cursor.selectionEnd() == start + 1 && m_text->objectAt(start);
    return isOne ? start : -1;
}

void TokenView::setHoveredToken(int position)
{
    if (m_hoveredToken == position)
        return;
    m_hoveredToken = position;
    viewport()->setCursor(position < 0 ? Qt::IBeamCursor : Qt::ArrowCursor);
    viewport()->update();
}

bool TokenView::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        if (showTokenToolTip(help->pos(), help->globalPos()))
            return true;
    }
    if (event->type() == QEvent::Leave)
        setHoveredToken(-1);
    return QTextEdit::viewportEvent(event);
}

bool TokenView::showTokenToolTip(const QPoint &point, const QPoint &globalPoint)
{
    const int position = tokenAt(point);
    if (position < 0)
        return false;
    const QRectF cell = tokenCell(position);
    const QString title = displayStringForRepresentedObject(m_text->objectAt(position));
    if (!m_tokenObject->isElided(cell, title))
        return false;
    const QString text = displayText(title);
    QToolTip::showText(globalPoint,
                       Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text,
                       viewport(), cell.toRect());
    return true;
}

/// The frame of a line edit, which shows the focus as the desktop does.
void TokenView::paintFrame()
{
    QStyleOptionFrame option;
    option.initFrom(this);
    option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, this);
    option.state |= QStyle::State_Sunken;
    option.state.setFlag(QStyle::State_ReadOnly, isReadOnly());
    option.state.setFlag(QStyle::State_HasFocus, hasFocus());
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
}

bool TokenView::event(QEvent *event)
{
    if (event->type() == QEvent::Paint) {
        paintFrame();
        return true;
    }
    return QTextEdit::event(event);
}

void TokenView::paintEvent(QPaintEvent *event)
{
    QTextEdit::paintEvent(event);
    QPainter painter(viewport());
    paintTokens(painter, event->rect());
}

void TokenView::paintTokens(QPainter &painter, const QRect &exposed)
{
    const QTextLayout &layout = *document()->firstBlock().layout();
    const int top = exposed.top() + verticalScrollBar()->value();
    const int bottom = exposed.bottom() + verticalScrollBar()->value();
    const double lineHeight = m_tokenObject->metrics().lineHeight;
    int from = -1, to = 0;
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        if (line.y() + 2 * lineHeight < top || line.y() - lineHeight > bottom)
            continue;
        from = from < 0 ? line.textStart() : from;
        to = line.textStart() + line.textLength();
    }
    // What is being composed makes the layout longer, the document begins no later for it.
    for (const TokenText::Piece &piece :
         m_text->pieces(from - int(layout.preeditAreaText().size()), to)) {
        if (piece.object)
            paintToken(painter, piece);
    }
}

void TokenView::paintToken(QPainter &painter, const TokenText::Piece &token)
{
    TokenText::Token *shown = m_text->token(token.object);
    const QRectF cell = tokenCell(token.start, shown);
    if (!cell.intersects(viewport()->rect()))
        return;
    const QTextCursor cursor = textCursor();
    TokenObject::State state;
    state.isSelected = token.start >= cursor.selectionStart()
                       && token.start < cursor.selectionEnd();
    state.isHovered = token.start == m_hoveredToken;
    state.isEnabled = isEnabled();
    state.hasFocus = hasFocus() && isActiveWindow();
    // The pill alone shows that it is selected, not the text's rectangle.
    if (state.isSelected)
        painter.fillRect(cell.adjusted(0, -2, 0, 2).toAlignedRect(), viewport()->palette().base());
    m_tokenObject->draw(&painter, cell, shown->title, state, palette());
}

} // namespace tembra
