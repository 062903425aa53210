#include "Model/RecordValues.h"

#include "Foundation/Json/JsonEncoder.h"
#include "ValuesOfDocument.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

template<typename Values>
QByteArray written(const Values &values)
{
    JsonEncoder encoder;
    values.encode(encoder);
    return encoder.takeDocument().value();
}

TagValues tagValues(const QString &emoji, const QString &name, const QString &objectID)
{
    TagValues values;
    values.attributes.set(Tag::emojiProperty, textValue(emoji));
    values.attributes.set(Tag::nameProperty, textValue(name));
    values.objectID = objectID;
    return values;
}

NoteValues noteValues(qint16 identifier, const QString &text)
{
    NoteValues values;
    values.attributes.set(Note::identifierProperty, qint64(identifier));
    values.attributes.set(Note::contentStringProperty, textValue(text));
    return values;
}

} // namespace

class tst_RecordValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesKeysInOrder();
    void writesMissingValues();
    void writesTexts();
    void writesNotesThatHaveText();
    void writesDates_data();
    void writesDates();
    void readsEveryKey_data();
    void readsEveryKey();
    void nullCountsAsAbsent_data();
    void nullCountsAsAbsent();
    void readsKeysInAnyOrder();
    void ignoresUnknownKeys();
    void lastOfDoubledKeysCounts_data();
    void lastOfDoubledKeysCounts();
    void sessionsOfDoubledKeysAddUp();
};

void tst_RecordValues::writesKeysInOrder()
{
    QCOMPARE(written(tagValues(u"🚀"_s, u"launch"_s, u"uri/t"_s)),
             R"({"emoji":"🚀","name":"launch","objectID":"uri/t"})");
    QCOMPARE(written(noteValues(4, u"Wants to lead"_s)),
             R"({"identifier":4,"contentString":"Wants to lead"})");
    SessionValues values;
    values.attributes.set(Session::dateProperty, 573406200.0);
    values.attributes.set(Session::flagProperty, qint64(5));
    values.attributes.set(Session::counterpartSentimentProperty, qint64(2));
    values.attributes.set(Session::meetingSentimentProperty, qint64(3));
    values.attributes.set(Session::personalSentimentProperty, qint64(1));
    values.objectID = u"uri/s"_s;
    values.tags = {tagValues(u"a"_s, u"b"_s, u"c"_s), tagValues(u"d"_s, u"e"_s, u"f"_s)};
    values.notes = {noteValues(0, u"one"_s), noteValues(1, u"two"_s)};
    QCOMPARE(written(values),
             R"({"date":573406200,"flag":5,"counterpartSentiment":2,"meetingSentiment":3,)"
             R"("personalSentiment":1,"objectID":"uri/s",)"
             R"("tags":[{"emoji":"a","name":"b","objectID":"c"},)"
             R"({"emoji":"d","name":"e","objectID":"f"}],)"
             R"("notes":[{"identifier":0,"contentString":"one"},)"
             R"({"identifier":1,"contentString":"two"}]})");
}

void tst_RecordValues::writesMissingValues()
{
    QCOMPARE(written(TagValues{}), R"({"emoji":null,"name":null,"objectID":""})");
    QCOMPARE(written(tagValues(QString(), QString(), u"t"_s)),
             R"({"emoji":null,"name":null,"objectID":"t"})");
    QCOMPARE(written(NoteValues{}), R"({"identifier":0,"contentString":null})");
    // Without notes there is no key for them.
    SessionValues session;
    session.objectID = u"s"_s;
    QCOMPARE(written(session),
             R"({"date":null,"flag":0,"counterpartSentiment":0,"meetingSentiment":0,)"
             R"("personalSentiment":0,"objectID":"s","tags":[]})");
    constexpr qint16 least = -32768;
    constexpr qint16 most = 32767;
    session.attributes.set(Session::flagProperty, qint64(least));
    session.attributes.set(Session::meetingSentimentProperty, qint64(least));
    session.attributes.set(Session::counterpartSentimentProperty, qint64(most));
    session.attributes.set(Session::personalSentimentProperty, qint64(most));
    QCOMPARE(written(session),
             R"({"date":null,"flag":-32768,"counterpartSentiment":32767,)"
             R"("meetingSentiment":-32768,"personalSentiment":32767,"objectID":"s","tags":[]})");
    QCOMPARE(written(noteValues(least, u""_s)), R"({"identifier":-32768,"contentString":""})");
}

void tst_RecordValues::writesTexts()
{
    const QString odd = u"\"\\/\n"_s + QChar(0) + u"é🏳️‍🌈שלום"_s;
    QCOMPARE(
        written(noteValues(0, odd)),
        "{\"identifier\":0,\"contentString\":\"\\\"\\\\/\\n\\u0000é🏳️‍🌈שלום\"}");
    QCOMPARE(written(tagValues(u""_s, odd, u""_s)),
             "{\"emoji\":\"\",\"name\":\"\\\"\\\\/"
             "\\n\\u0000é🏳️‍🌈שלום\",\"objectID\":\"\"}");
}

void tst_RecordValues::writesNotesThatHaveText()
{
    const auto notesOf = [](std::vector<NoteValues> notes) {
        SessionValues session;
        session.notes = std::move(notes);
        const QByteArray whole = written(session);
        return whole.mid(whole.indexOf("\"notes\""));
    };
    QCOMPARE(notesOf({}), R"("notes":[]})");
    QCOMPARE(notesOf({noteValues(0, {}), noteValues(1, {})}), R"("notes":[]})");
    QCOMPARE(notesOf({noteValues(0, {}), noteValues(1, u""_s), noteValues(2, {}),
                      noteValues(3, u"x"_s)}),
             R"("notes":[{"identifier":1,"contentString":""},)"
             R"({"identifier":3,"contentString":"x"}]})");
}

void tst_RecordValues::writesDates_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](double seconds, const char *expected) {
        QTest::newRow(expected) << seconds << QByteArray(expected);
    };
    row(0, "0");
    row(573406200, "573406200");
    row(573406200.25, "573406200.25");
    row(814000000.123456, "814000000.123456");
    row(0.1, "0.1");
    row(-63114076800, "-63114076800");
    row(-0.5, "-0.5");
    row(1e300, "1e+300");
    row(5e-324, "5e-324");
}

void tst_RecordValues::writesDates()
{
    QFETCH(double, seconds);
    QFETCH(QByteArray, expected);
    SessionValues session;
    session.attributes.set(Session::dateProperty, seconds);
    const QByteArray whole = written(session);
    QCOMPARE(whole.left(whole.indexOf(",\"flag\"")), "{\"date\":" + expected);
}

void tst_RecordValues::readsEveryKey_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected");

    const auto row = [](const Place &place, const char *member, const QString &expected) {
        QTest::addRow("%s %s", place.name, member) << documentWith(place, member) << expected;
    };
    row(teammate, R"("name":"Ana")", u"name \"Ana\""_s);
    row(teammate, R"("name":"")", u"name \"\""_s);
    row(teammate, R"("objectID":"uri")", u"objectID \"uri\""_s);
    row(teammate, R"("sessions":[])", u""_s);
    row(teammate, R"("sessions":[{},{}])", u"[][]"_s);

    row(session, R"("date":573406200)", u"[date 573406200]"_s);
    row(session, R"("flag":3)", u"[flag 3]"_s);
    row(session, R"("counterpartSentiment":1)", u"[counterpartSentiment 1]"_s);
    row(session, R"("meetingSentiment":2)", u"[meetingSentiment 2]"_s);
    row(session, R"("personalSentiment":4)", u"[personalSentiment 4]"_s);
    row(session, R"("objectID":"uri")", u"[objectID \"uri\"]"_s);
    row(session, R"("objectID":"")", u"[objectID \"\"]"_s);
    row(session, R"("tags":[])", u"[]"_s);
    row(session, R"("tags":[{},{}])", u"[tags ()()]"_s);
    row(session, R"("notes":[])", u"[notes ]"_s); // Unlike no notes.
    row(session, R"("notes":[{},{}])", u"[notes ()()]"_s);

    row(tag, R"("emoji":"🚀")", u"[tags (emoji \"🚀\")]"_s);
    row(tag, R"("emoji":"")", u"[tags (emoji \"\")]"_s);
    row(tag, R"("name":"launch")", u"[tags (name \"launch\")]"_s);
    row(tag, R"("name":"")", u"[tags (name \"\")]"_s);
    row(tag, R"("objectID":"uri")", u"[tags ()]"_s); // Not read.
    row(tag, R"("objectID":5)", u"[tags ()]"_s);

    row(note, R"("identifier":8)", u"[notes (identifier 8)]"_s);
    row(note, R"("identifier":-12)", u"[notes (identifier -12)]"_s);
    row(note, R"("contentString":"Blocked")", u"[notes (contentString \"Blocked\")]"_s);
    row(note, R"("contentString":"")", u"[notes (contentString \"\")]"_s);
    row(note, R"("objectID":5)", u"[notes ()]"_s);
}

void tst_RecordValues::readsEveryKey()
{
    QFETCH(QByteArray, document);
    QTEST(readValues(document), "expected");
}

void tst_RecordValues::nullCountsAsAbsent_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected");

    for (const Key &key : allKeys()) {
        QString expected = readValues(documentWith(key.place, ""));
        // The one key of which null says more than nothing.
        if (qstrcmp(key.name, "emoji") == 0)
            expected = u"[tags (emoji null)]"_s;
        QTest::addRow("%s", rowName(key, "null").constData())
            << documentWith(key, "null") << expected;
    }
    const auto absent = [](const Place &place, const char *expected) {
        QTest::addRow("%s, all absent", place.name)
            << documentWith(place, "") << QString::fromUtf8(expected);
    };
    absent(teammate, "");
    absent(session, "[]");
    absent(tag, "[tags ()]");
    absent(note, "[notes ()]");
}

void tst_RecordValues::nullCountsAsAbsent()
{
    QFETCH(QByteArray, document);
    QTEST(readValues(document), "expected");
}

void tst_RecordValues::readsKeysInAnyOrder()
{
    const QString expected =
        u"name \"Ana\", objectID \"a\", [date 5, flag 1, counterpartSentiment 2, "
        "meetingSentiment 3, personalSentiment 4, objectID \"s\", tags (emoji \"🚀\", name \"t\"), "
        "notes (identifier 3, contentString \"x\")]"_s;
    QCOMPARE(readValues(R"([{"name":"Ana","objectID":"a","sessions":[{"date":5,"flag":1,)"
                        R"("counterpartSentiment":2,"meetingSentiment":3,"personalSentiment":4,)"
                        R"("objectID":"s","tags":[{"emoji":"🚀","name":"t","objectID":"o"}],)"
                        R"("notes":[{"identifier":3,"contentString":"x"}]}]}])"),
             expected);
    QCOMPARE(readValues(R"([{"sessions":[{"notes":[{"contentString":"x","identifier":3}],)"
                        R"("tags":[{"objectID":"o","name":"t","emoji":"🚀"}],"objectID":"s",)"
                        R"("personalSentiment":4,"meetingSentiment":3,"counterpartSentiment":2,)"
                        R"("flag":1,"date":5}],"objectID":"a","name":"Ana"}])"),
             expected);
}

void tst_RecordValues::ignoresUnknownKeys()
{
    const QByteArray more = R"("email":"a@b","x":{"name":[1,{"sessions":null}]},"Date":5,"":true)";
    for (const Place &place : {teammate, session, tag, note})
        QCOMPARE(readValues(documentWith(place, more)), readValues(documentWith(place, "")));
}

void tst_RecordValues::lastOfDoubledKeysCounts_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected");

    const auto row = [](const Place &place, const char *members, const QString &expected) {
        QTest::addRow("%s %s", place.name, members) << documentWith(place, members) << expected;
    };
    row(teammate, R"("name":"Ana","name":"Ben")", u"name \"Ben\""_s);
    row(teammate, R"("name":"Ana","name":null)", u""_s);
    row(teammate, R"("objectID":"a","objectID":"b")", u"objectID \"b\""_s);
    row(session, R"("date":1,"date":2)", u"[date 2]"_s);
    row(session, R"("date":1,"date":null)", u"[]"_s);
    row(session, R"("flag":1,"flag":null)", u"[]"_s);
    row(session, R"("flag":null,"flag":1)", u"[flag 1]"_s);
    row(session, R"("meetingSentiment":3,"meetingSentiment":4)", u"[meetingSentiment 4]"_s);
    row(session, R"("objectID":"a","objectID":null)", u"[]"_s);
    row(session, R"("tags":[{"name":"a"}],"tags":[{"name":"b"}])", u"[tags (name \"b\")]"_s);
    row(session, R"("tags":[{"name":"a"}],"tags":null)", u"[]"_s);
    row(session, R"("notes":[{},{}],"notes":[{"identifier":1}])", u"[notes (identifier 1)]"_s);
    row(session, R"("notes":[{}],"notes":null)", u"[]"_s);
    row(tag, R"("emoji":"a","emoji":null)", u"[tags (emoji null)]"_s);
    row(tag, R"("name":"a","name":"b")", u"[tags (name \"b\")]"_s);
    row(note, R"("identifier":1,"identifier":2)", u"[notes (identifier 2)]"_s);
    row(note, R"("contentString":"a","contentString":null)", u"[notes ()]"_s);
    // What does not count must be right all the same.
    row(session, R"("date":"x","date":2)",
        u"failed: teammate 1, session 1, date: expected a number"_s);
}

void tst_RecordValues::lastOfDoubledKeysCounts()
{
    QFETCH(QByteArray, document);
    QTEST(readValues(document), "expected");
}

void tst_RecordValues::sessionsOfDoubledKeysAddUp()
{
    QCOMPARE(readValues(
                 R"([{"sessions":[{"flag":1},{"flag":2}],"name":"Ana","sessions":[{"flag":3}],)"
                 R"("sessions":null,"sessions":[]}])"),
             u"name \"Ana\", [flag 1][flag 2][flag 3]"_s);
}

QTEST_GUILESS_MAIN(tst_RecordValues)
#include "tst_RecordValues.moc"
