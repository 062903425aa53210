#include "Foundation/Text/TrailingEmoji.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_TrailingEmoji : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheLastCluster_data();
    void findsTheLastCluster();
    void findsItInLongTexts();
    void passes_data();
    void passes();
};

void tst_TrailingEmoji::findsTheLastCluster_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("a letter") << u"Plan"_s << u"n"_s;
    QTest::newRow("a letter with an accent of its own") << u"caf\u0065\u0301"_s << u"e\u0301"_s;
    QTest::newRow("an emoji") << u"Hiring 🚀"_s << u"🚀"_s;
    QTest::newRow("a family") << u"Home 👩‍👩‍👧"_s << u"👩‍👩‍👧"_s;
    QTest::newRow("the second of two flags") << u"🇩🇪🇫🇷"_s << u"🇫🇷"_s;
    QTest::newRow("a skin tone") << u"ok 👍🏽"_s << u"👍🏽"_s;
    QTest::newRow("a keycap") << u"step 1️⃣"_s << u"1️⃣"_s;
    QTest::newRow("a lone surrogate") << QString(u"x"_s + QChar(0xD83D)) << QString(QChar(0xD83D));
}

void tst_TrailingEmoji::findsTheLastCluster()
{
    QFETCH(QString, text);
    QTEST(lastGraphemeCluster(text), "expected");
}

void tst_TrailingEmoji::findsItInLongTexts()
{
    QCOMPARE(lastGraphemeCluster(QString(10'000, u'x') + u"🏳️‍🌈"_s), u"🏳️‍🌈"_s);
    QCOMPARE(lastGraphemeCluster(u"🚀"_s.repeated(5'000)), u"🚀"_s);
}

void tst_TrailingEmoji::passes_data()
{
    QTest::addColumn<QString>("cluster");
    QTest::addColumn<bool>("expected");

    QTest::newRow("nothing") << QString() << false;
    QTest::newRow("shown as an emoji by itself") << u"🚀"_s << true;
    QTest::newRow("a flag") << u"🇩🇪"_s << true;
    QTest::newRow("a skin tone") << u"👍🏽"_s << true;
    QTest::newRow("joined") << u"👩‍💻"_s << true;
    QTest::newRow("a symbol without a variation") << u"⚠"_s << true;
    QTest::newRow("a symbol with one") << u"⚠️"_s << true;
    QTest::newRow("a symbol that is no emoji") << u"☐"_s << true;
    QTest::newRow("copyright") << u"©"_s << true;
    QTest::newRow("a keycap") << u"1️⃣"_s << true;
    QTest::newRow("a keycap without a variation") << u"1⃣"_s << false;
    QTest::newRow("a mathematical sign") << u"+"_s << false;
    QTest::newRow("an arrow, which is mathematical") << u"↔"_s << false;
    QTest::newRow("an arrow with a variation") << u"↔️"_s << true;
    QTest::newRow("a letter") << u"g"_s << false;
    QTest::newRow("a letter with an accent of its own") << u"e\u0301"_s << false;
    QTest::newRow("a letter that something joins") << u"ک\u200D"_s << true;
    QTest::newRow("a digit") << u"1"_s << false;
    QTest::newRow("a blank") << u" "_s << false;
    QTest::newRow("punctuation") << u"!"_s << false;
    QTest::newRow("two exclamation marks") << u"‼"_s << false;
}

void tst_TrailingEmoji::passes()
{
    QFETCH(QString, cluster);
    QTEST(passesForEmoji(cluster), "expected");
}

QTEST_GUILESS_MAIN(tst_TrailingEmoji)
#include "tst_TrailingEmoji.moc"
