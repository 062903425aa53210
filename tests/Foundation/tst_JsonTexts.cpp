#include "Foundation/Json/JsonDecoder.h"

#include "JsonTextTable.h"

#include <QSet>
#include <QTest>

#include <array>
#include <charconv>
#include <vector>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Reads any document value by value, each as what it looks like, into the form of JsonText.
class Describer
{
public:
    explicit Describer(const QByteArray &document) : m_document(document), m_decoder(document)
    {
        if (m_document.startsWith("\xEF\xBB\xBF"))
            m_document.replace(0, 3, "   ");
        describeValue();
        m_decoder.finish();
    }

    const QByteArray &description() const { return m_description; }
    Error error() const { return m_decoder.error(); }

private:
    char nextByte()
    {
        qsizetype place = qRound64(m_decoder.progress() * double(m_document.size()));
        while (place < m_document.size() && QByteArrayView(" \t\r\n").contains(m_document[place]))
            ++place;
        return place < m_document.size() ? m_document[place] : '\0';
    }

    void describeValue()
    {
        switch (nextByte()) {
        case '[':
            describeList();
            break;
        case '{':
            describeRecord();
            break;
        case '"':
            m_description += '"' + visible(m_decoder.readText().value_or(QString())) + '"';
            break;
        case 'n':
            m_description += m_decoder.readNull() ? "null" : "?";
            break;
        case 't':
            m_description += "true"; // Left unread: there is none in what this program reads.
            break;
        case 'f':
            m_description += "false";
            break;
        default:
            m_description += shortest(m_decoder.readNumber().value_or(-1));
        }
    }

    void describeList()
    {
        m_description += '[';
        m_decoder.readArray(u"element"_s, [this] {
            separate();
            describeValue();
        });
        m_description += ']';
    }

    void describeRecord()
    {
        m_description += '{';
        m_decoder.readObject([this](QByteArrayView key) {
            separate();
            m_description += '"' + visible(QString::fromUtf8(key)) + "\":";
            describeValue();
        });
        m_description += '}';
    }

    void separate()
    {
        if (!m_description.endsWith('[') && !m_description.endsWith('{'))
            m_description += ',';
    }

    static QByteArray shortest(double number)
    {
        std::array<char, 32> text;
        const auto end = std::to_chars(text.begin(), text.end(), number);
        return QByteArray(text.begin(), end.ptr - text.begin());
    }

    static QByteArray visible(const QString &text)
    {
        QByteArray shown;
        for (const uint character : text.toUcs4()) {
            if (character >= ' ' && character < 0x7F)
                shown += char(character);
            else
                shown += '<' + QByteArray::number(character, 16).toUpper() + '>';
        }
        return shown;
    }

    QByteArray m_document;
    QByteArray m_description;
    JsonDecoder m_decoder;
};

QString messageOfReading(const QByteArray &document)
{
    return Describer(document).error().message;
}

QString messageOfSkipping(const QByteArray &document)
{
    JsonDecoder decoder(document);
    decoder.finish();
    return decoder.error().message;
}

void addRows(const QList<JsonText> &texts)
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("expected");
    for (const JsonText &text : texts)
        QTest::newRow(text.name) << text.document << text.expected;
}

/// Everything there is in a document, some of it longer than a byte.
const QByteArray sample =
    R"( [ {"name" : "Ana \ud83d\ude80\n", "sessions":[{"date":-573406200.25e-1,"flag":0,)"
    "\"tags\":[{},\"Zo\xC3\xAB \xF0\x9F\x9A\x80\"],\"x\":[null,true,false]}]}, 7 ]";

} // namespace

class tst_JsonTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void accepts_data() { addRows(acceptedJsonTexts() + jsonTextsAcceptedByChoice()); }
    void accepts();
    void refuses_data() { addRows(refusedJsonTexts() + jsonTextsRefusedByChoice()); }
    void refuses();
    void namesAreTold();
    void refusesEveryCut();
    void readingAndSkippingAgreeOnDamage();
};

void tst_JsonTexts::accepts()
{
    QFETCH(QByteArray, document);
    const Describer read(document);
    QCOMPARE(read.error().message, QString());
    QTEST(read.description(), "expected");
    QCOMPARE(messageOfSkipping(document), QString());
    // At the edge of memory that is the document's, too: what lies behind is not looked at.
    const QByteArray longer = document + "\"]}5";
    JsonDecoder decoder(QByteArrayView(longer).first(document.size()));
    decoder.finish();
    QCOMPARE(decoder.error().message, QString());
}

void tst_JsonTexts::refuses()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, expected);
    for (const QString &message : {messageOfReading(document), messageOfSkipping(document)})
        QVERIFY2(message.endsWith(QString::fromUtf8(expected)), qPrintable(message));
}

/// A doubled name would hide a row from whoever looks for it.
void tst_JsonTexts::namesAreTold()
{
    QSet<QByteArray> names;
    const QList<JsonText> all = acceptedJsonTexts() + refusedJsonTexts()
                                + jsonTextsAcceptedByChoice() + jsonTextsRefusedByChoice();
    for (const JsonText &text : all) {
        QVERIFY2(!names.contains(text.name), text.name);
        names.insert(text.name);
    }
}

void tst_JsonTexts::refusesEveryCut()
{
    QCOMPARE(messageOfReading(sample), QString());
    for (qsizetype size = 0; size < sample.size(); ++size) {
        // A copy of just that size, so that a sanitizer sees a look beyond the end.
        const std::vector<char> cut(sample.cbegin(), sample.cbegin() + size);
        const QByteArray document = QByteArray::fromRawData(cut.data(), size);
        QVERIFY2(!messageOfReading(document).isEmpty(), document.constData());
        JsonDecoder decoder(document);
        decoder.finish();
        QVERIFY2(decoder.error().message.endsWith(u"it ends too early"_s)
                     || decoder.error().message == u"the file is empty"_s,
                 qPrintable(decoder.error().message));
    }
}

/// Whatever byte is changed: what can be skipped can be read, and the other way round.
void tst_JsonTexts::readingAndSkippingAgreeOnDamage()
{
    int accepted = 0;
    int refused = 0;
    for (qsizetype place = 0; place < sample.size(); ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray damaged = sample;
            damaged[place] = char(byte);
            const bool readable = messageOfReading(damaged).isEmpty();
            if (readable != messageOfSkipping(damaged).isEmpty())
                QFAIL(damaged.constData());
            ++(readable ? accepted : refused);
        }
    }
    QCOMPARE_GT(accepted, 0);
    QCOMPARE_GT(refused, accepted);
}

QTEST_GUILESS_MAIN(tst_JsonTexts)
#include "tst_JsonTexts.moc"
