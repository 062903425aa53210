#pragma once

#include <QList>
#include <QString>

namespace tembra {

class DefaultsManager;

/// How the user felt, and on the same scale how the teammate did. Stored as the raw value.
enum class PersonalSentiment : qint16 {
    noSelection,
    satisfied,
    disappointed,
    excited,
    frustrated,
    tired,
    proud,
    disengaged,
    confused,
};

/// What kind of meeting it was. Stored as the raw value.
enum class MeetingSentiment : qint16 {
    noSelection,
    impactful,
    passionate,
    uneventful,
    tense,
    frustrating,
    energizing,
};

/// A rating scale: words and emoji of its raw values, 0 ("no selection") to maximum().
class SentimentScale
{
public:
    static const SentimentScale &personal();
    static const SentimentScale &meeting();

    /// Every raw value, ascending.
    QList<int> allValues() const;
    int maximum() const { return int(m_entries.size()) - 1; }
    bool contains(int value) const { return value >= 0 && value <= maximum(); }

    /// The word for a value, in the user's language; "None" for 0 and any value off the scale.
    QString label(int value) const;
    /// The user's own emoji for the value (asked for any value, also off the scale), else its
    /// default, else "—". Read from the settings at every call.
    QString emoji(int value, const DefaultsManager &defaults) const;
    /// The default emoji of a value; "—" for 0 and any value off the scale.
    QString defaultEmoji(int value) const;
    /// The settings key of the user's own emoji for a value.
    QString overrideKey(int value) const { return m_overrideKey(value); }

private:
    struct Label
    {
        const char *text;
        const char *comment; ///< For translators.
    };
    struct Entry
    {
        Label label;
        QString emoji;
    };
    SentimentScale(QList<Entry> entries, QString (*keyOfOverride)(int));

    QList<Entry> m_entries;
    QString (*m_overrideKey)(int);
};

} // namespace tembra
