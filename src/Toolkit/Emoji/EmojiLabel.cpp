#include "Toolkit/Emoji/EmojiLabel.h"

#include "Foundation/Text/Abbreviation.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QHelpEvent>
#include <QPainter>

#include <cmath>

namespace tembra {

EmojiLabel::EmojiLabel(QWidget *parent) : EmojiLabel(QString(), parent) {}

EmojiLabel::EmojiLabel(const QString &text, QWidget *parent) : QLabel(text, parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void EmojiLabel::setSecondary(bool secondary)
{
    m_secondary = secondary;
    update();
}

bool EmojiLabel::isElided() const
{
    return text().size() > longestShownLine
           || std::floor(emojiTextSize(text(), font()).width()) > contentsRect().width();
}

QSize EmojiLabel::sizeHint() const
{
    return emojiTextSize(text(), font()).toSize() + QSize(1, 0);
}

QSize EmojiLabel::minimumSizeHint() const
{
    const int fewCharacters = 4 * fontMetrics().averageCharWidth();
    return {std::min(fewCharacters, sizeHint().width()), sizeHint().height()};
}

bool EmojiLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        if (isElided())
            showPlainToolTip(static_cast<QHelpEvent *>(event)->globalPos(), text(), this);
        else
            event->ignore();
        return true;
    }
    return QLabel::event(event);
}

void EmojiLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor color = m_secondary && isEnabled()
                             ? theme::secondaryText(palette(), backgroundRole())
                             : palette().color(group, foregroundRole());
    drawEmojiText(&painter, contentsRect(), text(), font(), color, alignment());
}

} // namespace tembra
