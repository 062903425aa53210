#include "Toolkit/Theme.h"

#include <QApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace tembra::theme {

using namespace Qt::StringLiterals;

namespace {

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
           + 0.0722 * linear(color.blueF());
}

/// The text colour, as far towards its background as it may go and stay readable.
QColor dimmed(const QColor &text, const QColor &background)
{
    for (int percent = 40; percent > 0; percent -= 4) {
        const QColor color = mixed(text, background, percent / 100.0);
        if (contrast(color, background) >= readableContrast)
            return color;
    }
    return text;
}

QFont scaled(QFont font, double factor)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(std::max(1, int(std::lround(font.pixelSize() * factor))));
    else
        font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

QVariant desktopSetting(const QString &file, const QString &key)
{
    const QString path = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, file);
    return path.isEmpty() ? QVariant() : QSettings(path, QSettings::IniFormat).value(key);
}

} // namespace

double contrast(const QColor &first, const QColor &second)
{
    const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor mixed(const QColor &first, const QColor &second, double part)
{
    const auto mix = [part](float a, float b) { return float(a + (b - a) * part); };
    return QColor::fromRgbF(mix(first.redF(), second.redF()), mix(first.greenF(), second.greenF()),
                            mix(first.blueF(), second.blueF()));
}

bool isDark(const QPalette &palette)
{
    return luminance(palette.color(QPalette::Window))
           < luminance(palette.color(QPalette::WindowText));
}

QColor secondaryText(const QPalette &palette, QPalette::ColorRole background)
{
    const QPalette::ColorRole text = background == QPalette::Base     ? QPalette::Text
                                     : background == QPalette::Button ? QPalette::ButtonText
                                                                      : QPalette::WindowText;
    return dimmed(palette.color(text), palette.color(background));
}

QColor secondaryHighlightedText(const QPalette &palette)
{
    return dimmed(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight));
}

QColor hairline(const QPalette &palette)
{
    return mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.18);
}

QColor hoverFill(const QPalette &palette, QPalette::ColorRole background)
{
    return mixed(palette.color(background), palette.color(QPalette::Highlight), 0.14);
}

QFont titleFont(const QFont &font)
{
    return semiboldFont(scaled(font, 1.3));
}

QFont semiboldFont(const QFont &font)
{
    QFont result = font;
    result.setWeight(QFont::DemiBold);
    return result;
}

QFont mediumFont(const QFont &font)
{
    QFont result = font;
    result.setWeight(QFont::Medium);
    return result;
}

QFont secondaryFont(const QFont &font)
{
    return scaled(font, 0.9);
}

bool prefersReducedMotion()
{
    if (QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) == 0)
        return true;
    // Where the platform plug-in does not pass the wish on, the desktops' own files tell.
    if (desktopSetting(u"kdeglobals"_s, u"KDE/AnimationDurationFactor"_s).toString() == "0"_L1)
        return true;
    const QVariant enabled = desktopSetting(u"gtk-3.0/settings.ini"_s,
                                            u"Settings/gtk-enable-animations"_s);
    return enabled.isValid() && !enabled.toBool();
}

} // namespace tembra::theme
