#include "Preferences/InputControls/DynamicTextField.h"

#include "Foundation/Text/EmojiSegmentation.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Theme.h"

#include <QPainter>
#include <QResizeEvent>
#include <QStyle>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace tembra {

namespace {

constexpr double unlimitedWidth = 1 << 24;
constexpr int fewCharacters = 12;

/// As a text layout wants it: one paragraph, whose lines end where the text's do.
QString laidOutText(const QString &text)
{
    return displayText(text).replace(u'\n', QChar::LineSeparator);
}

QList<QTextLayout::FormatRange> colouredEmoji(const QString &text, const QFont &font)
{
    QTextCharFormat format;
    format.setFont(emojiFont(font), QTextCharFormat::FontPropertiesAll);
    QList<QTextLayout::FormatRange> ranges;
    for (const EmojiRun &run : emojiRuns(text)) {
        if (run.isEmoji)
            ranges.append({int(run.start), int(run.length), format});
    }
    return ranges;
}

} // namespace

DynamicTextField::DynamicTextField(QWidget *parent) : DynamicTextField(QString(), parent) {}

DynamicTextField::DynamicTextField(const QString &text, QWidget *parent) : QLabel(text, parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setWraps(true);
}

void DynamicTextField::setWraps(bool wraps)
{
    // A base class that knows of the wrapping tells the layouts that the height depends on the width.
    setWordWrap(wraps);
    updateGeometry();
}

void DynamicTextField::setSecondary(bool secondary)
{
    m_secondary = secondary;
    update();
}

int DynamicTextField::horizontalMargins() const
{
    return width() - contentsRect().width();
}

int DynamicTextField::verticalMargins() const
{
    return height() - contentsRect().height();
}

QSizeF DynamicTextField::layOut(QTextLayout &layout, double width) const
{
    layout.setFormats(colouredEmoji(layout.text(), font()));
    QTextOption option(QStyle::visualAlignment(layoutDirection(), alignment())
                       & Qt::AlignHorizontal_Mask);
    option.setTextDirection(Qt::LayoutDirectionAuto);
    option.setWrapMode(wraps() ? QTextOption::WrapAtWordBoundaryOrAnywhere
                               : QTextOption::ManualWrap);
    layout.setTextOption(option);
    QSizeF size(0, 0);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, size.height()});
        size = {std::max(size.width(), line.naturalTextWidth()), size.height() + line.height()};
    }
    layout.endLayout();
    // An empty text too is a line high.
    return size.expandedTo({0, QFontMetricsF(font()).height()});
}

QSizeF DynamicTextField::wrappedSize(double width) const
{
    QTextLayout layout(laidOutText(text()), font());
    return layOut(layout, width);
}

QSize DynamicTextField::sizeHint() const
{
    const double room = wraps() ? std::max(0, contentsRect().width()) : unlimitedWidth;
    const QSizeF size = wrappedSize(room);
    return {int(std::ceil(size.width())) + horizontalMargins(),
            int(std::ceil(size.height())) + verticalMargins()};
}

QSize DynamicTextField::minimumSizeHint() const
{
    const QSize size = sizeHint();
    const int narrow = fewCharacters * fontMetrics().averageCharWidth() + horizontalMargins();
    return {std::min(narrow, size.width()), size.height()};
}

int DynamicTextField::heightForWidth(int width) const
{
    if (!wraps())
        return -1;
    return int(std::ceil(wrappedSize(std::max(0, width - horizontalMargins())).height()))
           + verticalMargins();
}

void DynamicTextField::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    if (wraps() && event->oldSize().width() != event->size().width())
        updateGeometry();
}

void DynamicTextField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    painter.setPen(m_secondary && isEnabled() ? theme::secondaryText(palette(), backgroundRole())
                                              : palette().color(group, foregroundRole()));
    QTextLayout layout(laidOutText(text()), font());
    layOut(layout, contentsRect().width());
    layout.draw(&painter, contentsRect().topLeft());
}

} // namespace tembra
