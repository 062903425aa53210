#include "Foundation/Text/WellFormedText.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_WellFormedText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replacesLoneSurrogates_data();
    void replacesLoneSurrogates();
    void keepsMissingApartFromEmpty();
    void sharesTextThatIsFine();
};

void tst_WellFormedText::replacesLoneSurrogates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    const QString high(QChar(0xD83D));
    const QString low(QChar(0xDE00));
    const QString pair = high + low;
    const QString replacement(QChar(0xFFFD));
    QTest::newRow("plain") << u"Ana"_s << u"Ana"_s;
    QTest::newRow("pair") << pair << pair;
    QTest::newRow("high alone") << high << replacement;
    QTest::newRow("low alone") << low << replacement;
    QTest::newRow("high at the end") << QString(u"a" + high) << QString(u"a" + replacement);
    QTest::newRow("low at the start") << QString(low + u"a") << QString(replacement + u"a");
    QTest::newRow("wrong order") << QString(low + high) << QString(replacement + replacement);
    QTest::newRow("high before a pair") << QString(high + pair) << QString(replacement + pair);
    QTest::newRow("low after a pair") << QString(pair + low) << QString(pair + replacement);
    QTest::newRow("high before a letter") << QString(high + u"é") << QString(replacement + u"é");
    QTest::newRow("U+0000 stays") << QString(QChar(0) + low + QChar(0))
                                  << QString(QChar(0) + replacement + QChar(0));
    QTest::newRow("U+FFFD stays") << replacement << replacement;
}

void tst_WellFormedText::replacesLoneSurrogates()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(wellFormedText(text), expected);
    QVERIFY(wellFormedText(text).isValidUtf16());
}

void tst_WellFormedText::keepsMissingApartFromEmpty()
{
    QVERIFY(wellFormedText(QString()).isNull());
    QVERIFY(!wellFormedText(u""_s).isNull());
    QVERIFY(wellFormedText(u""_s).isEmpty());
}

void tst_WellFormedText::sharesTextThatIsFine()
{
    const QString text = QString(u"Zoë 😀"_s).repeated(10);
    QCOMPARE(static_cast<const void *>(wellFormedText(text).constData()),
             static_cast<const void *>(text.constData()));
}

QTEST_GUILESS_MAIN(tst_WellFormedText)
#include "tst_WellFormedText.moc"
