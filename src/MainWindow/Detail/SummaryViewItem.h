#pragma once

#include "MainWindow/Detail/TimelineViewItem.h"

#include <QColor>
#include <QFont>
#include <QString>

#include <memory>

class QPainter;

namespace tembra {

class DateFormatting;
class Session;

/// A tile of the strip: day, ratings and tags of one meeting.
///
/// The strip has one and makes it ready for each meeting it paints, so that ten thousand tiles cost
/// no more than those on the screen.
class SummaryViewItem
{
public:
    struct Label
    {
        QString text;
        QFont font;
        QColor color;
    };

    explicit SummaryViewItem(const DateFormatting &dates);

    /// Takes fonts and colours from where the tile stands.
    void setAppearance(const QFont &font, const QPalette &palette);
    const std::shared_ptr<Session> &session() const { return m_session; }
    void setSession(std::shared_ptr<Session> session);
    bool isSelected() const { return view.selected; }
    void setSelected(bool selected);

    void draw(QPainter *painter, const QRectF &rect) const;

    Label emojiLabel; ///< The ratings; drawn one below the other, for the tile is narrow.
    Label dateLabel;
    Label tagLabel;
    TimelineViewItem view;

private:
    void drawDate(QPainter *painter, const QRectF &band) const;
    void drawEmoji(QPainter *painter, const QRectF &area) const;
    void drawTags(QPainter *painter, const QRectF &row) const;

    const DateFormatting &m_dates;
    QPalette m_palette;
    QColor dateLabelColor; ///< Of a tile that is not selected.
    std::shared_ptr<Session> m_session;
};

} // namespace tembra
