#include "Model/DefaultsManager.h"
#include "Model/NotificationCenter.h"
#include "Model/SentimentScale.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_SentimentScale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void allValuesInRawOrder();
    void overrideIsReadAtEveryLookup();
    void overrideOfZeroReplacesTheDash();
    void emptyOverrideIsShownAsEmpty();
    void overrideAppliesOffTheScaleToo();

private:
    QTemporaryDir m_directory;
    NotificationCenter m_notifications;
    DefaultsManager m_defaults{m_directory.filePath(u"settings.ini"_s), m_notifications};
};

void tst_SentimentScale::values_data()
{
    QTest::addColumn<bool>("personal");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("emoji");

    const QStringList personalLabels{u"None"_s,    u"Satisfied"_s,  u"Disappointed"_s,
                                     u"Excited"_s, u"Frustrated"_s, u"Tired"_s,
                                     u"Proud"_s,   u"Disengaged"_s, u"Confused"_s};
    const QStringList personalEmoji{u"\u2014"_s,     u"\U0001F642"_s, u"\U0001F614"_s,
                                    u"\U0001F929"_s, u"\U0001F616"_s, u"\U0001F915"_s,
                                    u"\U0001F60E"_s, u"\U0001F610"_s, u"\U0001F914"_s};
    for (int value = 0; value < personalLabels.size(); ++value)
        QTest::addRow("personal %d", value)
            << true << value << personalLabels.at(value) << personalEmoji.at(value);
    const QStringList meetingLabels{u"None"_s,  u"Impactful"_s,   u"Passionate"_s, u"Uneventful"_s,
                                    u"Tense"_s, u"Frustrating"_s, u"Energizing"_s};
    const QStringList meetingEmoji{u"\u2014"_s,       u"💥"_s, u"\U0001F64C"_s, u"\u2705"_s,
                                   u"\u26A1\uFE0F"_s, u"😤"_s, u"🔋"_s};
    for (int value = 0; value < meetingLabels.size(); ++value)
        QTest::addRow("meeting %d", value)
            << false << value << meetingLabels.at(value) << meetingEmoji.at(value);

    QTest::newRow("personal above the scale") << true << 9 << u"None"_s << u"—"_s;
    QTest::newRow("personal below the scale") << true << -1 << u"None"_s << u"—"_s;
    QTest::newRow("meeting above the scale") << false << 7 << u"None"_s << u"—"_s;
}

void tst_SentimentScale::values()
{
    QFETCH(bool, personal);
    QFETCH(int, value);
    const SentimentScale &scale = personal ? SentimentScale::personal() : SentimentScale::meeting();
    QTEST(scale.label(value), "label");
    QTEST(scale.emoji(value, m_defaults), "emoji");
}

void tst_SentimentScale::allValuesInRawOrder()
{
    QCOMPARE(SentimentScale::personal().allValues(), QList<int>({0, 1, 2, 3, 4, 5, 6, 7, 8}));
    QCOMPARE(SentimentScale::meeting().allValues(), QList<int>({0, 1, 2, 3, 4, 5, 6}));
}

void tst_SentimentScale::overrideIsReadAtEveryLookup()
{
    const SentimentScale &scale = SentimentScale::personal();
    const QString key = scale.overrideKey(3);
    QCOMPARE(key, u"personalSentimentKey3"_s);
    m_defaults.setEmojiOverride(key, u"🥳"_s);
    QCOMPARE(scale.emoji(3, m_defaults), u"🥳"_s);
    m_defaults.setEmojiOverride(key, {});
    QCOMPARE(scale.emoji(3, m_defaults), u"🤩"_s);
}

void tst_SentimentScale::overrideOfZeroReplacesTheDash()
{
    const QString key = SentimentScale::personal().overrideKey(0);
    m_defaults.setEmojiOverride(key, u"🫥"_s);
    QCOMPARE(SentimentScale::personal().emoji(0, m_defaults), u"🫥"_s);
    m_defaults.setEmojiOverride(key, {});
}

void tst_SentimentScale::emptyOverrideIsShownAsEmpty()
{
    const QString key = SentimentScale::meeting().overrideKey(4);
    QCOMPARE(key, u"meetingSentimentKey4"_s);
    m_defaults.setEmojiOverride(key, u""_s);
    QCOMPARE(SentimentScale::meeting().emoji(4, m_defaults), u""_s);
    m_defaults.setEmojiOverride(key, {});
}

void tst_SentimentScale::overrideAppliesOffTheScaleToo()
{
    const QString key = SentimentScale::meeting().overrideKey(7);
    m_defaults.setEmojiOverride(key, u"🦄"_s);
    QCOMPARE(SentimentScale::meeting().emoji(7, m_defaults), u"🦄"_s);
    m_defaults.setEmojiOverride(key, {});
}

QTEST_GUILESS_MAIN(tst_SentimentScale)
#include "tst_SentimentScale.moc"
