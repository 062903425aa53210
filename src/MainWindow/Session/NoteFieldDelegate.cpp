#include "MainWindow/Session/NoteFieldDelegate.h"

#include "MainWindow/Session/NotesArrayController.h"
#include "Toolkit/Theme.h"

#include <QPainter>

namespace tembra {

namespace {

constexpr int rowHeight = 26;
constexpr int sideMargin = theme::relatedSpacing;
constexpr int dotSize = 6;
/// Room that is kept for the dot, so that the titles stand still when it comes and goes.
constexpr int dotColumn = dotSize + theme::relatedSpacing;

QPalette::ColorGroup colorGroup(const QStyleOptionViewItem &option)
{
    if (!(option.state & QStyle::State_Enabled))
        return QPalette::Disabled;
    return option.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
}

} // namespace

const int NoteFieldDelegate::roomBesideTitle = 2 * sideMargin + dotColumn;

void NoteFieldDelegate::initStyleOption(QStyleOptionViewItem *option,
                                        const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->fontMetrics = QFontMetrics(option->font);
}

void NoteFieldDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const bool selected = item.state & QStyle::State_Selected;
    const QPalette::ColorGroup group = colorGroup(item);
    const QColor textColor = item.palette.color(group, selected ? QPalette::HighlightedText
                                                                : QPalette::Text);
    const QColor dotColor = selected ? textColor : item.palette.color(group, QPalette::Highlight);
    const QString title = item.text;
    item.text.clear();
    item.widget->style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    const QRect content = item.rect.adjusted(sideMargin, 0, -sideMargin, 0);
    const QRect titleArea = QStyle::visualRect(item.direction, content,
                                               content.adjusted(0, 0, -dotColumn, 0));
    painter->save();
    painter->setPen(textColor);
    painter->setFont(item.font);
    painter->drawText(titleArea, int(Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine),
                      item.fontMetrics.elidedText(title, Qt::ElideRight, titleArea.width()));
    if (index.data(NotesArrayController::IsFilledRole).toBool()) {
        const QRect dot(content.right() + 1 - dotSize, content.center().y() - dotSize / 2 + 1,
                        dotSize, dotSize);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(dotColor);
        painter->drawEllipse(QStyle::visualRect(item.direction, content, dot));
    }
    painter->restore();
}

QSize NoteFieldDelegate::sizeHint(const QStyleOptionViewItem &option,
                                  const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const int width = item.fontMetrics.horizontalAdvance(item.text) + roomBesideTitle;
    return {width, std::max(rowHeight, item.fontMetrics.height() + theme::relatedSpacing)};
}

} // namespace tembra
