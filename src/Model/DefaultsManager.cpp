#include "Model/DefaultsManager.h"

#include "Model/NotificationCenter.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace tembra {

namespace {

constexpr int stalenessIntervalDefault = 14;

} // namespace

DefaultsManager::DefaultsManager(const QString &settingsFile, NotificationCenter &notifications,
                                 QObject *parent)
    : QObject(parent)
    , m_settings(settingsFile, QSettings::IniFormat)
    , m_notifications(notifications)
{
}

void DefaultsManager::registerDefaults()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    m_registeredDefaults = {
        {counterpartStalenessIntervalKey, stalenessIntervalDefault},
        {backupPathKey, QUrl::fromLocalFile(documents)},
    };
}

qint64 DefaultsManager::counterpartStalenessInterval() const
{
    return read(counterpartStalenessIntervalKey).toLongLong();
}

void DefaultsManager::setCounterpartStalenessInterval(qint64 days)
{
    write(counterpartStalenessIntervalKey, days);
    Q_EMIT m_notifications.didChangeStaleness();
}

std::optional<QUrl> DefaultsManager::backupFolder() const
{
    const QUrl folder = read(backupPathKey).toUrl();
    return folder.isValid() ? std::optional(folder) : std::nullopt;
}

bool DefaultsManager::isBackupFolderAvailable() const
{
    const std::optional<QUrl> folder = backupFolder();
    return folder && isAvailable(*folder);
}

bool DefaultsManager::isAvailable(const QUrl &folder)
{
    return folder.isLocalFile() && QFileInfo::exists(folder.toLocalFile());
}

bool DefaultsManager::shouldBackUpData() const
{
    return read(shouldBackUpDataKey).toBool();
}

QString DefaultsManager::lastUsedVersion() const
{
    return read(lastUsedVersionKey).toString();
}

void DefaultsManager::setLastUsedVersion(const QString &version)
{
    write(lastUsedVersionKey, version);
}

QString DefaultsManager::personalOverrideKey(int value)
{
    return QStringLiteral("personalSentimentKey%1").arg(value);
}

QString DefaultsManager::meetingOverrideKey(int value)
{
    return QStringLiteral("meetingSentimentKey%1").arg(value);
}

QString DefaultsManager::flagOverrideKey(int value)
{
    return QStringLiteral("flagKey%1").arg(value);
}

std::optional<QString> DefaultsManager::emojiOverride(const QString &overrideKey) const
{
    const QVariant stored = read(overrideKey);
    return stored.isValid() ? std::optional(stored.toString()) : std::nullopt;
}

std::optional<QString> DefaultsManager::flagOverride(int value) const
{
    return emojiOverride(flagOverrideKey(value));
}

void DefaultsManager::setEmojiOverride(const QString &overrideKey,
                                       const std::optional<QString> &emoji)
{
    if (emoji)
        write(overrideKey, *emoji);
    else
        m_settings.remove(overrideKey);
}

void DefaultsManager::emojiChanged()
{
    Q_EMIT m_notifications.didChangeEmoji();
}

QVariant DefaultsManager::read(QAnyStringView key) const
{
    const QString name = key.toString();
    return m_settings.value(name, m_registeredDefaults.value(name));
}

void DefaultsManager::write(QAnyStringView key, const QVariant &value)
{
    m_settings.setValue(key.toString(), value);
    m_settings.sync();
    // The settings name the user's folders; they are nobody else's business.
    QFile::setPermissions(m_settings.fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

} // namespace tembra
