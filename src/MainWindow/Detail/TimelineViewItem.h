#pragma once

#include <QPalette>
#include <QRectF>

class QPainter;

namespace tembra {

/// The view of a tile: its card, which shows whether the tile is selected, under the pointer or
/// where the keyboard is.
class TimelineViewItem
{
public:
    bool selected = false;
    bool hovered = false;
    bool focused = false;

    /// Draws the card into @p rect; the tile's texts go upon it.
    void draw(QPainter *painter, const QRectF &rect, const QPalette &palette) const;

    /// The strip at the top of a tile in which its date stands.
    static QRectF dateBand(const QRectF &rect);
};

} // namespace tembra
