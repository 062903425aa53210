#include "Model/EmojiMapping.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_EmojiMapping : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsAnOverride();
    void reportsThatAnOverrideIsGone();
    void disabledRowTakesTheEmojiAndReportsNone();
    void withoutAClosureNothingIsReported();
};

void tst_EmojiMapping::reportsAnOverride()
{
    EmojiMapping mapping;
    mapping.identifier = 3;
    int reportedIdentifier = -1;
    std::optional<QString> reported;
    mapping.mappingClosure = [&](int identifier, const std::optional<QString> &emoji) {
        reportedIdentifier = identifier;
        reported = emoji;
    };
    QSignalSpy changed(&mapping, &EmojiMapping::emojiOverrideChanged);
    mapping.setEmojiOverride(u"🥳"_s);
    QCOMPARE(mapping.emojiOverride().value(), u"🥳"_s);
    QCOMPARE(reportedIdentifier, 3);
    QCOMPARE(reported.value(), u"🥳"_s);
    QCOMPARE(changed.count(), 1);
}

void tst_EmojiMapping::reportsThatAnOverrideIsGone()
{
    EmojiMapping mapping;
    mapping.identifier = 0;
    bool reportedNone = false;
    mapping.mappingClosure = [&](int, const std::optional<QString> &emoji) {
        reportedNone = !emoji;
    };
    mapping.setEmojiOverride({});
    QVERIFY(reportedNone);
}

void tst_EmojiMapping::disabledRowTakesTheEmojiAndReportsNone()
{
    EmojiMapping mapping;
    mapping.identifier = 3;
    mapping.enabled = false;
    int reports = 0;
    mapping.mappingClosure = [&](int, const std::optional<QString> &) { ++reports; };
    mapping.setEmojiOverride(u"🥳"_s);
    QCOMPARE(mapping.emojiOverride().value(), u"🥳"_s);
    QCOMPARE(reports, 0);
}

void tst_EmojiMapping::withoutAClosureNothingIsReported()
{
    EmojiMapping mapping;
    mapping.setEmojiOverride(u"🥳"_s);
    QCOMPARE(mapping.emojiOverride().value(), u"🥳"_s);
}

QTEST_GUILESS_MAIN(tst_EmojiMapping)
#include "tst_EmojiMapping.moc"
