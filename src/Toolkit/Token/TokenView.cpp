#include "Toolkit/Token/TokenView.h"

#include "Toolkit/Emoji/EmojiHighlighter.h"
#include "Toolkit/Theme.h"
#include "Toolkit/Token/TokenObject.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
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

} // namespace

TokenView::TokenView(QWidget *parent)
    : QTextEdit(parent)
    , m_text(std::make_unique<TokenText>(document(),
                                         [this](const Object &object) {
                                             return displayStringForRepresentedObject(object);
                                         }))
    , m_tokenObject(new TokenObject(m_text.get(), this))
{
    setAcceptRichText(false);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setViewportMargins(frameInset, frameInset, frameInset, frameInset);
    setFrameStyle(QFrame::NoFrame);
    viewport()->setMouseTracking(true);
    document()->documentLayout()->registerHandler(TokenText::objectType, m_tokenObject);
    new EmojiHighlighter(document());
    applyMeasures();
    applyWrapping();
    applyTheme();
    applyTextDirection();
}

TokenView::~TokenView() = default;

QString TokenView::displayStringForRepresentedObject(const Object &) const
{
    return {};
}

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
    m_tokenObject->setFont(font());
    const TokenMetrics &metrics = m_tokenObject->metrics();
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
    if (m_tokenObject->setMaximumWidth(std::clamp(room, leastTokenRoom, widestToken)))
        layOutTokens();
}

int TokenView::heightOfLines(int lines) const
{
    return int(std::ceil(lines * m_tokenObject->metrics().lineHeight)) + 2 * frameInset;
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

void TokenView::applyTheme()
{
    const QColor color = theme::secondaryText(palette(), QPalette::Base);
    if (palette().color(QPalette::PlaceholderText) == color)
        return;
    QPalette dimmed = palette();
    dimmed.setColor(QPalette::PlaceholderText, color);
    setPalette(dimmed);
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
    case QEvent::PaletteChange:
        applyTheme();
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

} // namespace tembra
