#include "Toolkit/Emoji/RecentEmoji.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString recentKey()
{
    return u"EmojiPalette/recent"_s;
}

} // namespace

RecentEmoji::RecentEmoji(const QString &file) : m_settings(file, QSettings::IniFormat) {}

QStringList RecentEmoji::emoji() const
{
    QStringList stored = m_settings.value(recentKey()).toStringList();
    stored.removeAll(QString());
    stored.removeDuplicates();
    return stored.mid(0, limit);
}

void RecentEmoji::add(const QString &emoji)
{
    if (emoji.isEmpty())
        return;
    QStringList all = this->emoji();
    all.removeAll(emoji);
    all.prepend(emoji);
    m_settings.setValue(recentKey(), all.mid(0, limit));
}

} // namespace tembra
