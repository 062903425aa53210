#pragma once

#include <QElapsedTimer>
#include <QRegion>
#include <QSet>
#include <QStyledItemDelegate>

namespace tembra {

/// Draws the cells of an `EmojiGrid`: emoji and headings.
///
/// The first time an emoji is drawn its picture is unpacked, which takes about a millisecond. So
/// that a grid is there at once, a pass draws new ones for so long only; the rest is for the next.
class EmojiGridDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static int cellSize(const QFont &font);
    static int headingHeight(const QFont &font);

    void beginPass();
    /// What the pass left out.
    QRegion missing() const { return m_missing; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

private:
    void drawEmoji(QPainter *painter, const QStyleOptionViewItem &option,
                   const QString &text) const;

    QElapsedTimer m_pass;
    mutable QRegion m_missing;
    mutable QSet<QString> m_drawn; ///< Likely to be quick to draw again.
};

} // namespace tembra
