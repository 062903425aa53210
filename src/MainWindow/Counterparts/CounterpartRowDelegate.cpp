#include "MainWindow/Counterparts/CounterpartRowDelegate.h"

#include "MainWindow/Counterparts/CounterpartRowViewModel.h"
#include "Model/Counterpart.h"
#include "Preferences/InputControls/RowNameEditor.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/List/ArrayController.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int fillInset = theme::gridUnit;
constexpr int lineSpacing = 2;
constexpr int overdueBarWidth = 3;
constexpr double largestEmojiPart = 0.4;

CounterpartRowViewModel rowOf(const QModelIndex &index)
{
    const auto *object = index.data(ArrayController::ObjectRole).value<QObject *>();
    return CounterpartRowViewModel(static_cast<const Counterpart &>(*object));
}

int lineHeight(const QFont &font)
{
    return int(
        std::ceil(std::max(emojiTextSize(u"🎯"_s, font).height(), QFontMetricsF(font).height())));
}

/// Where the parts of a row lie, in the row's reading direction.
struct RowLayout
{
    RowLayout(const QStyleOptionViewItem &option, const QString &tagEmojiText);

    QFont nameFont;
    QFont meetingFont;
    QRect fill;
    QRect overdueBar;
    QRect name;
    QRect tagEmoji;
    QRect meeting;
};

RowLayout::RowLayout(const QStyleOptionViewItem &option, const QString &tagEmojiText)
    : nameFont(theme::mediumFont(option.font))
    , meetingFont(theme::secondaryFont(option.font))
    , fill(option.rect.adjusted(fillInset, 1, -fillInset, -1))
{
    const auto visual = [&option](const QRect &rect) {
        return QStyle::visualRect(option.direction, option.rect, rect);
    };
    const QRect content = option.rect.adjusted(theme::margin + fillInset, theme::relatedSpacing,
                                               -theme::margin, -theme::relatedSpacing);
    const int nameHeight = lineHeight(nameFont);
    int emojiWidth = 0;
    if (!tagEmojiText.isEmpty())
        emojiWidth = std::min(int(std::ceil(emojiTextSize(tagEmojiText, nameFont).width())),
                              int(content.width() * largestEmojiPart));
    const int gap = emojiWidth > 0 ? theme::relatedSpacing : 0;
    name = visual({content.left(), content.top(), content.width() - emojiWidth - gap, nameHeight});
    tagEmoji = visual({content.right() + 1 - emojiWidth, content.top(), emojiWidth, nameHeight});
    meeting = visual({content.left(), content.top() + nameHeight + lineSpacing, content.width(),
                      lineHeight(meetingFont)});
    overdueBar = visual(
        {fill.left() + theme::gridUnit, content.top() + 2, overdueBarWidth, content.height() - 4});
}

struct RowColors
{
    explicit RowColors(const QStyleOptionViewItem &option);

    QColor title;
    QColor secondary;
    QColor accent;
};

RowColors::RowColors(const QStyleOptionViewItem &option)
    : title(option.palette.color(QPalette::Text))
    , secondary(theme::secondaryText(option.palette))
    , accent(option.palette.color(QPalette::Highlight))
{
    if (option.state & QStyle::State_Selected) {
        title = option.palette.color(QPalette::HighlightedText);
        secondary = theme::secondaryHighlightedText(option.palette);
        accent = title;
    }
}

void drawFill(QPainter *painter, const QStyleOptionViewItem &option, const QRect &fill)
{
    const bool selected = option.state & QStyle::State_Selected;
    painter->setPen(Qt::NoPen);
    if (selected)
        painter->setBrush(option.palette.color(QPalette::Highlight));
    else if (option.state & QStyle::State_MouseOver)
        painter->setBrush(theme::hoverFill(option.palette));
    else
        painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(fill, theme::cornerRadius, theme::cornerRadius);
}

/// The keyboard's place: around an unselected row in the accent, within a selected one in its text
/// colour, for there the accent would not be seen.
void drawFocusRing(QPainter *painter, const RowLayout &layout, const RowColors &colors)
{
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(colors.accent, 2));
    const QRectF ring = QRectF(layout.fill).adjusted(2, 2, -2, -2);
    painter->drawRoundedRect(ring, theme::cornerRadius - 2, theme::cornerRadius - 2);
}

void drawTexts(QPainter *painter, const CounterpartRowViewModel &row, const RowLayout &layout,
               const RowColors &colors)
{
    drawEmojiText(painter, layout.name, row.title, layout.nameFont,
                  row.isUnnamed ? colors.secondary : colors.title);
    if (!row.tagEmoji.isEmpty())
        drawEmojiText(painter, layout.tagEmoji, row.tagEmoji, layout.nameFont, colors.title,
                      Qt::AlignTrailing | Qt::AlignVCenter);
    const QFont meetingFont = row.isOverdue ? theme::mediumFont(layout.meetingFont)
                                            : layout.meetingFont;
    drawEmojiText(painter, layout.meeting, row.meetingLine, meetingFont,
                  row.isOverdue ? colors.title : colors.secondary);
}

bool isCutShort(const QString &text, const QFont &font, const QRect &place)
{
    return emojiTextSize(text, font).width() > place.width();
}

} // namespace

void CounterpartRowDelegate::commitOpenEditor()
{
    if (m_openEditor)
        m_openEditor->commit();
}

void CounterpartRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                   const QModelIndex &index) const
{
    const CounterpartRowViewModel row = rowOf(index);
    const RowLayout layout(option, row.tagEmoji);
    const RowColors colors(option);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setLayoutDirection(option.direction);
    drawFill(painter, option, layout.fill);
    if (row.isOverdue) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(colors.accent);
        painter->drawRoundedRect(layout.overdueBar, overdueBarWidth / 2.0, overdueBarWidth / 2.0);
    }
    if (option.state & QStyle::State_HasFocus)
        drawFocusRing(painter, layout, colors);
    drawTexts(painter, row, layout, colors);
    painter->restore();
}

QSize CounterpartRowDelegate::sizeHint(const QStyleOptionViewItem &option,
                                       const QModelIndex &) const
{
    const RowLayout layout(option, {});
    return {0, 2 * theme::relatedSpacing + layout.name.height() + lineSpacing
                   + layout.meeting.height()};
}

QWidget *CounterpartRowDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                              const QModelIndex &) const
{
    auto *editor = new RowNameEditor(const_cast<CounterpartRowDelegate *>(this), parent);
    editor->setAccessibleName(tr("Name", "Accessible name of the field for a teammate's name"));
    editor->setPlaceholderText(CounterpartRowViewModel::unnamedTitle());
    m_openEditor = editor;
    return editor;
}

void CounterpartRowDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    static_cast<RowNameEditor *>(editor)->setName(index.data(Qt::EditRole).toString());
}

void CounterpartRowDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                          const QModelIndex &index) const
{
    static_cast<RowNameEditor *>(editor)->writeTo(model, index);
}

void CounterpartRowDelegate::updateEditorGeometry(QWidget *editor,
                                                  const QStyleOptionViewItem &option,
                                                  const QModelIndex &) const
{
    // Wider than the name by the field's own frame, so that the text does not jump.
    const QRect name = RowLayout(option, {}).name;
    const int frame = theme::gridUnit;
    editor->setGeometry(name.adjusted(-frame, -frame, frame, frame));
}

bool CounterpartRowDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                       const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const CounterpartRowViewModel row = rowOf(index);
    const RowLayout layout(option, row.tagEmoji);
    const bool cutShort = isCutShort(row.title, layout.nameFont, layout.name)
                          || isCutShort(row.meetingLine, layout.meetingFont, layout.meeting)
                          || isCutShort(row.tagEmoji, layout.nameFont, layout.tagEmoji);
    const QString text = cutShort ? row.toolTip() : QString();
    showPlainToolTip(event->globalPos(), text, view->viewport(), option.rect);
    return true;
}

bool CounterpartRowDelegate::eventFilter(QObject *object, QEvent *event)
{
    auto *editor = qobject_cast<RowNameEditor *>(object);
    return (editor && editor->handleEvent(event))
           || QStyledItemDelegate::eventFilter(object, event);
}

} // namespace tembra
