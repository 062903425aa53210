#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>

#include <optional>

class QPainterPath;

namespace tembra {

/// A transient panel with an arrow that points at what it belongs to.
///
/// Closes on Escape and on a click elsewhere. It stays on the screen: where the wished side has no
/// room, it opens on the opposite one.
class Popover : public QWidget
{
    Q_OBJECT

public:
    explicit Popover(QWidget *parent = nullptr);

    /// Takes ownership of @p content; its size hint decides the size of the popover.
    void setContent(QWidget *content);
    QWidget *content() const { return m_content; }
    /// Shown beside @p rect of @p anchor (in the anchor's coordinates), on the side of @p edge.
    void showRelativeTo(QWidget *anchor, const QRect &rect, Qt::Edge edge);
    /// Beside the whole of @p anchor.
    void showRelativeTo(QWidget *anchor, Qt::Edge edge);
    /// The side of the anchor on which it opened.
    Qt::Edge edge() const { return m_edge; }

Q_SIGNALS:
    void closed();

protected:
    Popover(QWidget *parent, Qt::WindowFlags flags);
    /// Chooses the side, keeps the panel where it can be seen and points the arrow at the anchor's
    /// middle.
    void place();
    QWidget *anchor() const { return m_anchor; }

    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void showBesideAnchor(Qt::Edge edge);
    QRect visibleArea(const QRect &anchor) const;
    QRect anchorOnScreen() const;
    QRect panelRect() const;
    QPainterPath outline() const;
    void fadeIn();

    QPointer<QWidget> m_content;
    QPointer<QWidget> m_anchor;
    std::optional<QRect> m_anchorRect; ///< Without one the whole anchor, of whatever size.
    Qt::Edge m_wishedEdge = Qt::BottomEdge;
    Qt::Edge m_edge = Qt::BottomEdge;
    int m_arrowPosition = 0; ///< Of the arrow's tip, along the side it stands on.
};

} // namespace tembra
