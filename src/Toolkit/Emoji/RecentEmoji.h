#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>

namespace tembra {

/// The emoji that were inserted last, from one start to the next. Kept in a file of window
/// matters, apart from the user's settings.
class RecentEmoji
{
public:
    /// Two rows of the palette.
    static constexpr qsizetype limit = 18;

    explicit RecentEmoji(const QString &file);

    /// The last one first; each once.
    QStringList emoji() const;
    void add(const QString &emoji);

private:
    QSettings m_settings;
};

} // namespace tembra
