#include "Tags/TagListViewModel.h"

#include <QGuiApplication>
#include <QPalette>

namespace tembra {

void TagListViewModel::setTitle(const QString &title)
{
    if (title == m_title)
        return;
    m_title = title;
    Q_EMIT titleChanged();
}

void TagListViewModel::setShortcut(const QString &shortcut)
{
    if (shortcut == m_shortcut)
        return;
    m_shortcut = shortcut;
    Q_EMIT shortcutChanged();
}

std::shared_ptr<Tag> TagListViewModel::tag() const
{
    const auto tag = m_tag.lock();
    return tag && !tag->isDeleted() ? tag : nullptr;
}

void TagListViewModel::setTag(const std::shared_ptr<Tag> &tag)
{
    m_tag = tag;
    Q_EMIT tagChanged();
}

void TagListViewModel::setEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    Q_EMIT enabledChanged();
}

QColor TagListViewModel::labelColor() const
{
    return QGuiApplication::palette().color(m_enabled ? QPalette::Active : QPalette::Disabled,
                                            QPalette::WindowText);
}

} // namespace tembra
