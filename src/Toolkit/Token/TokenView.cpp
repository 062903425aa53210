#include "Toolkit/Token/TokenView.h"

#include "Toolkit/Emoji/EmojiHighlighter.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"
#include "Toolkit/Token/TokenRenderer.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace tembra {

namespace {

constexpr int mostHeight = 750;
constexpr int fewestLines = 4; ///< What a field that wraps keeps where room is short.
constexpr int frameInset = 3; ///< Room for the frame and the focus ring.
constexpr int sideMargin = 3;
constexpr int widestToken = 320;
constexpr int leastTokenRoom = 40;
constexpr int hintCharacters = 24;
/// A line of fixed height has its baseline here.
constexpr double baselinePart = 0.8;

/// A layout counts what an input method is composing, a document does not.
int positionInLayout(const QTextLayout &layout, int position)
{
    const bool isBehind = position >= layout.preeditAreaPosition();
    return position + (isBehind ? int(layout.preeditAreaText().size()) : 0);
}

} // namespace

TokenView::TokenView(TokenText::TitleOf displayString, QWidget *parent)
    : QTextEdit(parent)
    , m_text(std::make_unique<TokenText>(document(), std::move(displayString)))
    , m_renderer(new TokenRenderer(m_text.get(), this))
{
    setAcceptRichText(false);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setViewportMargins(frameInset, frameInset, frameInset, frameInset);
    setFrameStyle(QFrame::NoFrame);
    viewport()->setMouseTracking(true);
    document()->documentLayout()->registerHandler(TokenText::objectType, m_renderer);
    new EmojiHighlighter(document());
    applyMeasures();
    applyWrapping();
    applyTextDirection();
}

TokenView::~TokenView() = default;

void TokenView::setWraps(bool wraps)
{
    m_wraps = wraps;
    applyWrapping();
}

void TokenView::applyWrapping()
{
    setLineWrapMode(m_wraps ? QTextEdit::WidgetWidth : QTextEdit::NoWrap);
    setWordWrapMode(m_wraps ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
    setSizePolicy(QSizePolicy::Expanding, m_wraps ? QSizePolicy::Maximum : QSizePolicy::Fixed);
    fitSize();
}

/// All lines are equally high, with or without tokens and emoji, so nothing jumps while typing.
void TokenView::applyMeasures()
{
    m_renderer->setFont(font());
    const TokenMetrics &metrics = m_renderer->metrics();
    m_text->setFont(font());
    QTextCursor cursor(document());
    QTextBlockFormat format = cursor.blockFormat();
    format.setLineHeight(metrics.lineHeight, QTextBlockFormat::FixedHeight);
    cursor.setBlockFormat(format);
    // The placeholder stands at the document's margin, text at its baseline within the frame's.
    const double textTop = baselinePart * metrics.lineHeight - metrics.ascent;
    const double shift = textTop - metrics.textTop;
    document()->setDocumentMargin(metrics.textTop);
    QTextFrameFormat frame = document()->rootFrame()->frameFormat();
    frame.setTopMargin(-shift);
    frame.setBottomMargin(shift);
    frame.setLeftMargin(sideMargin);
    frame.setRightMargin(sideMargin);
    document()->rootFrame()->setFrameFormat(frame);
    layOutTokens();
}

void TokenView::layOutTokens()
{
    document()->markContentsDirty(0, document()->characterCount());
    viewport()->update();
    fitSize();
}

void TokenView::fitSize()
{
    updateGeometry();
    // Once the layout has answered.
    QTimer::singleShot(0, this, &TokenView::fitScrollBar);
}

/// A bar that is shown only where the height does not suffice in the end, not while it grows.
void TokenView::fitScrollBar()
{
    const bool isCut = m_wraps && height() < sizeHint().height();
    setVerticalScrollBarPolicy(isCut ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

void TokenView::fitTokens()
{
    const int room = viewport()->width() - 2 * sideMargin;
    if (m_renderer->setMaximumWidth(std::clamp(room, leastTokenRoom, widestToken)))
        layOutTokens();
}

int TokenView::heightOfLines(int lines) const
{
    return int(std::ceil(lines * m_renderer->metrics().lineHeight)) + 2 * frameInset;
}

int TokenView::textHeight() const
{
    const int lines = m_wraps ? std::max(1, document()->firstBlock().layout()->lineCount()) : 1;
    return heightOfLines(lines);
}

QSize TokenView::sizeHint() const
{
    const int width = hintCharacters * fontMetrics().averageCharWidth() + 2 * frameInset;
    return {width, std::min(textHeight(), mostHeight)};
}

QSize TokenView::minimumSizeHint() const
{
    const int width = leastTokenRoom + 2 * (frameInset + sideMargin);
    return {width, std::min(sizeHint().height(), heightOfLines(fewestLines))};
}

bool TokenView::isComposing() const
{
    return !textCursor().block().layout()->preeditAreaText().isEmpty();
}

void TokenView::applyTextDirection()
{
    QTextOption option = document()->defaultTextOption();
    option.setTextDirection(layoutDirection());
    option.setAlignment(Qt::AlignLeading);
    document()->setDefaultTextOption(option);
    viewport()->setLayoutDirection(layoutDirection());
}

void TokenView::changeEvent(QEvent *event)
{
    QTextEdit::changeEvent(event);
    switch (event->type()) {
    case QEvent::FontChange:
        applyMeasures();
        break;
    case QEvent::LayoutDirectionChange:
        applyTextDirection();
        break;
    default:
        break;
    }
}

void TokenView::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    fitTokens();
    if (event->size().width() != event->oldSize().width())
        fitSize();
    fitScrollBar();
}

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
    const double width = m_renderer->width(token);
    const double start = line.cursorToX(inLayout);
    // Among right-to-left text it stands at the other side of its beginning. Beyond the ends of
    // the line the nearest character would answer.
    const double middle = start + width / 2;
    const bool isAfterStart = middle < line.naturalTextRect().right()
                              && line.xToCursor(middle, QTextLine::CursorOnCharacter) == inLayout;
    const TokenMetrics &metrics = m_renderer->metrics();
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
    const QString title = m_text->token(m_text->objectAt(position))->title;
    if (!m_renderer->isElided(cell, title))
        return false;
    showPlainToolTip(globalPoint, title, viewport(), cell.toRect());
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
    const double lineHeight = m_renderer->metrics().lineHeight;
    int from = -1, to = 0;
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        if (line.y() + 2 * lineHeight < top || line.y() - lineHeight > bottom)
            continue;
        from = from < 0 ? line.textStart() : from;
        to = line.textStart() + line.textLength();
    }
    // What is being composed makes the layout longer, the document begins no later for it.
    for (const TokenText::Fragment &fragment :
         m_text->fragments(from - int(layout.preeditAreaText().size()), to)) {
        if (fragment.object)
            paintToken(painter, fragment);
    }
}

void TokenView::paintToken(QPainter &painter, const TokenText::Fragment &token)
{
    TokenText::Token *shown = m_text->token(token.object);
    const QRectF cell = tokenCell(token.start, shown);
    if (!cell.intersects(viewport()->rect()))
        return;
    const QTextCursor cursor = textCursor();
    TokenRenderer::State state;
    state.isSelected = token.start >= cursor.selectionStart()
                       && token.start < cursor.selectionEnd();
    state.isHovered = token.start == m_hoveredToken;
    state.isEnabled = isEnabled();
    state.hasFocus = hasFocus() && isActiveWindow();
    // The pill alone shows that it is selected, not the text's rectangle.
    if (state.isSelected)
        painter.fillRect(cell.adjusted(0, -2, 0, 2).toAlignedRect(), viewport()->palette().base());
    m_renderer->draw(&painter, cell, shown->title, state, palette());
}

} // namespace tembra
