#include "BackupFixture.h"
#include "Foundation/Precondition.h"
#include "RandomJournal.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/RecordCount.h"

#include <QHash>
#include <QRegularExpression>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr unsigned journals = 300;

/// The document with "Entity 1", "Entity 2" in place of its URIs, numbered as they come: the same for
/// every store, and two that are one stay one.
QByteArray withNumbers(const QByteArray &document)
{
    static const QRegularExpression uri(u"tembra-store://[^/]+/([A-Za-z]+)/p[0-9]+"_s);
    const QString whole = QString::fromUtf8(document);
    QHash<QString, int> numbers;
    QString numbered;
    qsizetype end = 0;
    for (auto found = uri.globalMatch(whole); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        const int next = int(numbers.size()) + 1;
        const int number = numbers.value(match.captured(), next);
        numbers.insert(match.captured(), number);
        numbered += whole.mid(end, match.capturedStart() - end) + match.captured(1) + u' '
                    + QString::number(number);
        end = match.capturedEnd();
    }
    return (numbered + whole.mid(end)).toUtf8();
}

void removeEverything(const JournalFixture &journal)
{
    for (const QByteArray &entityName :
         {Counterpart::entityName(), Tag::entityName(), Note::entityName()}) {
        const auto all = journal.context().fetchObjects({.entityName = entityName});
        const bool done = all && journal.context().deleteObjects(*all);
        require(done, "A journal can be emptied");
    }
}

bool isEmpty(const JournalFixture &journal)
{
    qint64 records = 0;
    for (const QByteArray &entityName :
         {Counterpart::entityName(), Session::entityName(), Note::entityName(), Tag::entityName()})
        records += recordCount(journal.context(), {.entityName = entityName});
    return records == 0;
}

/// The documents of random journals. They are written in one store, since making one takes longer
/// than all the rest.
QByteArrayList writtenRandomly()
{
    QByteArrayList documents;
    const JournalFixture journal;
    for (unsigned seed = 0; seed < journals; ++seed) {
        writeRandomJournal(journal, seed);
        documents.append(writeBackup(journal).value());
        removeEverything(journal);
    }
    return documents;
}

} // namespace

class tst_BackupRoundTrip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_documents = writtenRandomly(); }
    void cleanupTestCase() { m_target.reset(); }
    void journalsHoldWhatIsOdd();
    void comesBackTheSame_data();
    void comesBackTheSame();
    void foreignShapes_data();
    void foreignShapes();

private:
    QByteArrayList m_documents; ///< By seed.
    std::unique_ptr<JournalFixture> m_target; ///< Where documents are read.
};

/// So that the other test is known to try these.
void tst_BackupRoundTrip::journalsHoldWhatIsOdd()
{
    const QByteArray all = m_documents.join('\n');
    const QByteArrayList shapes{
        "\n[]\n",
        R"({"name":null,)",
        R"({"name":"",)",
        R"({"name":"a\u0000b",)",
        "{\"name\":\"\uFFFD\",",
        "{\"name\":\"\uFEFFbyte",
        R"("sessions":[]})",
        R"("date":null,)",
        R"("date":-)",
        R"("date":0,)",
        R"("date":-1e+300,)",
        R"("date":5e-324,)",
        R"("date":1.7976931348623157e+308,)",
        R"("flag":-32768,)",
        R"("flag":32767,)",
        R"("meetingSentiment":-32768,)",
        R"("personalSentiment":32767,)",
        R"("counterpartSentiment":256,)",
        R"("tags":[],)",
        R"({"emoji":null,"name":null,)",
        R"({"emoji":"",)",
        R"("name":"","objectID":"tembra-store://)",
        R"("notes":[]})",
        R"("contentString":"")",
        R"("contentString":"\u0000")",
        R"({"identifier":8,)",
    };
    for (const QByteArray &shape : shapes)
        QVERIFY2(all.contains(shape), shape.constData());
    QVERIFY(all.size() > journals * 1000);
}

void tst_BackupRoundTrip::comesBackTheSame_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 0; seed < journals; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_BackupRoundTrip::comesBackTheSame()
{
    QFETCH(unsigned, seed);
    const QByteArray document = m_documents.at(seed);
    // A new store for some, an emptied one for the others.
    const bool isNew = !m_target || seed % 10 == 0;
    if (isNew)
        m_target = std::make_unique<JournalFixture>();
    else
        removeEverything(*m_target);
    QVERIFY(isEmpty(*m_target));
    const Result<void> read = importBackup(document, *m_target);
    QVERIFY2(read, read ? "" : qPrintable(read.error().description()));
    QCoreApplication::processEvents();
    if (isNew) // From the disk alone.
        m_target->reopen();
    QCOMPARE(withNumbers(writeBackup(*m_target).value()), withNumbers(document));
}

void tst_BackupRoundTrip::foreignShapes_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](const char *name, const char *document, const char *expected) {
        QTest::newRow(name) << QByteArray(document) << QByteArray(expected);
    };
    row("nothing but braces", "[{}]",
        R"([{"name":null,"objectID":"Counterpart 1","sessions":[]}])");
    row("blanks and byte-order mark", "\xEF\xBB\xBF [ { \"name\" : \"Ana\" } ]\r\n",
        R"([{"name":"Ana","objectID":"Counterpart 1","sessions":[]}])");
    row("keys of teammates in another order, doubled and unknown",
        R"([{"x":[{}],"sessions":[],"objectID":"else","name":"Ben","name":"Ana"}])",
        R"([{"name":"Ana","objectID":"Counterpart 1","sessions":[]}])");

    // What is expected of one meeting, in parts.
    const auto meeting = [&row](const char *name, const QByteArray &members, const char *numbers,
                                const char *tags, const char *notes) {
        const QByteArray expected = R"([{"name":null,"objectID":"Counterpart 1","sessions":[{)"
                                    + QByteArray(numbers) + R"(,"objectID":"Session 2","tags":[)"
                                    + tags + R"(],"notes":[)" + notes + "]}]}]";
        row(name, QByteArray("[{\"sessions\":[{" + members + "}]}]").constData(),
            expected.constData());
    };
    constexpr auto none = R"("date":null,"flag":0,"counterpartSentiment":0,)"
                          R"("meetingSentiment":0,"personalSentiment":0)";
    meeting("no keys", "", none, "", "");
    meeting("no notes", R"("notes":[])", none, "", "");
    meeting("keys of meetings in another order, doubled and unknown",
            R"("personalSentiment":4,"meetingSentiment":3,"date":7,"counterpartSentiment":2,)"
            R"("x":null,"flag":9,"date":5,"flag":1)",
            R"("date":5,"flag":1,"counterpartSentiment":2,"meetingSentiment":3,)"
            R"("personalSentiment":4)",
            "", "");
    meeting("numbers written in another way",
            R"("date":5.0e2,"flag":1.0,"counterpartSentiment":20E-1,"meetingSentiment":-0,)"
            R"("personalSentiment":0.3e1)",
            R"("date":500,"flag":1,"counterpartSentiment":2,"meetingSentiment":0,)"
            R"("personalSentiment":3)",
            "", "");
    meeting("doubled notes",
            R"("notes":[{"identifier":3,"contentString":"x"},{"identifier":3,"contentString":"y"}])",
            none, "", R"({"identifier":3,"contentString":"y"})");
    meeting("notes out of order, of no field and of a field of another version",
            R"("notes":[{"contentString":"b","identifier":8},{"contentString":"a"},)"
            R"({"identifier":12,"contentString":"c"},{"identifier":4,"contentString":null}])",
            none, "",
            R"({"identifier":0,"contentString":"a"},{"identifier":8,"contentString":"b"},)"
            R"({"identifier":12,"contentString":"c"})");
    meeting("escapes that are not needed", R"("notes":[{"contentString":"\u0041\/\ud83d\ude80"}])",
            none, "", R"({"identifier":0,"contentString":"A/🚀"})");
    meeting("equal tags", R"("tags":[{"emoji":"🚀","name":"a"},{"name":"a","emoji":"🚀"}])", none,
            R"({"emoji":"🚀","name":"a","objectID":"Tag 3"})", "");
    meeting("tags out of order, without emoji or name",
            R"("tags":[{"name":"b"},{"name":"b","emoji":null},{"emoji":"🚀"},{"name":"a"}])", none,
            R"({"emoji":"🚀","name":null,"objectID":"Tag 3"},)"
            R"({"emoji":"🏷","name":"a","objectID":"Tag 4"},)"
            R"({"emoji":null,"name":"b","objectID":"Tag 5"},)"
            R"({"emoji":"🏷","name":"b","objectID":"Tag 6"})",
            "");
    meeting("doubled lists",
            R"("tags":[{"name":"a"}],"notes":[{"contentString":"x"}],"tags":[{"name":"b"}],)"
            R"("notes":[{"identifier":1,"contentString":"y"}])",
            none, R"({"emoji":"🏷","name":"b","objectID":"Tag 3"})",
            R"({"identifier":1,"contentString":"y"})");
}

void tst_BackupRoundTrip::foreignShapes()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, expected);
    JournalFixture journal;
    QVERIFY(importBackup(document, journal));
    const QByteArray written = writeBackup(journal).value();
    QCOMPARE(withNumbers(written), expected);
    // From then on it comes back the same.
    JournalFixture second;
    QVERIFY(importBackup(written, second));
    QCOMPARE(withNumbers(writeBackup(second).value()), expected);
}

QTEST_GUILESS_MAIN(tst_BackupRoundTrip)
#include "tst_BackupRoundTrip.moc"
