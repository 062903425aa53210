#include "Store/Undo/TypingCoalescer.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// A text as it stands after an edit, and how long after the one before.
struct Edit
{
    QString text;
    double delay = 0.1;
};

} // namespace

using Edits = QList<Edit>;
Q_DECLARE_METATYPE(Edits)

class tst_TypingCoalescer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dividesTyping_data();
    void dividesTyping();
    void belongsToOneText();
    void endsOnDemand();
    void survivesAClockSetBack();
};

void tst_TypingCoalescer::dividesTyping_data()
{
    // The pieces: one digit per edit, counting up where a new piece starts.
    QTest::addColumn<QString>("start");
    QTest::addColumn<Edits>("edits");
    QTest::addColumn<QString>("pieces");

    QTest::newRow("letters of a word")
        << u""_s << Edits{{u"a"_s}, {u"ab"_s}, {u"abc"_s}} << u"111"_s;
    QTest::newRow("a new word starts after the blank")
        << u""_s << Edits{{u"a"_s}, {u"a "_s}, {u"a b"_s}, {u"a bc"_s}} << u"1122"_s;
    QTest::newRow("several blanks belong to the word before")
        << u""_s << Edits{{u"a"_s}, {u"a "_s}, {u"a  "_s}, {u"a  b"_s}} << u"1112"_s;
    QTest::newRow("a line break is a piece of its own")
        << u""_s << Edits{{u"a"_s}, {u"a\n"_s}, {u"a\nb"_s}} << u"123"_s;
    QTest::newRow("a pause") << u""_s << Edits{{u"a"_s}, {u"ab"_s, 0.99}, {u"abc"_s, 1.0}}
                             << u"112"_s;
    QTest::newRow("pasted text, and typing after it")
        << u""_s << Edits{{u"a"_s}, {u"aXYZ"_s}, {u"aXYZb"_s}, {u"aXYZbc"_s}} << u"1233"_s;
    QTest::newRow("replaced selection")
        << u"one two"_s << Edits{{u"one x"_s}, {u"one xy"_s}} << u"12"_s;
    QTest::newRow("elsewhere in the text")
        << u"abcd"_s << Edits{{u"abxcd"_s}, {u"abxcdy"_s}} << u"12"_s;
    QTest::newRow("in the middle") << u"abcd"_s << Edits{{u"abxcd"_s}, {u"abxycd"_s}} << u"11"_s;
    QTest::newRow("equal letters in the middle")
        << u"aab"_s << Edits{{u"aaab"_s}, {u"aaaab"_s}} << u"11"_s;
    QTest::newRow("backspace") << u"abcd"_s << Edits{{u"abc"_s}, {u"ab"_s}, {u"a"_s}} << u"111"_s;
    QTest::newRow("delete forward")
        << u"abcd"_s << Edits{{u"acd"_s}, {u"ad"_s}, {u"a"_s}} << u"111"_s;
    QTest::newRow("backspace after typing")
        << u""_s << Edits{{u"a"_s}, {u"ab"_s}, {u"a"_s}} << u"112"_s;
    QTest::newRow("typing after backspace") << u"ab"_s << Edits{{u"a"_s}, {u"ac"_s}} << u"12"_s;
    QTest::newRow("deleted selection") << u"abcdef"_s << Edits{{u"abcf"_s}, {u"abc"_s}} << u"12"_s;
    QTest::newRow("an emoji is one character")
        << u""_s << Edits{{u"a"_s}, {u"a👩‍👩‍👧"_s}, {u"a👩‍👩‍👧b"_s}}
        << u"111"_s;
    QTest::newRow("a combining accent")
        << u""_s << Edits{{u"e"_s}, {u"e\u0301"_s}, {u"e\u0301t"_s}} << u"111"_s;
    QTest::newRow("right-to-left") << u""_s << Edits{{u"ש"_s}, {u"של"_s}, {u"שלו"_s}} << u"111"_s;
}

void tst_TypingCoalescer::dividesTyping()
{
    QFETCH(QString, start);
    QFETCH(Edits, edits);
    QFETCH(QString, pieces);

    TypingCoalescer run;
    Date now{1000};
    QString before = start;
    QString found;
    int piece = 0;
    for (const Edit &edit : edits) {
        now = now.adding(edit.delay);
        if (!run.extend({0, 1}, 0, before, edit.text, now))
            ++piece;
        found += QString::number(piece);
        before = edit.text;
    }
    QCOMPARE(found, pieces);
}

void tst_TypingCoalescer::belongsToOneText()
{
    TypingCoalescer run;
    (void)run.extend({0, 1}, 0, u""_s, u"a"_s, Date{1000});
    QVERIFY(!run.extend({0, 2}, 0, u"a"_s, u"ab"_s, Date{1000.1}));
    QVERIFY(!run.extend({0, 2}, 1, u"ab"_s, u"abc"_s, Date{1000.2}));
    QVERIFY(run.extend({0, 2}, 1, u"abc"_s, u"abcd"_s, Date{1000.3}));
}

void tst_TypingCoalescer::endsOnDemand()
{
    TypingCoalescer run;
    (void)run.extend({0, 1}, 0, u""_s, u"a"_s, Date{1000});
    run.end();
    QVERIFY(!run.extend({0, 1}, 0, u"a"_s, u"ab"_s, Date{1000.1}));
}

void tst_TypingCoalescer::survivesAClockSetBack()
{
    TypingCoalescer run;
    (void)run.extend({0, 1}, 0, u""_s, u"a"_s, Date{1000});
    QVERIFY(!run.extend({0, 1}, 0, u"a"_s, u"ab"_s, Date{10}));
    QVERIFY(run.extend({0, 1}, 0, u"ab"_s, u"abc"_s, Date{10.5}));
}

QTEST_APPLESS_MAIN(tst_TypingCoalescer)

#include "tst_TypingCoalescer.moc"
