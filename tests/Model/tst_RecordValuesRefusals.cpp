#include "ValuesOfDocument.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_RecordValuesRefusals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesWrongTypes_data();
    void refusesWrongTypes();
    void readsDates_data();
    void readsDates();
    void readsIntegers_data();
    void readsIntegers();
    void tellsNumbersOfElements();
    void readsDocuments_data();
    void readsDocuments();
};

void tst_RecordValuesRefusals::refusesWrongTypes_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected");

    const auto row = [](const Key &key, const char *value, const char *reason) {
        QTest::addRow("%s", rowName(key, value).constData())
            << documentWith(key, value)
            << u"failed: %1, %2: %3"_s.arg(QLatin1StringView(key.place.name),
                                           QLatin1StringView(key.name), QLatin1StringView(reason));
    };
    const QList<const char *> values{R"("x")", R"("")", "7", "true", "false", "[]", "{}"};
    for (const Key &key : allKeys()) {
        for (const char *value : values) {
            const bool isText = *value == '"';
            const bool isNumber = *value == '7';
            const bool isList = *value == '[';
            if (key.kind == Kind::Text && !isText)
                row(key, value, "expected a text");
            else if (key.kind == Kind::Date && !isNumber)
                row(key, value, "expected a number");
            else if (key.kind == Kind::Integer && !isNumber)
                row(key, value, "expected a whole number between -32768 and 32767");
            else if (key.kind == Kind::List && !isList)
                row(key, value, "expected a list");
        }
    }
    const auto element = [](const Key &key, const char *value, const char *label) {
        QTest::addRow("%s", rowName(key, value).constData())
            << documentWith(key, value)
            << u"failed: %1, %2 1: expected a record"_s.arg(QLatin1StringView(key.place.name),
                                                            QLatin1StringView(label));
    };
    for (const char *value : {"[null]", "[1]", R"(["x"])", "[true]", "[[]]"}) {
        element({teammate, "sessions", Kind::List}, value, "session");
        element({session, "tags", Kind::List}, value, "tag");
        element({session, "notes", Kind::List}, value, "note");
    }
}

void tst_RecordValuesRefusals::refusesWrongTypes()
{
    QFETCH(QByteArray, document);
    QTEST(readValues(document), "expected");
}

void tst_RecordValuesRefusals::readsDates_data()
{
    QTest::addColumn<QString>("expected"); // Rows are named by the number.

    const auto row = [](const char *number, const QString &expected) {
        QTest::newRow(number) << expected;
    };
    row("0", u"[date 0]"_s);
    row("573406200.25", u"[date 573406200.25]"_s);
    row("-63114076800", u"[date -63114076800]"_s);
    row("5.734062e8", u"[date 573406200]"_s);
    row("1e300", u"[date 1.0000000000000001e+300]"_s);
    row("1.7976931348623157e308", u"[date 1.7976931348623157e+308]"_s);
    const QString place = u"failed: teammate 1, session 1, date: "_s;
    row("1e400", place + u"a number is too large"_s);
    row("-1e400", place + u"a number is too large"_s);
    row(R"("2019-03-04T15:30:00Z")", place + u"expected a number"_s);
    row(R"("573406200")", place + u"expected a number"_s);
}

void tst_RecordValuesRefusals::readsDates()
{
    QTEST(readValues(documentWith(Key{session, "date", Kind::Date}, QTest::currentDataTag())),
          "expected");
}

void tst_RecordValuesRefusals::readsIntegers_data()
{
    QTest::addColumn<Key>("key");
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<QString>("expected"); // Nothing: refused.

    for (const Key &key : allKeys()) {
        if (key.kind != Kind::Integer)
            continue;
        const auto row = [&](const char *number, const QString &expected) {
            QTest::addRow("%s", rowName(key, number).constData())
                << key << QByteArray(number) << expected;
        };
        for (const char *number : {"1", "-1", "32767", "-32768"})
            row(number, QString::fromLatin1(number));
        row("1.0", u"1"_s);
        row("-2.50e1", u"-25"_s);
        for (const char *number : {"1.5", "-0.5", "32768", "-32769", "65537", "4294967297"})
            row(number, {});
    }
}

void tst_RecordValuesRefusals::readsIntegers()
{
    QFETCH(Key, key);
    QFETCH(QByteArray, number);
    QFETCH(QString, expected);
    const QString found = readValues(documentWith(key, number.constData()));
    const QString member = QLatin1StringView(key.name) + u' ' + expected;
    if (expected.isNull())
        QCOMPARE(found, u"failed: %1, %2: expected a whole number between -32768 and 32767"_s.arg(
                            QLatin1StringView(key.place.name), QLatin1StringView(key.name)));
    else
        QVERIFY2(found.contains(member + u']') || found.contains(member + u')'), qPrintable(found));
}

void tst_RecordValuesRefusals::tellsNumbersOfElements()
{
    QByteArray document = R"([{},{"name":"Ben"},{"sessions":[)" + QByteArray("{},").repeated(11)
                          + R"({"date":"now"}]}])";
    QCOMPARE(readValues(document), u"failed: teammate 3, session 12, date: expected a number"_s);
    document = R"([{"sessions":[{},{"tags":[{},{},{"name":[]}]}]}])";
    QCOMPARE(readValues(document),
             u"failed: teammate 1, session 2, tag 3, name: expected a text"_s);
    document = R"([{"sessions":[{"notes":[{},{"contentString":1}]}]}])";
    QCOMPARE(readValues(document),
             u"failed: teammate 1, session 1, note 2, contentString: expected a text"_s);
}

void tst_RecordValuesRefusals::readsDocuments_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const QByteArray &document, const QString &expected) {
        QTest::newRow(name) << document << expected;
    };
    row("nobody", "[]", u""_s);
    row("somebody", "[{},{\"name\":\"Ana\"},{}]", u"; name \"Ana\"; "_s);
    row("byte-order mark and blanks", "\xEF\xBB\xBF [ { } ] \n", u""_s);
    row("empty", "", u"failed: the file is empty"_s);
    row("blank", " \n", u"failed: the file is empty"_s);
    row("null", "null", u"failed: expected a list"_s);
    row("a record", "{}", u"failed: expected a list"_s);
    row("a text", "\"[]\"", u"failed: expected a list"_s);
    row("null as teammate", "[{},null]", u"failed: teammate 2: expected a record"_s);
    row("list as teammate", "[[]]", u"failed: teammate 1: expected a record"_s);
    row("two documents", "[][]",
        u"failed: the file is not valid JSON: something follows after its end"_s);
    row("cut short", R"([{"sessions":[{"date":5)",
        u"failed: teammate 1, session 1: the file is not valid JSON: it ends too early"_s);
    row("nested as deeply as can be",
        "[{\"x\":" + QByteArray("[").repeated(62) + QByteArray("]").repeated(62) + "}]", u""_s);
    row("nested too deeply",
        "[{\"x\":" + QByteArray("[").repeated(63) + QByteArray("]").repeated(63) + "}]",
        u"failed: teammate 1, x: lists and records are nested too deeply"_s);
}

void tst_RecordValuesRefusals::readsDocuments()
{
    QFETCH(QByteArray, document);
    QTEST(readValues(document), "expected");
}

QTEST_GUILESS_MAIN(tst_RecordValuesRefusals)
#include "tst_RecordValuesRefusals.moc"
