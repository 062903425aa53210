#include "Tags/TagShortcutMonitor.h"

#include "Tags/RecentTagsViewController.h"

#include <QApplication>
#include <QKeyEvent>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// The digit row's keys have the same numbers on every layout. Zero stands behind nine.
std::optional<int> digitOfScanCode(quint32 scanCode)
{
    const QString platform = QGuiApplication::platformName();
    quint32 one = 0;
    if (platform == "xcb"_L1 || platform.startsWith("wayland"_L1))
        one = 10;
    else if (platform == "windows"_L1)
        one = 2;
    if (one == 0 || scanCode < one || scanCode > one + 9)
        return std::nullopt;
    return int((scanCode - one + 1) % 10);
}

/// On Windows AltGr comes as Ctrl and Alt, but then the key types something.
bool isAltGr(const QKeyEvent &event)
{
    if (event.modifiers() & Qt::GroupSwitchModifier)
        return true;
    return QGuiApplication::platformName() == "windows"_L1 && !event.text().isEmpty()
           && event.text().front().isPrint();
}

} // namespace

TagShortcutMonitor::TagShortcutMonitor(RecentTagsViewController &recentTags)
    : m_recentTags(recentTags)
{
}

void TagShortcutMonitor::start()
{
    qApp->installEventFilter(this);
}

std::optional<int> TagShortcutMonitor::digitOf(const QKeyEvent &event)
{
    constexpr Qt::KeyboardModifiers needed = Qt::ControlModifier | Qt::AltModifier;
    if ((event.modifiers() & needed) != needed || isAltGr(event))
        return std::nullopt;
    if (event.key() >= Qt::Key_0 && event.key() <= Qt::Key_9)
        return event.key() - Qt::Key_0;
    if (event.modifiers() & Qt::KeypadModifier)
        return std::nullopt;
    return digitOfScanCode(event.nativeScanCode());
}

bool TagShortcutMonitor::eventFilter(QObject *watched, QEvent *event)
{
    // Each key goes to the native window first; what counts is the widget that gets it.
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return QObject::eventFilter(watched, event);
    const auto *window = static_cast<QWidget *>(watched)->window();
    if (!m_condition || window != m_recentTags.window() || !window->isActiveWindow()
        || !m_condition())
        return QObject::eventFilter(watched, event);
    const auto &key = *static_cast<QKeyEvent *>(event);
    const std::optional<int> digit = digitOf(key);
    // A key that is held repeats, and would add a token each time.
    return (digit && (key.isAutoRepeat() || m_recentTags.chooseByNumber(*digit)))
           || QObject::eventFilter(watched, event);
}

} // namespace tembra
