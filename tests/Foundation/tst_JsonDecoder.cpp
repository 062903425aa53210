#include "Foundation/Json/JsonDecoder.h"

#include "StopsProgram.h"

#include <QTest>

#include <functional>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr auto notJson = "the file is not valid JSON: ";

QString readSession(JsonDecoder &decoder)
{
    QStringList parts;
    decoder.readObject([&](QByteArrayView key) {
        if (key == "date")
            parts.append(QString::number(decoder.readNumber().value_or(-1)));
        else if (key == "flag")
            parts.append(QString::number(decoder.readInt16().value_or(0)));
        else if (key == "tags")
            decoder.readArray(u"tag"_s, [&] { parts.append(decoder.readText().value_or(u"-"_s)); });
    });
    return parts.join(u'|');
}

/// The names of teammates and what their sessions hold, or the message of the failure.
QString readTeam(QByteArrayView document)
{
    QStringList team;
    JsonDecoder decoder(document);
    decoder.readArray(u"teammate"_s, [&] {
        decoder.readObject([&](QByteArrayView key) {
            if (key == "name")
                team.append(decoder.readText().value_or(u"nobody"_s));
            else if (key == "sessions")
                decoder.readArray(u"session"_s, [&] { team.append(readSession(decoder)); });
        });
    });
    decoder.finish();
    return decoder.hasFailed() ? decoder.error().message : team.join(u';');
}

} // namespace

class tst_JsonDecoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsRecords_data();
    void readsRecords();
    void tellsPlaceOfFailure_data();
    void tellsPlaceOfFailure();
    void tellsDetailOfFailure();
    void readsInt16_data();
    void readsInt16();
    void readsTextsAndNumbers();
    void readsNull();
    void skipsWhatIsNotRead();
    void keyStaysWhileItsMemberIsRead();
    void keyMayHoldAnything();
    void firstFailureStays();
    void callerStopsReading();
    void finishWantsTheEnd();
    void refusesDeepNesting_data();
    void refusesDeepNesting();
    void readsHugeTexts();
    void refusesHugeDocuments();
    void tellsProgress();
    void carriesUserInfo();
    void stopsWhenMisused();
};

void tst_JsonDecoder::readsRecords_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const char *document, const char *expected) {
        QTest::newRow(name) << QByteArray(document) << QString::fromUtf8(expected);
    };
    row("nobody", "[]", "");
    row("blanks", " [ \n{ \"name\"\t:\r\"Ana\" , \"sessions\" : [ { } ] } ] \n", "Ana;");
    row("byte-order mark", "\xEF\xBB\xBF[{\"name\":\"Zoë\"}]", "Zoë");
    row("in order", R"([{"name":"Ana","sessions":[{"date":1.5,"flag":2,"tags":["a","b"]}]}])",
        "Ana;1.5|2|a|b");
    row("in another order",
        R"([{"sessions":[{"tags":["a","b"],"flag":2,"date":1.5}],"name":"Ana"}])", "a|b|2|1.5;Ana");
    row("unknown keys",
        R"([{"x":{"name":"no","y":[[1,"a\n",{}],true]},"name":"Ana","z":null,"sessions":[{"q":[]}]}])",
        "Ana;");
    row("missing values", R"([{"name":null,"sessions":[{"date":null,"flag":null}]}])",
        "nobody;-1|0");
    row("doubled keys", R"([{"name":"Ana","name":"Ben"}])", "Ana;Ben");
    row("escaped keys", R"([{"n\u0061me":"Ana"}])", "Ana");
    row("keys with more behind", R"([{"name\u0000":"Ana"},{"names":"Ana"}])", "");
}

void tst_JsonDecoder::readsRecords()
{
    QFETCH(QByteArray, document);
    QTEST(readTeam(document), "expected");
}

void tst_JsonDecoder::tellsPlaceOfFailure_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const char *document, const QString &expected) {
        QTest::newRow(name) << QByteArray(document) << expected;
    };
    const auto malformed = [&](const char *name, const char *document, const char *place,
                               const char *reason) {
        row(name, document,
            QString::fromUtf8(place) + QLatin1StringView(notJson) + QString::fromUtf8(reason));
    };
    // Values of another type.
    row("root", R"({"name":"Ana"})", u"expected a list"_s);
    row("root null", "null", u"expected a list"_s);
    row("element", R"([{},{},"Ana"])", u"teammate 3: expected a record"_s);
    row("element null", R"([null])", u"teammate 1: expected a record"_s);
    row("text", R"([{"name":true}])", u"teammate 1, name: expected a text"_s);
    row("text is a list", R"([{"name":[]}])", u"teammate 1, name: expected a text"_s);
    row("number", R"([{},{"sessions":[{},{"date":"2019-03-04"}]}])",
        u"teammate 2, session 2, date: expected a number"_s);
    row("whole number", R"([{"sessions":[{"flag":1.5}]}])",
        u"teammate 1, session 1, flag: expected a whole number between -32768 and 32767"_s);
    row("list null", R"([{"sessions":null}])", u"teammate 1, sessions: expected a list"_s);
    row("element of inner list", R"([{"sessions":[{"tags":["a",2]}]}])",
        u"teammate 1, session 1, tag 2: expected a text"_s);
    row("number too large", R"([{"sessions":[{"date":1e400}]}])",
        u"teammate 1, session 1, date: a number is too large"_s);
    row("number too large, unread", R"([{"x":[0,1e400]}])",
        u"teammate 1, x: a number is too large"_s);

    // No JSON.
    row("empty", "", u"the file is empty"_s);
    row("blank", " \n\t", u"the file is empty"_s);
    row("byte-order mark alone", "\xEF\xBB\xBF", u"the file is empty"_s);
    malformed("cut in a list", R"([{"sessions":[{},)",
              "teammate 1, session 2: ", "it ends too early");
    malformed("cut in a text", R"([{"name":"An)", "teammate 1, name: ", "it ends too early");
    malformed("cut in a word", R"([{"x":tru)", "teammate 1, x: ", "it ends too early");
    malformed("word", R"([{"name":nul}])",
              "teammate 1, name: ", "a value is missing or makes no sense");
    malformed("no value", R"([{"name":}])",
              "teammate 1, name: ", "a value is missing or makes no sense");
    malformed("comma at the end", "[{},]", "teammate 2: ", "a value is missing or makes no sense");
    malformed("comma in a list", "[{} {}]",
              "teammate 1: ", "a comma or closing bracket is missing");
    malformed("comma in a record", R"([{},{"name":"Ana" "sessions":[]}])",
              "teammate 2: ", "a comma or closing bracket is missing");
    malformed("colon", R"([{"name" "Ana"}])", "teammate 1, name: ", "a colon is missing");
    malformed("name", "[{name:1}]", "teammate 1: ", "the name of a value is missing");
    malformed("escape", R"([{"name":"\x"}])", "teammate 1, name: ",
              "a text holds a control character, or a backslash that means nothing");
    malformed("encoding", "[{\"name\":\"\xFF\"}]",
              "teammate 1, name: ", "a text is not encoded in UTF-8");
    malformed("digits", R"([{"sessions":[{"date":1.}]}])",
              "teammate 1, session 1, date: ", "a number lacks digits");
    malformed("more after the end", "[] []", "", "something follows after its end");
    malformed("unread value", R"([{"x":[{"y":tru}]}])",
              "teammate 1, x: ", "a value is missing or makes no sense");
    row("long key",
        R"([{"0123456789012345678901234567890123456789012345678901234567890123456789":[)"
        R"(1e999]}])",
        u"teammate 1, "_s + u"0123456789"_s.repeated(6) + u": a number is too large"_s);
}

void tst_JsonDecoder::tellsPlaceOfFailure()
{
    QFETCH(QByteArray, document);
    QTEST(readTeam(document), "expected");
}

void tst_JsonDecoder::tellsDetailOfFailure()
{
    JsonDecoder malformed(R"([1 2])");
    malformed.finish();
    QVERIFY2(malformed.error().detail.endsWith(u". at byte 3"_s),
             qPrintable(malformed.error().detail)); // After RapidJSON's reason.

    // What is wrong comes before what is missing behind it.
    JsonDecoder encoding("\"\xFF\"");
    QVERIFY(!encoding.readText());
    QVERIFY2(encoding.error().message.endsWith(u"a text is not encoded in UTF-8"_s),
             qPrintable(encoding.error().message));

    JsonDecoder wrongType("  {}");
    QVERIFY(!wrongType.readNumber());
    QCOMPARE(wrongType.error().detail, u"at byte 2"_s);
}

void tst_JsonDecoder::readsInt16_data()
{
    QTest::addColumn<std::optional<qint16>>(
        "expected"); // None: refused. Rows are named by the text.

    const auto row = [](const char *text, std::optional<qint16> expected) {
        QTest::newRow(text) << expected;
    };
    row("0", 0);
    row("-0", 0);
    row("7", 7);
    row("-7", -7);
    row("32767", 32767);
    row("-32768", -32768);
    row("1.0", 1);
    row("-3.00", -3);
    row("1e2", 100);
    row("1.5e1", 15);
    row("300E-2", 3);
    row("0.0e-5", 0);
    row("1.5", {});
    row("-0.5", {});
    row("1e-2", {});
    row("32767.5", {});
    row("32768", {});
    row("-32769", {});
    row("65536", {});
    row("4294967296", {});
    row("18446744073709551616", {});
    row("1e5", {});
    row("1e300", {});
    row("1e400", {});
    row("\"1\"", {});
    row("true", {});
    row("[1]", {});
}

void tst_JsonDecoder::readsInt16()
{
    QFETCH(std::optional<qint16>, expected);
    JsonDecoder decoder(QByteArrayView(QTest::currentDataTag()));
    QCOMPARE(decoder.readInt16(), expected);
    QCOMPARE(decoder.hasFailed(), !expected);
}

void tst_JsonDecoder::readsTextsAndNumbers()
{
    JsonDecoder decoder(R"(["", "a\u0000b\ud83d\ude80", 573406200.25, -1e-3, 12])");
    QList<QVariant> found;
    int count = 0;
    decoder.readArray(u"value"_s, [&] {
        if (count < 2) {
            const QString text = decoder.readText().value();
            QVERIFY(!text.isNull()); // An empty text is no missing one.
            found.append(text);
        } else if (count < 4) {
            found.append(decoder.readNumber().value());
        } else {
            found.append(decoder.readDate().value().secondsSinceReferenceDate);
        }
        ++count;
    });
    decoder.finish();
    QVERIFY2(!decoder.hasFailed(), qPrintable(decoder.error().message));
    const QList<QVariant> expected{u""_s, QString(u"a"_s + QChar(0) + u"b🚀"_s), 573406200.25,
                                   -0.001, 12.0};
    QCOMPARE(found, expected);
}

void tst_JsonDecoder::readsNull()
{
    JsonDecoder decoder("[null, null, null, null, null, 5]");
    int count = 0;
    decoder.readArray(u"value"_s, [&] {
        switch (count++) {
        case 0:
            QVERIFY(decoder.readNull());
            break;
        case 1:
            QVERIFY(!decoder.readText());
            break;
        case 2:
            QVERIFY(!decoder.readNumber());
            break;
        case 3:
            QVERIFY(!decoder.readInt16());
            break;
        case 4:
            QVERIFY(!decoder.readDate());
            break;
        default:
            QVERIFY(!decoder.readNull()); // And leaves the value for the next one.
            QCOMPARE(decoder.readNumber(), 5.0);
        }
    });
    QCOMPARE(count, 6);
    decoder.finish();
    QVERIFY(!decoder.hasFailed());
}

void tst_JsonDecoder::skipsWhatIsNotRead()
{
    JsonDecoder decoder(
        R"([[1,[2,{"a":[]}]], {"a":{"b":"}"},"c":"]"}, "a\"b", -1.5e3, true, null, 8])");
    int count = 0;
    double last = 0;
    decoder.readArray(u"value"_s, [&] {
        if (++count == 7)
            last = decoder.readNumber().value_or(0);
    });
    decoder.finish();
    QVERIFY2(!decoder.hasFailed(), qPrintable(decoder.error().message));
    QCOMPARE(count, 7);
    QCOMPARE(last, 8.0);

    JsonDecoder untouched(R"( {"a":[1,2,{}]} )");
    untouched.finish();
    QVERIFY(!untouched.hasFailed());
}

void tst_JsonDecoder::keyStaysWhileItsMemberIsRead()
{
    JsonDecoder decoder(R"({"key":{"another, which is longer":[[[[[{"z":1}]]]]]}})");
    decoder.readObject([&](QByteArrayView key) {
        decoder.readObject([&](QByteArrayView inner) {
            const std::function<void(int)> readLists = [&](int depth) {
                if (depth > 0)
                    decoder.readArray(u"list"_s, [&] { readLists(depth - 1); });
            };
            readLists(5);
            QCOMPARE(inner, QByteArrayView("another, which is longer"));
        });
        QCOMPARE(key, QByteArrayView("key"));
    });
    QVERIFY2(!decoder.hasFailed(), qPrintable(decoder.error().message));
}

void tst_JsonDecoder::keyMayHoldAnything()
{
    JsonDecoder decoder("{\"\":1, \"a\\u0000b\":2, \"Zoë\\n\\ud83d\\ude80\":3, \"\\ufeffx\":4}");
    QByteArrayList keys;
    decoder.readObject([&](QByteArrayView key) { keys.append(key.toByteArray()); });
    QVERIFY(!decoder.hasFailed());
    QCOMPARE(keys, QByteArrayList({"", QByteArray("a\0b", 3), "Zoë\n🚀", "\uFEFFx"}));
}

void tst_JsonDecoder::firstFailureStays()
{
    JsonDecoder decoder(R"([{"name":1, "name":tru], 5)");
    int members = 0;
    int elements = 0;
    decoder.readArray(u"teammate"_s, [&] {
        ++elements;
        decoder.readObject([&](QByteArrayView) {
            ++members;
            QVERIFY(!decoder.readText());
            QVERIFY(decoder.hasFailed());
            QVERIFY(!decoder.readText());
            QVERIFY(!decoder.readNumber());
            QVERIFY(!decoder.readInt16());
            QVERIFY(!decoder.readNull());
            decoder.readArray(u"no"_s, [&] { ++elements; });
            decoder.readObject([&](QByteArrayView) { ++members; });
        });
    });
    decoder.finish();
    decoder.fail(Error{u"Another."_s, {}});
    QCOMPARE(members, 1);
    QCOMPARE(elements, 1);
    QCOMPARE(decoder.error().message, u"teammate 1, name: expected a text"_s);
}

void tst_JsonDecoder::callerStopsReading()
{
    JsonDecoder decoder("[1,2,3,4]");
    int count = 0;
    decoder.readArray(u"value"_s, [&] {
        if (++count == 2)
            decoder.fail(Error{u"Cancelled."_s, u"by a test"_s});
    });
    decoder.finish();
    QCOMPARE(count, 2);
    QVERIFY(decoder.hasFailed());
    QCOMPARE(decoder.error().message, u"Cancelled."_s);
    QCOMPARE(decoder.error().detail, u"by a test"_s);
}

void tst_JsonDecoder::finishWantsTheEnd()
{
    JsonDecoder blanks("5 \t\r\n");
    QCOMPARE(blanks.readNumber(), 5.0);
    blanks.finish();
    QVERIFY(!blanks.hasFailed());

    const QList<QByteArray> documents{"5 5",           "5x", "5,", "5]", QByteArray("5\0", 2),
                                      "5 \xEF\xBB\xBF"};
    for (const QByteArray &document : documents) {
        JsonDecoder decoder(document);
        QCOMPARE(decoder.readNumber(), 5.0);
        QVERIFY(!decoder.hasFailed());
        decoder.finish();
        QVERIFY2(decoder.hasFailed(), document.constData());
    }
}

void tst_JsonDecoder::refusesDeepNesting_data()
{
    QTest::addColumn<int>("read");
    QTest::addColumn<int>("skipped");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("all read") << 64 << 0 << true;
    QTest::newRow("all read, one more") << 65 << 0 << false;
    QTest::newRow("all skipped") << 0 << 64 << true;
    QTest::newRow("all skipped, one more") << 0 << 65 << false;
    QTest::newRow("half") << 30 << 34 << true;
    QTest::newRow("half, one more") << 30 << 35 << false;
    QTest::newRow("a million") << 10 << 1000000 << false;
}

void tst_JsonDecoder::refusesDeepNesting()
{
    QFETCH(int, read);
    QFETCH(int, skipped);
    QFETCH(bool, accepted);
    const QList<std::pair<QByteArray, QByteArray>> brackets{{"[", "]"}, {"{\"a\":", "}"}};
    for (const auto &[open, close] : brackets) {
        const int depth = read + skipped;
        const QByteArray document = open.repeated(depth) + "1" + close.repeated(depth);
        JsonDecoder decoder(document);
        const std::function<void(int)> readLevels = [&](int levels) {
            if (levels == 0)
                return;
            if (document.startsWith('['))
                decoder.readArray(u"level"_s, [&] { readLevels(levels - 1); });
            else
                decoder.readObject([&](QByteArrayView) { readLevels(levels - 1); });
        };
        readLevels(read);
        decoder.finish();
        QCOMPARE(decoder.hasFailed(), !accepted);
        if (!accepted)
            QVERIFY(decoder.error().message.endsWith(u"lists and records are nested too deeply"_s));
    }
}

void tst_JsonDecoder::readsHugeTexts()
{
    constexpr int million = 1000000;
    const QByteArray plain = QByteArray("0123456789").repeated(5 * million);
    const QByteArray escapes = QByteArray("\\u00e9\\n").repeated(million);
    const QByteArray document = "[\"" + plain + "\",\"" + escapes + "\",\"" + plain + "\"]";
    JsonDecoder decoder(document);
    QList<qsizetype> sizes;
    decoder.readArray(u"text"_s, [&] {
        if (sizes.size() < 2)
            sizes.append(decoder.readText().value_or(QString()).size());
    });
    decoder.finish();
    QVERIFY(!decoder.hasFailed());
    QCOMPARE(sizes, QList<qsizetype>({50 * million, 2 * million}));
}

void tst_JsonDecoder::refusesHugeDocuments()
{
    JsonDecoder decoder(QByteArrayView("[]", qsizetype(1) << 33));
    QVERIFY(decoder.hasFailed());
    QCOMPARE(decoder.error().message, u"the file is too large"_s);
    decoder.readArray(u"value"_s, [] {});
    decoder.finish();
    QCOMPARE(decoder.error().message, u"the file is too large"_s);
}

void tst_JsonDecoder::tellsProgress()
{
    const QByteArray document = "[" + QByteArray("1,").repeated(49) + "1]"; // 100 and 1 bytes
    JsonDecoder decoder(document);
    QCOMPARE(decoder.progress(), 0.0);
    double last = 0;
    decoder.readArray(u"value"_s, [&] {
        QCOMPARE(decoder.readNumber(), 1.0);
        QCOMPARE_GT(decoder.progress(), last);
        last = decoder.progress();
    });
    QCOMPARE(last, 100.0 / 101.0);
    decoder.finish();
    QCOMPARE(decoder.progress(), 1.0);
    QCOMPARE(JsonDecoder(QByteArrayView()).progress(), 1.0);
}

void tst_JsonDecoder::carriesUserInfo()
{
    JsonDecoder decoder("[]");
    QVERIFY(!decoder.userInfo().contains(u"context"_s));
    decoder.userInfo().insert(u"context"_s, 5);
    QCOMPARE(decoder.userInfo().value(u"context"_s).toInt(), 5);
}

void tst_JsonDecoder::stopsWhenMisused()
{
    QVERIFY(stopsProgram([] { // A value is read once.
        JsonDecoder decoder("[1,2]");
        decoder.readArray(u"value"_s, [&] {
            decoder.readNumber();
            decoder.readNumber();
        });
    }));
    QVERIFY(stopsProgram([] { // The end comes after the root.
        JsonDecoder decoder("[1,2]");
        decoder.readArray(u"value"_s, [&] { decoder.finish(); });
    }));
}

QTEST_GUILESS_MAIN(tst_JsonDecoder)
#include "tst_JsonDecoder.moc"
