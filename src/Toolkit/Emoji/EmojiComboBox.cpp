#include "Toolkit/Emoji/EmojiComboBox.h"

#include "Toolkit/Emoji/EmojiItemDelegate.h"
#include "Toolkit/Emoji/EmojiText.h"

#include <QAbstractItemView>
#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace tembra {

EmojiComboBox::EmojiComboBox(QWidget *parent) : QComboBox(parent)
{
    setItemDelegate(new EmojiItemDelegate(this));
}

QSize EmojiComboBox::sizeHint() const
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contentSize() + QSize(1, 2),
                                     this);
}

/// Measuring an emoji loads its picture: with a fixed number of them, none is measured.
QSize EmojiComboBox::contentSize() const
{
    const int lineHeight = fontMetrics().height();
    if (sizeAdjustPolicy() == AdjustToMinimumContentsLengthWithIcon)
        return {minimumContentsLength() * lineHeight, lineHeight};
    QSizeF widest(0, lineHeight);
    for (int row = 0; row < count(); ++row)
        widest = widest.expandedTo(emojiTextSize(itemText(row), font()));
    return widest.toSize();
}

QSize EmojiComboBox::minimumSizeHint() const
{
    return sizeHint();
}

void EmojiComboBox::showPopup()
{
    // Items may say more in the list than the closed menu shows.
    view()->setMinimumWidth(view()->sizeHintForColumn(0));
    QComboBox::showPopup();
}

void EmojiComboBox::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const QRect field = style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                QStyle::SC_ComboBoxEditField, this);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    drawEmojiText(&painter, field.adjusted(2, 0, -2, 0), currentText(), font(),
                  palette().color(group, QPalette::ButtonText));
}

} // namespace tembra
