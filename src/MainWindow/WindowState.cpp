#include "MainWindow/WindowState.h"

#include <QGuiApplication>
#include <QMargins>
#include <QRect>
#include <QScreen>
#include <QSplitter>
#include <QStringBuilder>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString geometryKey(const QString &name)
{
    return name + u"/geometry"_s;
}

QString maximizedKey(const QString &name)
{
    return name + u"/maximized"_s;
}

QString splitKey(const QString &name)
{
    return name + u"/split"_s;
}

/// Empty unless each value is one.
QList<int> numbers(const QVariant &values)
{
    QList<int> result;
    for (const QString &value : values.toStringList()) {
        bool isNumber = false;
        result.append(value.toInt(&isNumber));
        if (!isNumber)
            return {};
    }
    return result;
}

QRect rectangle(const QVariant &values)
{
    const QList<int> parts = numbers(values);
    return parts.size() == 4 ? QRect(parts[0], parts[1], parts[2], parts[3]) : QRect();
}

QVariantList variants(const QList<int> &values)
{
    return {values.begin(), values.end()};
}

/// How thick a frame the window manager draws is not known before the window is shown: at most this.
QMargins usualFrame(const QWidget &window)
{
    constexpr int border = 8;
    return {border, window.style()->pixelMetric(QStyle::PM_TitleBarHeight) + border, border,
            border};
}

QRect availableAround(const QRect &place)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const auto overlap = [&place](const QScreen *screen) {
        const QRect common = screen->availableGeometry() & place;
        return qint64(common.width()) * common.height();
    };
    const auto best = std::max_element(screens.begin(), screens.end(),
                                       [&overlap](auto *left, auto *right) {
                                           return overlap(left) < overlap(right);
                                       });
    const QScreen *screen = overlap(*best) > 0 ? *best : QGuiApplication::primaryScreen();
    return screen->availableGeometry();
}

QRect fitted(QRect place, const QRect &available)
{
    place.setSize(place.size().boundedTo(available.size()));
    place.moveLeft(
        std::clamp(place.left(), available.left(), available.right() + 1 - place.width()));
    place.moveTop(
        std::clamp(place.top(), available.top(), available.bottom() + 1 - place.height()));
    return place;
}

} // namespace

WindowState::WindowState(const QString &file) : m_settings(file, QSettings::IniFormat) {}

void WindowState::restoreWindow(const QString &name, QWidget &window, QSize defaultSize) const
{
    const QRect stored = rectangle(m_settings.value(geometryKey(name)));
    const QMargins frame = usualFrame(window);
    const QRect available = (stored.isValid() ? availableAround(stored)
                                              : window.screen()->availableGeometry())
                            - frame;
    window.setMinimumSize(window.minimumSize().boundedTo(available.size()));
    if (stored.isValid())
        window.setGeometry(fitted(stored, available));
    else
        window.resize(defaultSize.boundedTo(available.size()));
    if (m_settings.value(maximizedKey(name)).toBool())
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

void WindowState::saveWindow(const QString &name, const QWidget &window)
{
    const QRect place = window.normalGeometry();
    m_settings.setValue(geometryKey(name),
                        variants({place.x(), place.y(), place.width(), place.height()}));
    m_settings.setValue(maximizedKey(name), window.isMaximized());
}

void WindowState::restoreSplit(const QString &name, QSplitter &splitter,
                               const QList<int> &defaultSizes) const
{
    const QList<int> stored = numbers(m_settings.value(splitKey(name)));
    const bool isUsable = stored.size() == splitter.count()
                          && std::all_of(stored.begin(), stored.end(),
                                         [](int size) { return size > 0; });
    splitter.setSizes(isUsable ? stored : defaultSizes);
}

void WindowState::saveSplit(const QString &name, const QSplitter &splitter)
{
    m_settings.setValue(splitKey(name), variants(splitter.sizes()));
}

} // namespace tembra
