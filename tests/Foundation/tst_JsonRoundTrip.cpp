#include "Foundation/Json/JsonDecoder.h"
#include "Foundation/Json/JsonEncoder.h"
#include "Foundation/Text/WellFormedText.h"

#include <QRandomGenerator>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

QString randomText(QRandomGenerator &random)
{
    QString text;
    const int size = random.bounded(30);
    while (text.size() < size) {
        const quint32 kind = random.bounded(4);
        if (kind == 0)
            text.append(QChar(char16_t(random.bounded(0x80))));
        else if (kind == 1)
            text.append(QChar(char16_t(random.bounded(0x10000))));
        else
            text.append(QChar::fromUcs4(random.bounded(0x110000)));
    }
    return text;
}

} // namespace

class tst_JsonRoundTrip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersComeBack();
    void textsComeBack();
};

void tst_JsonRoundTrip::numbersComeBack()
{
    using Limits = std::numeric_limits<double>;
    QRandomGenerator random(573406200);
    QList<double> numbers{0.0,
                          -0.0,
                          Limits::max(),
                          Limits::lowest(),
                          Limits::min(),
                          Limits::denorm_min(),
                          -Limits::denorm_min(),
                          573406200.0,
                          std::nextafter(Limits::min(), 0.0),
                          0.1,
                          1e15,
                          1e16,
                          123456789.123};
    for (int i = 0; i < 50000; ++i) {
        const quint64 bits = random.generate64();
        const quint64 subnormal = bits & ~(quint64(0x7FF) << 52);
        numbers.append(std::bit_cast<double>(i % 4 == 0 ? subnormal : bits));
        numbers.append(random.generateDouble() * 1e9); // dates
    }
    numbers.removeIf([](double number) { return !std::isfinite(number); });

    JsonEncoder encoder;
    encoder.beginArray();
    for (const double number : numbers)
        encoder.number(number);
    encoder.endArray();
    const QByteArray document = encoder.takeDocument().value();
    JsonDecoder decoder(document);
    qsizetype count = 0;
    decoder.readArray(u"number"_s, [&] {
        const double found = decoder.readNumber().value_or(Limits::quiet_NaN());
        QCOMPARE(std::bit_cast<quint64>(found), std::bit_cast<quint64>(numbers.value(count++)));
    });
    decoder.finish();
    QVERIFY(!decoder.hasFailed());
    QCOMPARE(count, numbers.size());
}

void tst_JsonRoundTrip::textsComeBack()
{
    QRandomGenerator random(2019);
    QStringList texts{u""_s, u"\uFEFF"_s, u"\uFEFF\uFEFFa"_s, QString(3, QChar(0)), u"\"\\/"_s};
    for (char32_t character = 0; character < 0x110000; character += 0x40) {
        QString block;
        for (char32_t next = character; next < character + 0x40; ++next)
            block.append(QChar::fromUcs4(next));
        texts.append(block);
    }
    for (int i = 0; i < 20000; ++i)
        texts.append(randomText(random));

    JsonEncoder encoder;
    encoder.beginArray();
    for (const QString &text : std::as_const(texts))
        encoder.text(text);
    encoder.endArray();
    const QByteArray document = encoder.takeDocument().value();
    JsonDecoder decoder(document);
    qsizetype count = 0;
    decoder.readArray(u"text"_s, [&] {
        QCOMPARE(decoder.readText().value_or(QString()), wellFormedText(texts.value(count++)));
    });
    decoder.finish();
    QVERIFY2(!decoder.hasFailed(), qPrintable(decoder.error().message));
    QCOMPARE(count, texts.size());
}

QTEST_GUILESS_MAIN(tst_JsonRoundTrip)
#include "tst_JsonRoundTrip.moc"
