#include "Foundation/Json/JsonEncoder.h"

#include "StopsProgram.h"

#include <QRandomGenerator>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

using Limits = std::numeric_limits<double>;

/// A document of one value.
template<typename Write>
QByteArray documentOf(Write write)
{
    JsonEncoder encoder;
    write(encoder);
    return encoder.takeDocument().value_or(QByteArray("failed"));
}

} // namespace

class tst_JsonEncoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesNestedValues();
    void writesEmptyValues();
    void writesTexts_data();
    void writesTexts();
    void keepsMissingApartFromEmpty();
    void writesNumbers_data();
    void writesNumbers();
    void numbersReadBackTheSame();
    void writesIntegers();
    void writesDates();
    void refusesNumbersThatAreNone_data();
    void refusesNumbersThatAreNone();
    void failureStays();
    void takesNoMoreMemoryThanTheDocument();
    void stopsWhenMisused_data();
    void stopsWhenMisused();
};

void tst_JsonEncoder::writesNestedValues()
{
    JsonEncoder encoder;
    encoder.beginArray();
    encoder.beginObject();
    encoder.key("name"_L1);
    encoder.text(u"Ana"_s);
    encoder.key("sessions"_L1);
    encoder.beginArray();
    encoder.beginObject();
    encoder.key("date"_L1);
    encoder.dateOrNull(Date{573406200});
    encoder.key("flag"_L1);
    encoder.integer(-1);
    encoder.key("tags"_L1);
    encoder.beginArray();
    encoder.endArray();
    encoder.endObject();
    encoder.null();
    encoder.endArray();
    encoder.endObject();
    encoder.number(0.5);
    encoder.endArray();
    QVERIFY(!encoder.hasFailed());
    QCOMPARE(encoder.takeDocument().value(),
             QByteArray(
                 R"([{"name":"Ana","sessions":[{"date":573406200,"flag":-1,"tags":[]},null]})"
                 R"(,0.5])"));
}

void tst_JsonEncoder::writesEmptyValues()
{
    QCOMPARE(documentOf([](JsonEncoder &encoder) {
                 encoder.beginArray();
                 encoder.endArray();
             }),
             QByteArray("[]"));
    QCOMPARE(documentOf([](JsonEncoder &encoder) {
                 encoder.beginObject();
                 encoder.endObject();
             }),
             QByteArray("{}"));
    QCOMPARE(documentOf([](JsonEncoder &encoder) {
                 encoder.beginObject();
                 encoder.key(""_L1);
                 encoder.text(u""_s);
                 encoder.endObject();
             }),
             QByteArray(R"({"":""})"));
    QCOMPARE(documentOf([](JsonEncoder &encoder) {
                 encoder.beginObject();
                 encoder.key("\"\xE9"_L1);
                 encoder.null();
                 encoder.endObject();
             }),
             QByteArray("{\"\\\"\xC3\xA9\":null}"));
}

void tst_JsonEncoder::writesTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expected"); // without the quotation marks

    const auto row = [](const char *name, const QString &text, const char *expected) {
        QTest::newRow(name) << text << QByteArray(expected);
    };
    row("empty", u""_s, "");
    row("plain", u"Ana Lima, 1:1"_s, "Ana Lima, 1:1");
    row("slash", u"a/b</c>"_s, "a/b</c>");
    row("quotation marks", u"\"'\""_s, R"(\"'\")");
    row("backslash", u"a\\b"_s, R"(a\\b)");
    row("escapes with a letter", u"\b\t\n\f\r"_s, R"(\b\t\n\f\r)");
    row("U+0000", u"a"_s + QChar(0) + u"b"_s, R"(a\u0000b)");
    row("other control characters", u"\u0001\u001B\u001F"_s, R"(\u0001\u001B\u001F)");
    row("delete and C1", u"\u007F\u0085"_s, "\x7F\u0085");
    row("two bytes", u"é\u0080\u07FF"_s, "é\u0080\u07FF");
    row("three bytes", u"会議\u0800\uFFFD"_s, "会議\u0800\uFFFD");
    row("around the surrogates", u"\uD7FF\uE000"_s, "\uD7FF\uE000");
    row("four bytes", u"🚀\U00010000\U0010FFFF"_s, "🚀\U00010000\U0010FFFF");
    row("line separators", u"\u2028\u2029"_s, "\u2028\u2029");
    row("byte-order mark", u"\uFEFFa"_s, "\uFEFFa");
    row("no characters", u"\uFFFE\uFFFF\uFDD0"_s, "\uFFFE\uFFFF\uFDD0");
    row("high surrogate alone", u"a"_s + QChar(0xD83D) + u"b"_s, "a\uFFFDb");
    row("low surrogate alone", u"a"_s + QChar(0xDE80) + u"b"_s, "a\uFFFDb");
    row("high surrogate at the end", u"a"_s + QChar(0xD83D), "a\uFFFD");
    row("high surrogate before a quote", QString(QChar(0xD83D)) + u"\""_s, "\uFFFD\\\"");
    row("surrogates in the wrong order", QString(QChar(0xDE80)) + QChar(0xD83D), "\uFFFD\uFFFD");
}

void tst_JsonEncoder::writesTexts()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, expected);
    QCOMPARE(documentOf([&](JsonEncoder &encoder) { encoder.text(text); }),
             QByteArray('"' + expected + '"'));
    // A text that is not followed by U+0000 in memory, as QString allows.
    const QString longer = text + u'x';
    const QString part = QString::fromRawData(longer.constData(), text.size());
    QCOMPARE(documentOf([&](JsonEncoder &encoder) { encoder.text(part); }),
             QByteArray('"' + expected + '"'));
}

void tst_JsonEncoder::keepsMissingApartFromEmpty()
{
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.textOrNull(QString()); }),
             QByteArray("null"));
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.textOrNull(u""_s); }),
             QByteArray("\"\""));
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.textOrNull(u"a"_s); }),
             QByteArray("\"a\""));
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.text(QString()); }), QByteArray("\"\""));
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.null(); }), QByteArray("null"));
}

void tst_JsonEncoder::writesNumbers_data()
{
    QTest::addColumn<double>("number");

    // A row is named by the text that is expected.
    QTest::newRow("0") << 0.0;
    QTest::newRow("-0") << -0.0;
    QTest::newRow("1") << 1.0;
    QTest::newRow("-1") << -1.0;
    QTest::newRow("100000") << 100000.0;
    QTest::newRow("573406200") << 573406200.0;
    QTest::newRow("573000000") << 573000000.0;
    QTest::newRow("573406200.5") << 573406200.5;
    QTest::newRow("573406200.123456") << 573406200.123456;
    QTest::newRow("-978307200") << -978307200.0;
    QTest::newRow("0.1") << 0.1;
    QTest::newRow("0.30000000000000004") << 0.1 + 0.2;
    QTest::newRow("9007199254740991") << 9007199254740991.0;
    QTest::newRow("9007199254740992") << 9007199254740992.0;
    QTest::newRow("9007199254740994") << 9007199254740994.0;
    QTest::newRow("1e+22") << 1e22;
    QTest::newRow("1.7976931348623157e+308") << Limits::max();
    QTest::newRow("-1.7976931348623157e+308") << Limits::lowest();
    QTest::newRow("2.2250738585072014e-308") << Limits::min();
    QTest::newRow("5e-324") << Limits::denorm_min();
}

void tst_JsonEncoder::writesNumbers()
{
    QFETCH(double, number);
    QCOMPARE(documentOf([&](JsonEncoder &encoder) { encoder.number(number); }),
             QByteArray(QTest::currentDataTag()));
}

void tst_JsonEncoder::numbersReadBackTheSame()
{
    QRandomGenerator random(20010101);
    for (int i = 0; i < 100000; ++i) {
        const auto number = std::bit_cast<double>(random.generate64());
        if (!std::isfinite(number))
            continue;
        const QByteArray text = documentOf([&](JsonEncoder &encoder) { encoder.number(number); });
        QCOMPARE(std::bit_cast<quint64>(text.toDouble()), std::bit_cast<quint64>(number));
        QVERIFY2(text.size() <= 24, text.constData());
    }
}

void tst_JsonEncoder::writesIntegers()
{
    const QList<qint64> numbers{0,
                                1,
                                -1,
                                32767,
                                -32768,
                                std::numeric_limits<qint64>::max(),
                                std::numeric_limits<qint64>::min()};
    for (const qint64 number : numbers) {
        QCOMPARE(documentOf([&](JsonEncoder &encoder) { encoder.integer(number); }),
                 QByteArray::number(number));
    }
}

void tst_JsonEncoder::writesDates()
{
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.dateOrNull(std::nullopt); }),
             QByteArray("null"));
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.dateOrNull(Date{0}); }),
             QByteArray("0"));
    QCOMPARE(documentOf([](JsonEncoder &encoder) { encoder.dateOrNull(Date{573406200.25}); }),
             QByteArray("573406200.25"));
}

void tst_JsonEncoder::refusesNumbersThatAreNone_data()
{
    QTest::addColumn<double>("number");

    QTest::newRow("inf") << Limits::infinity();
    QTest::newRow("-inf") << -Limits::infinity();
    QTest::newRow("nan") << Limits::quiet_NaN();
}

void tst_JsonEncoder::refusesNumbersThatAreNone()
{
    QFETCH(double, number);
    JsonEncoder encoder;
    encoder.number(number);
    QVERIFY(encoder.hasFailed());
    QCOMPARE(encoder.error().message,
             u"A number is infinite or undefined, so it cannot be written."_s);
    QCOMPARE(encoder.error().detail, QString::fromLatin1(QTest::currentDataTag()));

    JsonEncoder withDate;
    withDate.dateOrNull(Date{number});
    QVERIFY(withDate.hasFailed());
}

void tst_JsonEncoder::failureStays()
{
    JsonEncoder encoder;
    encoder.beginObject();
    encoder.key("date"_L1);
    encoder.number(Limits::quiet_NaN());
    encoder.key("other"_L1);
    encoder.number(-Limits::infinity());
    encoder.key("name"_L1);
    encoder.text(u"Ana"_s);
    encoder.endObject();
    QVERIFY(encoder.hasFailed());
    QCOMPARE(encoder.error().detail, u"nan"_s);
    const Result<QByteArray> document = encoder.takeDocument();
    QVERIFY(!document.has_value());
    QCOMPARE(document.error().message, encoder.error().message);
}

void tst_JsonEncoder::takesNoMoreMemoryThanTheDocument()
{
    const QString line = u"Überblick über das Quartal, nächste Schritte\n"_s.repeated(100);
    JsonEncoder encoder;
    encoder.beginArray();
    for (int i = 0; i < 1000; ++i)
        encoder.text(line);
    encoder.endArray();
    const QByteArray document = encoder.takeDocument().value();
    const qsizetype element = line.toUtf8().size() + 100 /* \n */ + 2;
    QCOMPARE(document.size(), 1000 * (element + 1) + 1);
    QCOMPARE_LE(document.capacity(), document.size() + 16);
}

void tst_JsonEncoder::stopsWhenMisused_data()
{
    QTest::addColumn<std::function<void(JsonEncoder &)>>("misuse");

    const auto row = [](const char *name, const std::function<void(JsonEncoder &)> &misuse) {
        QTest::newRow(name) << misuse;
    };
    row("second root", [](JsonEncoder &encoder) {
        encoder.null();
        encoder.null();
    });
    row("value without its key", [](JsonEncoder &encoder) {
        encoder.beginObject();
        encoder.text(u"a"_s);
    });
    row("two keys", [](JsonEncoder &encoder) {
        encoder.beginObject();
        encoder.key("a"_L1);
        encoder.key("b"_L1);
    });
    row("key in an array", [](JsonEncoder &encoder) {
        encoder.beginArray();
        encoder.key("a"_L1);
    });
    row("key as root", [](JsonEncoder &encoder) { encoder.key("a"_L1); });
    row("key without a value", [](JsonEncoder &encoder) {
        encoder.beginObject();
        encoder.key("a"_L1);
        encoder.endObject();
    });
    row("end of the wrong kind", [](JsonEncoder &encoder) {
        encoder.beginArray();
        encoder.endObject();
    });
    row("end without a begin", [](JsonEncoder &encoder) { encoder.endArray(); });
    row("taken before its end", [](JsonEncoder &encoder) {
        encoder.beginArray();
        (void)encoder.takeDocument();
    });
    row("taken before its start", [](JsonEncoder &encoder) { (void)encoder.takeDocument(); });
}

void tst_JsonEncoder::stopsWhenMisused()
{
    QFETCH(std::function<void(JsonEncoder &)>, misuse);
    QVERIFY(stopsProgram([&] {
        JsonEncoder encoder;
        misuse(encoder);
    }));
    QVERIFY(!stopsProgram([] { documentOf([](JsonEncoder &encoder) { encoder.null(); }); }));
}

QTEST_GUILESS_MAIN(tst_JsonEncoder)
#include "tst_JsonEncoder.moc"
