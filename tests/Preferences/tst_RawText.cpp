#include "Preferences/InputControls/RawText.h"

#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestRawText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesADocument_data();
    void survivesADocument();
    void replacesUnpairedSurrogates();
    void endsLinesWhereTheTextDoes();
    void breaksVeryLongParagraphs_data();
    void breaksVeryLongParagraphs();
    void forgetsTheKindOfADeletedLineEnd();
    void followsChanges();
    void tellsWhetherAnythingChanged();
    void isNullWhenEmpty();
};

void TestRawText::survivesADocument_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << u"one\ntwo"_s;
    QTest::newRow("U+0000") << QString(QString(u"a"_s) + QChar(0) + QString(u"b"_s));
    QTest::newRow("no-break space") << u"a\u00A0b\u202Fc"_s;
    QTest::newRow("line separator") << u"a\u2028b"_s;
    QTest::newRow("paragraph separator") << u"a\u2029b\u2029\u2029"_s;
    QTest::newRow("carriage returns") << u"a\rb\r\nc\r\r\n\n\r"_s;
    QTest::newRow("line end first and last") << u"\n\na\n"_s;
    QTest::newRow("reserved characters")
        << QString(QString(u"a"_s) + QChar(0xFDD0) + QChar(0xFDD1) + QChar(0xFDD2));
    QTest::newRow("object replacement") << u"a\uFFFCb"_s;
    QTest::newRow("pairs whose low half looks like a stand-in")
        << u"\U0001F400\U0001F401\U0001F404\n\U00010000\r\n"_s;
    QTest::newRow("right to left and combining") << u"שָׁלוֹם e\u0301\u0323 العَرَبِيَّة"_s;
    QTest::newRow("emoji") << u"❤️‍🔥 1️⃣ 🇩🇪"_s;
    QTest::newRow("tabs and controls") << u"\ta\u0001\u001F\u007F\u0085\uFEFF"_s;
}

void TestRawText::survivesADocument()
{
    QFETCH(QString, text);
    QTextDocument document;
    document.setPlainText(RawText::encoded(text));
    QString raw = document.toRawText();
    raw.replace(QChar::ParagraphSeparator, u'\n');
    QCOMPARE(RawText::decoded(raw), text);
    RawText followed;
    followed.replace(0, 0, raw);
    QCOMPARE(followed.text(), text);
}

void TestRawText::replacesUnpairedSurrogates()
{
    const QString text = QString(QString(u"a"_s) + QChar(0xDC00) + QString(u"b"_s) + QChar(0xD83D));
    QCOMPARE(RawText::decoded(RawText::encoded(text)), u"a\uFFFDb\uFFFD"_s);
}

void TestRawText::endsLinesWhereTheTextDoes()
{
    QTextDocument document;
    document.setPlainText(RawText::encoded(u"a\rb\r\nc\u2029d\ne"_s));
    QCOMPARE(document.blockCount(), 5);
}

void TestRawText::breaksVeryLongParagraphs_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("firstOfSecond");
    QTest::newRow("words") << u"word "_s.repeated(20'000) << u"w"_s;
    QTest::newRow("no blanks") << u"x"_s.repeated(100'000) << u"x"_s;
    QTest::newRow("pairs") << u"\U0001F600"_s.repeated(50'000) << u"\U0001F600"_s;
    QTest::newRow("combining") << QString(u"x"_s + u"e\u0301"_s.repeated(50'000)) << u"e\u0301"_s;
    QTest::newRow("joined emoji") << QString(u"x"_s
                                             + u"\u2764\uFE0F\u200D\U0001F525"_s.repeated(20'000))
                                  << u"\u2764\uFE0F"_s;
}

void TestRawText::breaksVeryLongParagraphs()
{
    QFETCH(QString, text);
    QFETCH(QString, firstOfSecond);
    const QString raw = RawText::encoded(text);
    QVERIFY(RawText::decoded(raw) == text);
    QStringList paragraphs = raw.split(u'\n');
    QVERIFY(paragraphs.size() > 10);
    for (const QString &paragraph : paragraphs)
        QVERIFY(paragraph.size() < RawText::longParagraph + 1'100);
    QVERIFY(paragraphs.at(1).startsWith(firstOfSecond));
    const QString withLineEnd = QString(u"x"_s.repeated(RawText::longParagraph) + u"\nnext"_s);
    QCOMPARE(RawText::encoded(withLineEnd), withLineEnd);
}

void TestRawText::forgetsTheKindOfADeletedLineEnd()
{
    QString raw = RawText::encoded(u"a\u2029b\r\nc"_s);
    raw.remove(u'\n');
    QCOMPARE(RawText::decoded(raw), u"abc"_s);
}

void TestRawText::followsChanges()
{
    RawText text;
    text.replace(0, 0, u"one two"_s);
    text.replace(3, 1, RawText::encoded(u"\u2029"_s));
    QCOMPARE(text.text(), u"one\u2029two"_s);
    text.replace(0, 3, {});
    QCOMPARE(text.text(), u"\u2029two"_s);
}

void TestRawText::tellsWhetherAnythingChanged()
{
    RawText text;
    QVERIFY(text.replace(0, 0, u"text"_s));
    QVERIFY(!text.replace(1, 2, u"ex"_s));
    QVERIFY(text.replace(1, 2, u"xe"_s));
}

void TestRawText::isNullWhenEmpty()
{
    RawText text;
    QVERIFY(text.text().isNull());
    text.replace(0, 0, u"a"_s);
    text.replace(0, 1, u""_s);
    QVERIFY(text.text().isNull());
}

QTEST_GUILESS_MAIN(TestRawText)
#include "tst_RawText.moc"
