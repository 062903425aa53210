#include "Model/DefaultsManager.h"
#include "Model/LegacyFlags.h"
#include "Model/NotificationCenter.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_LegacyFlags : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emoji_data();
    void emoji();
    void overrideWins();
};

void tst_LegacyFlags::emoji_data()
{
    QTest::addColumn<int>("flag");
    QTest::addColumn<QString>("emoji");
    QTest::newRow("0 is empty") << 0 << u""_s;
    QTest::newRow("1") << 1 << u"\U0001F3F3\uFE0F"_s;
    QTest::newRow("2") << 2 << u"\U0001F6A9"_s;
    QTest::newRow("3") << 3 << u"\U0001F3F4"_s;
    QTest::newRow("4") << 4 << u"\u2B50\uFE0F"_s;
    QTest::newRow("5") << 5 << u"\u2665\uFE0F"_s;
    QTest::newRow("6") << 6 << u"\u26A0\uFE0F"_s;
    QTest::newRow("above 6 there is none") << 7 << QString();
}

void tst_LegacyFlags::emoji()
{
    QFETCH(int, flag);
    QFETCH(QString, emoji);
    QTemporaryDir directory;
    NotificationCenter notifications;
    const DefaultsManager defaults(directory.filePath(u"settings.ini"_s), notifications);
    QCOMPARE(legacyFlagEmoji(flag, defaults), emoji);
    QCOMPARE(legacyFlagEmoji(flag, defaults).isNull(), emoji.isNull());
}

void tst_LegacyFlags::overrideWins()
{
    QTemporaryDir directory;
    NotificationCenter notifications;
    DefaultsManager defaults(directory.filePath(u"settings.ini"_s), notifications);
    defaults.setEmojiOverride(DefaultsManager::flagOverrideKey(2), u"🎏"_s);
    QCOMPARE(legacyFlagEmoji(2, defaults), u"🎏"_s);
    defaults.setEmojiOverride(DefaultsManager::flagOverrideKey(7), u"🎏"_s);
    QVERIFY(legacyFlagEmoji(7, defaults).isNull());
}

QTEST_GUILESS_MAIN(tst_LegacyFlags)
#include "tst_LegacyFlags.moc"
