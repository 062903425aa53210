#include "Foundation/Text/EmojiSegmentation.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_EmojiSegmentation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmojiOrNot_data();
    void isEmojiOrNot();
    void splitsIntoRuns_data();
    void splitsIntoRuns();
    void runsCoverWholeText();
    void removesVariationSelectors_data();
    void removesVariationSelectors();
};

void tst_EmojiSegmentation::isEmojiOrNot_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isEmoji");

    QTest::newRow("face") << u"😀"_s << true;
    QTest::newRow("several") << u"😀🎉👍"_s << true;
    QTest::newRow("skin tone") << u"👍🏽"_s << true;
    QTest::newRow("family") << u"👨‍👩‍👧‍👦"_s << true;
    QTest::newRow("flag of a country") << u"🇩🇪"_s << true;
    QTest::newRow("flag of a region") << u"🏴󠁧󠁢󠁳󠁣󠁴󠁿"_s << true;
    QTest::newRow("rainbow flag") << u"🏳️‍🌈"_s << true;
    QTest::newRow("half a flag") << u"🇩"_s << true;
    QTest::newRow("keycap") << u"1️⃣"_s << true;
    QTest::newRow("keycap without selector") << u"1⃣"_s << true;
    QTest::newRow("keycap of a hash") << u"#️⃣"_s << true;
    QTest::newRow("high voltage, selector") << u"⚡️"_s << true;
    QTest::newRow("high voltage, bare") << u"⚡"_s << true;
    QTest::newRow("warning, bare") << u"⚠"_s << true;
    QTest::newRow("heart, bare") << u"❤"_s << true;
    QTest::newRow("label") << u"🏷"_s << true;
    QTest::newRow("copyright") << u"©"_s << true;
    QTest::newRow("registered") << u"®"_s << true;
    QTest::newRow("trade mark") << u"™"_s << true;
    QTest::newRow("circled Japanese letter") << u"㊗"_s << true;
    QTest::newRow("pictograph yet to be assigned") << u"\U0001FAFF"_s << true;

    QTest::newRow("ASCII") << u"Talked 1:1 #2 *"_s << false;
    QTest::newRow("digit with selector") << u"1\uFE0F"_s << false;
    QTest::newRow("accents") << u"Café, Größe, e\u0301"_s << false;
    QTest::newRow("dashes and quotes") << u"“a” – b… €"_s << false;
    QTest::newRow("Greek and Cyrillic") << u"Ωμέγα Проект"_s << false;
    QTest::newRow("Chinese") << u"会议"_s << false;
    QTest::newRow("Chinese beyond 16 bits") << u"𠮷"_s << false;
    QTest::newRow("Korean") << u"회의"_s << false;
    QTest::newRow("mathematical letters") << u"𝐀𝐁"_s << false;
    QTest::newRow("lone surrogate") << QString(QChar(0xD83D)) << false;
    QTest::newRow("U+0000") << QString(QChar(0)) << false;
    QTest::newRow("no selection") << u"—"_s << false;
}

void tst_EmojiSegmentation::isEmojiOrNot()
{
    QFETCH(QString, text);
    QFETCH(bool, isEmoji);
    const QList<EmojiRun> expected{{0, text.size(), isEmoji}};
    QCOMPARE(emojiRuns(text), expected);
}

void tst_EmojiSegmentation::splitsIntoRuns_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<EmojiRun>>("expected");

    using Runs = QList<EmojiRun>;
    QTest::newRow("nothing") << u""_s << Runs{};
    QTest::newRow("missing") << QString() << Runs{};
    QTest::newRow("date and ratings")
        << u"Today 😀 💥 —"_s
        << Runs{{0, 6, false}, {6, 2, true}, {8, 1, false}, {9, 2, true}, {11, 2, false}};
    QTest::newRow("overdue") << u"⚠️ Today"_s << Runs{{0, 2, true}, {2, 6, false}};
    QTest::newRow("digit, keycap, digit")
        << u"11⃣1"_s << Runs{{0, 1, false}, {1, 2, true}, {3, 1, false}};
    QTest::newRow("word with accent and flag")
        << u"é🇫🇷e\u0301"_s << Runs{{0, 1, false}, {1, 4, true}, {5, 2, false}};
    QTest::newRow("joiner after a letter joins nothing")
        << u"a\u200D😀"_s << Runs{{0, 2, false}, {2, 2, true}};
    QTest::newRow("lone surrogate before an emoji")
        << QString(QChar(0xD83D) + u"😀"_s) << Runs{{0, 1, false}, {1, 2, true}};
    QTest::newRow("line break") << u"😀\n😀"_s << Runs{{0, 2, true}, {2, 1, false}, {3, 2, true}};
}

void tst_EmojiSegmentation::splitsIntoRuns()
{
    QFETCH(QString, text);
    QFETCH(QList<EmojiRun>, expected);
    QCOMPARE(emojiRuns(text), expected);
}

void tst_EmojiSegmentation::runsCoverWholeText()
{
    const QString text = QString(u"Ana 👩🏽‍💻 ok 1️⃣\u0000é⚡️🇩🇪🇫"_s)
                             .repeated(50);
    qsizetype end = 0;
    bool previousIsEmoji = true;
    for (const EmojiRun &run : emojiRuns(text)) {
        QCOMPARE(run.start, end);
        QVERIFY(run.length > 0);
        QVERIFY(run.isEmoji != previousIsEmoji);
        end += run.length;
        previousIsEmoji = run.isEmoji;
    }
    QCOMPARE(end, text.size());
}

void tst_EmojiSegmentation::removesVariationSelectors_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("none") << u"Ana 😀"_s << u"Ana 😀"_s;
    QTest::newRow("one") << u"⚠️ Today"_s << u"\u26A0 Today"_s;
    QTest::newRow("within a sequence") << u"🏳️‍🌈"_s << u"\U0001F3F3\u200D\U0001F308"_s;
    QTest::newRow("keycap") << u"1️⃣"_s << u"1\u20E3"_s;
    QTest::newRow("only") << u"\uFE0F"_s << u""_s;
    QTest::newRow("text presentation stays") << u"❤\uFE0E"_s << u"❤\uFE0E"_s;
}

void tst_EmojiSegmentation::removesVariationSelectors()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const QString before = text;
    QCOMPARE(withoutVariationSelectors(text), expected);
    QCOMPARE(text, before);
}

QTEST_GUILESS_MAIN(tst_EmojiSegmentation)
#include "tst_EmojiSegmentation.moc"
