#include "Toolkit/Popover.h"

#include "Toolkit/Theme.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QPainter>
#include <QPainterPath>
#include <QPropertyAnimation>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int arrowLength = 8;
constexpr int arrowHalfWidth = 9;
constexpr int screenMargin = 4;
constexpr int fadeMilliseconds = 120;

bool isVertical(Qt::Edge edge)
{
    return edge == Qt::TopEdge || edge == Qt::BottomEdge;
}

Qt::Edge opposite(Qt::Edge edge)
{
    switch (edge) {
    case Qt::TopEdge:
        return Qt::BottomEdge;
    case Qt::BottomEdge:
        return Qt::TopEdge;
    case Qt::LeftEdge:
        return Qt::RightEdge;
    case Qt::RightEdge:
        break;
    }
    return Qt::LeftEdge;
}

/// Room between the anchor and the end of the screen on one side.
int roomAt(Qt::Edge edge, const QRect &anchor, const QRect &screen)
{
    switch (edge) {
    case Qt::TopEdge:
        return anchor.top() - screen.top();
    case Qt::BottomEdge:
        return screen.bottom() - anchor.bottom();
    case Qt::LeftEdge:
        return anchor.left() - screen.left();
    case Qt::RightEdge:
        break;
    }
    return screen.right() - anchor.right();
}

QPoint positionAt(Qt::Edge edge, const QRect &anchor, const QSize &size)
{
    const QPoint centred(anchor.center().x() - size.width() / 2,
                         anchor.center().y() - size.height() / 2);
    switch (edge) {
    case Qt::TopEdge:
        return {centred.x(), anchor.top() - size.height()};
    case Qt::BottomEdge:
        return {centred.x(), anchor.bottom() + 1};
    case Qt::LeftEdge:
        return {anchor.left() - size.width(), centred.y()};
    case Qt::RightEdge:
        break;
    }
    return {anchor.right() + 1, centred.y()};
}

/// X11 has no partly transparent windows unless a compositor runs, so there the outline is a mask.
bool needsMask()
{
    return QGuiApplication::platformName() == "xcb"_L1;
}

} // namespace

Popover::Popover(QWidget *parent)
    : Popover(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
{
}

Popover::Popover(QWidget *parent, Qt::WindowFlags flags) : QWidget(parent, flags)
{
    setObjectName(u"popover"_s);
    setAttribute(Qt::WA_TranslucentBackground, isWindow() && !needsMask());
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void Popover::setContent(QWidget *content)
{
    delete m_content;
    m_content = content;
    layout()->addWidget(content);
    setFocusProxy(content->focusPolicy() == Qt::NoFocus ? nullptr : content);
}

void Popover::showRelativeTo(QWidget *anchor, Qt::Edge edge)
{
    m_anchor = anchor;
    m_anchorRect.reset();
    showBesideAnchor(edge);
}

void Popover::showRelativeTo(QWidget *anchor, const QRect &rect, Qt::Edge edge)
{
    m_anchor = anchor;
    m_anchorRect = rect;
    showBesideAnchor(edge);
}

void Popover::showBesideAnchor(Qt::Edge edge)
{
    m_wishedEdge = edge;
    place();
    fadeIn();
    show();
    if (isWindow() && !focusWidget())
        focusNextChild();
}

QRect Popover::anchorOnScreen() const
{
    const QRect rect = m_anchorRect.value_or(m_anchor->rect());
    return {m_anchor->mapToGlobal(rect.topLeft()), rect.size()};
}

/// What it must not go beyond: the screen, or the window that it lies in.
QRect Popover::visibleArea(const QRect &anchor) const
{
    QRect area;
    if (isWindow()) {
        const QScreen *screen = QGuiApplication::screenAt(anchor.center());
        area = (screen ? screen : m_anchor->screen())->availableGeometry();
    } else {
        area = {parentWidget()->mapToGlobal(QPoint()), parentWidget()->size()};
    }
    return area.adjusted(screenMargin, screenMargin, -screenMargin, -screenMargin);
}

void Popover::place()
{
    if (!m_anchor)
        return;
    const QRect anchor = anchorOnScreen();
    const QRect available = visibleArea(anchor);
    const auto fit = [&](Qt::Edge edge) {
        m_edge = edge;
        layout()->setContentsMargins(edge == Qt::RightEdge ? arrowLength : 0,
                                     edge == Qt::BottomEdge ? arrowLength : 0,
                                     edge == Qt::LeftEdge ? arrowLength : 0,
                                     edge == Qt::TopEdge ? arrowLength : 0);
        layout()->activate();
        const QSize needed = layout()->totalSizeHint();
        return roomAt(edge, anchor, available)
               - (isVertical(edge) ? needed.height() : needed.width());
    };
    if (const int missing = fit(m_wishedEdge); missing < 0 && fit(opposite(m_wishedEdge)) < missing)
        fit(m_wishedEdge);

    const QSize size = layout()->totalSizeHint();
    QPoint position = positionAt(m_edge, anchor, size);
    position.setX(std::clamp(position.x(), available.left(),
                             std::max(available.left(), available.right() + 1 - size.width())));
    position.setY(std::clamp(position.y(), available.top(),
                             std::max(available.top(), available.bottom() + 1 - size.height())));
    const int length = isVertical(m_edge) ? size.width() : size.height();
    const QPoint tip = anchor.center() - position;
    const int nearest = theme::popoverRadius + arrowHalfWidth;
    m_arrowPosition = std::clamp(isVertical(m_edge) ? tip.x() : tip.y(), nearest,
                                 std::max(nearest, length - nearest));
    setGeometry({isWindow() ? position : parentWidget()->mapFromGlobal(position), size});
    update();
}

QRect Popover::panelRect() const
{
    return rect().marginsRemoved(layout()->contentsMargins());
}

QPainterPath Popover::outline() const
{
    const QRectF panel = panelRect();
    QPainterPath path;
    path.addRoundedRect(panel, theme::popoverRadius, theme::popoverRadius);
    const double at = m_arrowPosition;
    QPolygonF arrow;
    switch (m_edge) {
    case Qt::TopEdge:
        arrow << QPointF(at - arrowHalfWidth, panel.bottom()) << QPointF(at, height())
              << QPointF(at + arrowHalfWidth, panel.bottom());
        break;
    case Qt::BottomEdge:
        arrow << QPointF(at - arrowHalfWidth, panel.top()) << QPointF(at, 0)
              << QPointF(at + arrowHalfWidth, panel.top());
        break;
    case Qt::LeftEdge:
        arrow << QPointF(panel.right(), at - arrowHalfWidth) << QPointF(width(), at)
              << QPointF(panel.right(), at + arrowHalfWidth);
        break;
    case Qt::RightEdge:
        arrow << QPointF(panel.left(), at - arrowHalfWidth) << QPointF(0, at)
              << QPointF(panel.left(), at + arrowHalfWidth);
        break;
    }
    QPainterPath arrowPath;
    arrowPath.addPolygon(arrow);
    arrowPath.closeSubpath();
    return path.united(arrowPath);
}

void Popover::fadeIn()
{
    // Window opacity is what X11 offers for it; elsewhere the window simply appears.
    if (!isWindow() || !needsMask() || theme::prefersReducedMotion())
        return;
    setWindowOpacity(0);
    auto *animation = new QPropertyAnimation(this, "windowOpacity", this);
    animation->setDuration(fadeMilliseconds);
    animation->setEndValue(1.0);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

bool Popover::event(QEvent *event)
{
    // The content may grow while it is shown.
    if (event->type() == QEvent::LayoutRequest && isVisible()) {
        place();
        return true;
    }
    return QWidget::event(event);
}

void Popover::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel))
        close();
    else
        QWidget::keyPressEvent(event);
}

void Popover::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    Q_EMIT closed();
}

void Popover::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (isWindow() && needsMask())
        setMask(QRegion(outline().toFillPolygon().toPolygon()));
}

void Popover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline(), palette().window());
    painter.setClipPath(outline());
    // Half of the line lies outside of the outline, hence twice the width.
    painter.strokePath(outline(), QPen(theme::hairline(palette()), 2));
}

} // namespace tembra
