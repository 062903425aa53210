#include "Model/DefaultsManager.h"
#include "Model/NotificationCenter.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_DefaultsManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void freshAccount();
    void nothingIsRegisteredBeforeItIsAskedFor();
    void registeredDefaultsAreNotWritten();
    void settingsPersist();
    void eachReadSeesTheLatestWrite();
    void removedBackupFolderIsNotAvailable();
    void overrideKeys();
    void flagOverride();
    void notifications();
    void fileIsForTheUserAlone();

private:
    QString file() const { return m_directory->filePath(u"settings.ini"_s); }

    std::unique_ptr<QTemporaryDir> m_directory;
    NotificationCenter m_notifications;
};

void tst_DefaultsManager::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void tst_DefaultsManager::freshAccount()
{
    DefaultsManager defaults(file(), m_notifications);
    defaults.registerDefaults();
    QCOMPARE(defaults.counterpartStalenessInterval(), 14);
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QCOMPARE(defaults.backupFolder().value(), QUrl::fromLocalFile(documents));
    QVERIFY(!defaults.shouldBackUpData());
    QVERIFY(defaults.lastUsedVersion().isNull());
    QVERIFY(!defaults.emojiOverride(DefaultsManager::personalOverrideKey(1)));
}

void tst_DefaultsManager::nothingIsRegisteredBeforeItIsAskedFor()
{
    const DefaultsManager defaults(file(), m_notifications);
    QCOMPARE(defaults.counterpartStalenessInterval(), 0);
    QVERIFY(!defaults.backupFolder());
    QVERIFY(!defaults.isBackupFolderAvailable());
}

void tst_DefaultsManager::registeredDefaultsAreNotWritten()
{
    {
        DefaultsManager defaults(file(), m_notifications);
        defaults.registerDefaults();
        defaults.setLastUsedVersion(u"1.0"_s);
    }
    const QSettings settings(file(), QSettings::IniFormat);
    QCOMPARE(settings.allKeys(), QStringList{u"lastUsedVersionKey"_s});
}

void tst_DefaultsManager::settingsPersist()
{
    {
        DefaultsManager defaults(file(), m_notifications);
        defaults.registerDefaults();
        defaults.setCounterpartStalenessInterval(21);
        defaults.setEmojiOverride(DefaultsManager::meetingOverrideKey(2), u"👩‍🚀"_s);
    }
    const DefaultsManager again(file(), m_notifications);
    QCOMPARE(again.counterpartStalenessInterval(), 21);
    QCOMPARE(again.emojiOverride(u"meetingSentimentKey2"_s).value(), u"👩‍🚀"_s);
}

void tst_DefaultsManager::eachReadSeesTheLatestWrite()
{
    DefaultsManager writer(file(), m_notifications);
    const DefaultsManager reader(file(), m_notifications);
    writer.setLastUsedVersion(u"1.0"_s);
    QCOMPARE(reader.lastUsedVersion(), u"1.0"_s);
    writer.setLastUsedVersion(u"1.1"_s);
    QCOMPARE(reader.lastUsedVersion(), u"1.1"_s);
}

void tst_DefaultsManager::removedBackupFolderIsNotAvailable()
{
    const QString folder = m_directory->filePath(u"backups"_s);
    QVERIFY(QDir().mkdir(folder));
    {
        QSettings settings(file(), QSettings::IniFormat);
        settings.setValue(u"backupPathKey"_s, QUrl::fromLocalFile(folder));
    }
    const DefaultsManager defaults(file(), m_notifications);
    QCOMPARE(defaults.backupFolder().value(), QUrl::fromLocalFile(folder));
    QVERIFY(defaults.isBackupFolderAvailable());
    QVERIFY(QDir().rmdir(folder));
    QVERIFY(!defaults.isBackupFolderAvailable());
}

void tst_DefaultsManager::overrideKeys()
{
    QCOMPARE(DefaultsManager::personalOverrideKey(3), u"personalSentimentKey3"_s);
    QCOMPARE(DefaultsManager::meetingOverrideKey(4), u"meetingSentimentKey4"_s);
    QCOMPARE(DefaultsManager::flagOverrideKey(2), u"flagKey2"_s);
}

void tst_DefaultsManager::flagOverride()
{
    DefaultsManager defaults(file(), m_notifications);
    QVERIFY(!defaults.flagOverride(2));
    defaults.setEmojiOverride(DefaultsManager::flagOverrideKey(2), u"🎏"_s);
    QCOMPARE(defaults.flagOverride(2).value(), u"🎏"_s);
}

void tst_DefaultsManager::notifications()
{
    DefaultsManager defaults(file(), m_notifications);
    QSignalSpy emoji(&m_notifications, &NotificationCenter::didChangeEmoji);
    QSignalSpy staleness(&m_notifications, &NotificationCenter::didChangeStaleness);
    defaults.emojiChanged();
    QCOMPARE(emoji.count(), 1);
    QCOMPARE(staleness.count(), 0);
    defaults.setCounterpartStalenessInterval(7);
    QCOMPARE(staleness.count(), 1);
    QCOMPARE(emoji.count(), 1);
}

void tst_DefaultsManager::fileIsForTheUserAlone()
{
    DefaultsManager defaults(file(), m_notifications);
    defaults.setLastUsedVersion(u"1.0"_s);
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QVERIFY(!(QFile::permissions(file()) & others));
}

QTEST_GUILESS_MAIN(tst_DefaultsManager)
#include "tst_DefaultsManager.moc"
