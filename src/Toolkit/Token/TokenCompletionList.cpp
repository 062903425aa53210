#include "Toolkit/Token/TokenCompletionList.h"

#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Theme.h"
#include "Toolkit/Token/TokenCompletion.h"
#include "Toolkit/Token/TokenCompletionDelegate.h"

#include <QGuiApplication>
#include <QListView>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostRows = 8;
constexpr int leastWidth = 160;
constexpr int mostWidth = 440;
constexpr int listPadding = 4;
constexpr int gapToText = 2;

QListView *rowsView(QWidget *parent)
{
    auto *view = new QListView(parent);
    view->setObjectName(u"completions"_s);
    view->setUniformItemSizes(true);
    view->setItemDelegate(new TokenCompletionDelegate(view));
    view->setFrameShape(QFrame::NoFrame);
    view->setFocusPolicy(Qt::NoFocus);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view->setMouseTracking(true);
    // As small as its rows are few.
    view->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    view->viewport()->setAttribute(Qt::WA_Hover);
    return view;
}

QPainterPath roundedFrame(const QRectF &rect)
{
    QPainterPath path;
    path.addRoundedRect(rect, theme::cornerRadius, theme::cornerRadius);
    return path;
}

/// X11 has no partly transparent windows unless a compositor runs.
bool needsRoundMask()
{
    return QGuiApplication::platformName() == "xcb"_L1;
}

} // namespace

TokenCompletionList::TokenCompletionList(TokenCompletion &completion, QWidget *field)
    : QFrame(field, Qt::ToolTip | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , m_completion(completion)
    , m_view(rowsView(this))
{
    setObjectName(u"completionList"_s);
    // A window of its own, but in the field's colours, and never with the keyboard.
    setAttribute(Qt::WA_WindowPropagation);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_X11DoNotAcceptFocus);
    setAttribute(Qt::WA_TranslucentBackground, !needsRoundMask());
    setFocusPolicy(Qt::NoFocus);
    m_view->setModel(&m_completion);
    m_view->setAccessibleName(tr("Completions", "list of texts that complete what is typed"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(listPadding, listPadding, listPadding, listPadding);
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    layout->addWidget(m_view);
    connect(m_view, &QListView::clicked, this,
            [this](const QModelIndex &index) { m_completion.take(index.row()); });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, &m_completion,
            [this](const QModelIndex &index) { m_completion.setHighlightedRow(index.row()); });
    connect(&m_completion, &TokenCompletion::highlightedRowChanged, this,
            &TokenCompletionList::showHighlight);
    connect(&m_completion, &TokenCompletion::openChanged, this, [this](bool isOpen) {
        if (!isOpen)
            hide();
    });
}

void TokenCompletionList::showHighlight()
{
    const QModelIndex index = m_completion.index(m_completion.highlightedRow(), 0);
    if (!index.isValid()) {
        m_view->setCurrentIndex({});
        m_view->scrollToTop();
    } else if (index != m_view->currentIndex()) {
        m_view->setCurrentIndex(index);
        m_view->scrollTo(index);
    }
}

void TokenCompletionList::showBeside(const QRect &anchor)
{
    // Windows do not take it from their parents.
    setLayoutDirection(parentWidget()->layoutDirection());
    const QScreen *screen = QGuiApplication::screenAt(anchor.center());
    const QRect available = (screen ? screen : parentWidget()->screen())->availableGeometry();
    const QSize size = wantedSize().boundedTo(available.size());
    const int textIndent = listPadding + TokenCompletionDelegate::rowInset;
    const int wishedLeft = isRightToLeft() ? anchor.right() + textIndent - size.width()
                                           : anchor.left() - textIndent;
    const int left = std::clamp(wishedLeft, available.left(),
                                std::max(available.left(), available.right() + 1 - size.width()));
    const int below = anchor.bottom() + 1 + gapToText;
    const int above = anchor.top() - gapToText - size.height();
    const bool fitsBelow = below + size.height() <= available.bottom() + 1;
    const int top = fitsBelow || above < available.top() ? below : above;
    setGeometry(QRect(QPoint(left, top), size));
    show();
}

QSize TokenCompletionList::wantedSize() const
{
    const int rows = std::min(m_completion.rowCount(), mostRows);
    const QFontMetrics metrics(m_view->font());
    int width = leastWidth;
    // The rows at the top decide: to measure all of them would take too long for a keystroke.
    for (int row = 0; row < rows; ++row) {
        const QString text = displayText(m_completion.entry(row).left(mostWidth));
        const int emojiRoom = mayHoldEmoji(text) ? 2 * metrics.height() : 0;
        width = std::max(width, metrics.horizontalAdvance(text) + emojiRoom);
    }
    width += 2 * (TokenCompletionDelegate::rowInset + listPadding)
             + m_view->verticalScrollBar()->sizeHint().width();
    return {std::min(width, mostWidth),
            rows * TokenCompletionDelegate::rowHeight(m_view->font()) + 2 * listPadding};
}

int TokenCompletionList::rowsPerPage() const
{
    return m_view->viewport()->height() / TokenCompletionDelegate::rowHeight(m_view->font());
}

bool TokenCompletionList::event(QEvent *event)
{
    // A click beside the rows is no click on what lies below the list.
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::Wheel) {
        event->accept();
        return true;
    }
    return QFrame::event(event);
}

/// It does not follow when the field's window moves.
bool TokenCompletionList::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Move || event->type() == QEvent::Hide
        || event->type() == QEvent::WindowStateChange)
        hide();
    return QFrame::eventFilter(watched, event);
}

void TokenCompletionList::showEvent(QShowEvent *event)
{
    QFrame::showEvent(event);
    parentWidget()->window()->installEventFilter(this);
}

void TokenCompletionList::hideEvent(QHideEvent *event)
{
    QFrame::hideEvent(event);
    parentWidget()->window()->removeEventFilter(this);
    m_completion.close();
}

void TokenCompletionList::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::hairline(palette()), 1));
    painter.setBrush(palette().base());
    painter.drawPath(roundedFrame(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5)));
}

void TokenCompletionList::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    if (needsRoundMask())
        setMask(QRegion(roundedFrame(rect()).toFillPolygon().toPolygon()));
}

} // namespace tembra
