#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>

namespace tembra {

/// Keeps the emoji that were inserted last in the file of the window state, apart from the user's
/// settings.
class RecentEmoji
{
public:
    /// Two rows of the palette.
    static constexpr qsizetype limit = 18;

    explicit RecentEmoji(const QString &file);

    /// The most recent one first, each once.
    QStringList emoji() const;
    void add(const QString &emoji);

private:
    QSettings m_settings;
};

} // namespace tembra
