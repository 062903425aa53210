#pragma once

#include <QObject>

#include <functional>
#include <optional>

class QKeyEvent;

namespace tembra {

class RecentTagsViewController;

/// Filters key events for the shortcuts of the recent tags, wherever the keyboard is in their window.
class TagShortcutMonitor final : public QObject
{
    Q_OBJECT

public:
    explicit TagShortcutMonitor(RecentTagsViewController &recentTags);

    void start();
    /// Shortcuts work only while this returns true.
    void setCondition(std::function<bool()> condition) { m_condition = std::move(condition); }

    /// The digit that is pressed together with Ctrl and Alt, whatever else is held down: that of the
    /// key without Shift, on every layout. Nothing for other keys, and for AltGr.
    static std::optional<int> digitOf(const QKeyEvent &event);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    RecentTagsViewController &m_recentTags;
    std::function<bool()> m_condition;
};

} // namespace tembra
