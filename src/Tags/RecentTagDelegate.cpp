#include "Tags/RecentTagDelegate.h"

#include "Tags/TagListViewModel.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/List/ArrayController.h"
#include "Toolkit/Theme.h"

#include <QPainter>

namespace tembra {

void RecentTagDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    const auto *row = qobject_cast<TagListViewModel *>(
        index.data(ArrayController::ObjectRole).value<QObject *>());
    if (!row)
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if ((option.state & QStyle::State_MouseOver) && row->isEnabled()) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(theme::hoverFill(option.palette, QPalette::Window));
        painter->drawRoundedRect(option.rect, theme::gridUnit, theme::gridUnit);
    }
    QRectF rect = QRectF(option.rect).adjusted(theme::relatedSpacing, 0, -theme::relatedSpacing, 0);
    const QColor shortcutColor = row->isEnabled()
                                     ? theme::secondaryText(option.palette, QPalette::Window)
                                     : row->labelColor();
    const double shortcutWidth = emojiTextSize(row->shortcut(), option.font).width();
    drawEmojiText(painter, rect, row->shortcut(), option.font, shortcutColor,
                  Qt::AlignTrailing | Qt::AlignVCenter, false);
    const double taken = shortcutWidth + theme::groupSpacing;
    rect.adjust(option.direction == Qt::RightToLeft ? taken : 0, 0,
                option.direction == Qt::RightToLeft ? 0 : -taken, 0);
    drawEmojiText(painter, rect, row->title(), option.font, row->labelColor());
    painter->restore();
}

QSize RecentTagDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const int text = option.fontMetrics.height();
    return {text, text + 2 * theme::gridUnit};
}

} // namespace tembra
