#include "Toolkit/EmojiComboBox.h"

#include "Toolkit/EmojiItemDelegate.h"
#include "Toolkit/EmojiText.h"

#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace tembra {

EmojiComboBox::EmojiComboBox(QWidget *parent) : QComboBox(parent)
{
    setItemDelegate(new EmojiItemDelegate(this));
}

QSize EmojiComboBox::sizeHint() const
{
    QSizeF widest(0, fontMetrics().height());
    for (int row = 0; row < count(); ++row)
        widest = widest.expandedTo(emojiTextSize(itemText(row), font()));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, widest.toSize() + QSize(1, 2),
                                     this);
}

QSize EmojiComboBox::minimumSizeHint() const
{
    return sizeHint();
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
