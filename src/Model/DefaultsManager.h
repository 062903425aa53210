#pragma once

#include <QObject>
#include <QSettings>
#include <QString>
#include <QUrl>

#include <optional>

namespace tembra {

class NotificationCenter;

/// The user's settings: one file with the keys below and no others. Nothing is kept in memory;
/// each read sees the latest write.
class DefaultsManager : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1StringView counterpartStalenessIntervalKey{
        "counterpartStalenessIntervalKey"};
    static constexpr QLatin1StringView backupPathKey{"backupPathKey"};
    static constexpr QLatin1StringView shouldBackUpDataKey{"shouldBackUpDataKey"};
    static constexpr QLatin1StringView lastUsedVersionKey{"lastUsedVersionKey"};
    static constexpr QLatin1StringView wholeTeamSelectedFieldsKey{"wholeTeamSelectedFieldsKey"};
    static constexpr QLatin1StringView singleTeammateSelectedFieldsKey{
        "singleTeammateSelectedFieldsKey"};

    /// @p settingsFile is made at the first write, readable by the user alone.
    DefaultsManager(const QString &settingsFile, NotificationCenter &notifications,
                    QObject *parent = nullptr);

    /// Registers the two defaults: 14 days until a teammate is overdue, backups in the Documents
    /// folder. They answer reads of absent keys and are never written. Call before any read.
    void registerDefaults();

    /// Days after which a teammate is overdue.
    qint64 counterpartStalenessInterval() const;
    void setCounterpartStalenessInterval(qint64 days); ///< Posts didChangeStaleness.

    /// The folder of automatic backups, or nothing.
    std::optional<QUrl> backupFolder() const;
    /// True when there is a backup folder and an item exists at its path.
    bool isBackupFolderAvailable() const;
    /// The same of any folder; may be asked in any thread, and wait for a disk far away.
    static bool isAvailable(const QUrl &folder);
    bool shouldBackUpData() const;

    QString lastUsedVersion() const; ///< Null when no version has ever run.
    void setLastUsedVersion(const QString &version);

    // The names under which the user's own emoji for a value of a scale are stored.
    static QString personalOverrideKey(int value);
    static QString meetingOverrideKey(int value);
    static QString flagOverrideKey(int value);

    /// The emoji stored under one of the keys above; nothing when the default applies. An empty
    /// stored text is an override like any other.
    std::optional<QString> emojiOverride(const QString &overrideKey) const;
    std::optional<QString> flagOverride(int value) const;
    /// Stores an emoji under one of the keys above, or removes it. Does not post anything.
    void setEmojiOverride(const QString &overrideKey, const std::optional<QString> &emoji);
    /// Posts didChangeEmoji; for whoever has stored or removed an override.
    void emojiChanged();

private:
    QVariant read(QAnyStringView key) const;
    void write(QAnyStringView key, const QVariant &value);

    mutable QSettings m_settings;
    QVariantHash m_registeredDefaults;
    NotificationCenter &m_notifications;
};

} // namespace tembra
