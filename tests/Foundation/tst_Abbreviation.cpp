#include "Foundation/Text/Abbreviation.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_Abbreviation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTextThatFitsIsShared();
    void aLongTextEndsInAnEllipsis_data();
    void aLongTextEndsInAnEllipsis();
    void aSingleLineHasBlanksForBreaks_data();
    void aSingleLineHasBlanksForBreaks();
    void aSingleLineOfAHugeTextIsShort_data();
    void aSingleLineOfAHugeTextIsShort();
};

void tst_Abbreviation::aTextThatFitsIsShared()
{
    const QString text(3, u'x');
    QVERIFY(abbreviated(text, 3).isSharedWith(text));
    QVERIFY(singleLine(text).isSharedWith(text));
    QVERIFY(singleLine({}).isNull());
    QVERIFY(!singleLine(u""_s).isNull());
}

void tst_Abbreviation::aLongTextEndsInAnEllipsis_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("longest");
    QTest::addColumn<QString>("expected");
    const QString family = u"👨‍👩‍👧"_s;
    const QString manyAccents = u'e' + QString(5000, QChar(0x301));
    QTest::newRow("letters") << u"abcdef"_s << 4 << u"abcd…"_s;
    QTest::newRow("pair") << u"abc😀d"_s << 4 << u"abc…"_s;
    QTest::newRow("emoji of several") << QString(u"ab" + family + u"cd") << 6 << u"ab…"_s;
    QTest::newRow("behind an emoji") << QString(u"ab" + family + u"cd") << 2 + int(family.size())
                                     << QString(u"ab" + family + u'…');
    QTest::newRow("accent") << u"abce\u0301f"_s << 4 << u"abc…"_s;
    QTest::newRow("CR LF") << u"abc\r\nd"_s << 4 << u"abc…"_s;
    QTest::newRow("a character longer than the line")
        << manyAccents << 300 << QString(manyAccents.left(300) + u'…');
}

void tst_Abbreviation::aLongTextEndsInAnEllipsis()
{
    QFETCH(QString, text);
    QFETCH(int, longest);
    QTEST(abbreviated(text, longest), "expected");
}

void tst_Abbreviation::aSingleLineHasBlanksForBreaks_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("LF") << u"Ana\nSilva"_s;
    QTest::newRow("CR LF") << u"Ana\r\nSilva"_s;
    QTest::newRow("CR") << u"Ana\rSilva"_s;
    QTest::newRow("tab") << u"Ana\tSilva"_s;
    QTest::newRow("vertical tab") << u"Ana\vSilva"_s;
    QTest::newRow("form feed") << u"Ana\fSilva"_s;
    QTest::newRow("next line") << u"Ana\u0085Silva"_s;
    QTest::newRow("line separator") << u"Ana\u2028Silva"_s;
    QTest::newRow("paragraph separator") << u"Ana\u2029Silva"_s;
    QTest::newRow("blank") << u"Ana Silva"_s;
}

void tst_Abbreviation::aSingleLineHasBlanksForBreaks()
{
    QFETCH(QString, text);
    QCOMPARE(singleLine(text), u"Ana Silva"_s);
}

void tst_Abbreviation::aSingleLineOfAHugeTextIsShort_data()
{
    QTest::addColumn<QString>("part");
    QTest::newRow("letters") << u"x"_s;
    QTest::newRow("emoji") << u"🎯"_s;
    QTest::newRow("line breaks") << u"\r\n"_s;
    QTest::newRow("accents") << u"\u0301"_s;
}

void tst_Abbreviation::aSingleLineOfAHugeTextIsShort()
{
    QFETCH(QString, part);
    const QString huge = part.repeated(50'000'000 / part.size());
    const QString line = singleLine(huge);
    QVERIFY(line.size() <= longestShownLine + 1);
    QVERIFY(line.size() > longestShownLine / 2 || part == u"\r\n"_s);
    QVERIFY(line.endsWith(u'…'));
}

QTEST_GUILESS_MAIN(tst_Abbreviation)
#include "tst_Abbreviation.moc"
