#include "BackupFixture.h"
#include "MeetingsDocument.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/RecordCount.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// The one meeting of the one teammate that a document with these members brings in.
std::shared_ptr<Session> importedMeeting(const JournalFixture &journal, const QByteArray &members)
{
    const auto outcome = importBackup(meetingsDocument({members}), journal);
    if (!outcome) {
        qCritical("%s", qPrintable(outcome.error().message));
        return {};
    }
    return journal.counterparts().first()->sessions().first();
}

qint64 countOf(ManagedObjectContext &context, const QByteArray &entityName)
{
    return recordCount(context, {.entityName = entityName});
}

} // namespace

class tst_RecordDecoding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void teammateIsMadeOfItsKeys_data();
    void teammateIsMadeOfItsKeys();
    void meetingsBelongToTheirTeammate();
    void meetingWithoutKeys_data();
    void meetingWithoutKeys();
    void meetingWithEveryKey();
    void datesComeInAsTheyAre();
    void namesOfRecordsStayInMemory();
    void namesOfRecordsPlayNoPart();
};

void tst_RecordDecoding::teammateIsMadeOfItsKeys_data()
{
    QTest::addColumn<QString>("name"); // Rows are named by the teammate's members.
    QTest::addColumn<int>("meetings");

    const auto row = [](const char *members, const QString &name, int meetings) {
        QTest::newRow(members) << name << meetings;
    };
    row("", {}, 0);
    row(R"("name":null,"sessions":null,"objectID":null)", {}, 0);
    row(R"("name":"")", u""_s, 0);
    row(R"("name":"Ana")", u"Ana"_s, 0);
    row(R"("name":"a\u0000b \ud83c\udff3\ufe0f","sessions":[])",
        u"a"_s + QChar(0) + u"b \U0001F3F3\uFE0F"_s, 0);
    row(R"("sessions":[{}],"name":"Ana")", u"Ana"_s, 1);
    row(R"("sessions":[{},{}],"name":"Ana","sessions":[{}])", u"Ana"_s, 3);
    row(R"("email":"ana@example.org","lastUpdate":5,"objectID":"uri","name":"Ana")", u"Ana"_s, 0);
}

void tst_RecordDecoding::teammateIsMadeOfItsKeys()
{
    QFETCH(QString, name);
    QFETCH(int, meetings);
    JournalFixture journal;
    const QByteArray document = "[{" + QByteArray(QTest::currentDataTag()) + "}]";
    QVERIFY(importBackup(document, journal));
    const auto teammates = journal.counterparts();
    QCOMPARE(teammates.size(), 1);
    const Counterpart &teammate = *teammates.first();
    QCOMPARE(teammate.name(), name);
    QCOMPARE(teammate.name().isNull(), name.isNull());
    QCOMPARE(teammate.sessions().size(), meetings);
    // No part of a backup.
    QVERIFY(teammate.email().isNull());
    QVERIFY(!teammate.lastUpdate());
}

void tst_RecordDecoding::meetingsBelongToTheirTeammate()
{
    JournalFixture journal;
    QVERIFY(importBackup(R"([{"name":"Ana","sessions":[{"date":1},{"date":2}]},)"
                         R"({"name":"Ben","sessions":[{"date":3}]},{"name":"Cem"}])",
                         journal));
    QStringList found;
    for (const std::shared_ptr<Counterpart> &teammate : journal.counterparts()) {
        for (const std::shared_ptr<Session> &session : teammate->sessions()) {
            QCOMPARE(session->counterpart(), teammate);
            found.append(teammate->name()
                         + QString::number(session->date()->secondsSinceReferenceDate));
        }
    }
    QCOMPARE(found, QStringList({u"Ana1"_s, u"Ana2"_s, u"Ben3"_s}));
    QCOMPARE(countOf(journal.context(), "Session"), 3);
}

void tst_RecordDecoding::meetingWithoutKeys_data()
{
    QTest::addColumn<QByteArray>("members");
    QTest::newRow("absent") << QByteArray();
    QTest::newRow("null") << QByteArray(
        R"("date":null,"flag":null,"counterpartSentiment":null,"meetingSentiment":null,)"
        R"("personalSentiment":null,"objectID":null,"tags":null,"notes":null)");
}

void tst_RecordDecoding::meetingWithoutKeys()
{
    QFETCH(QByteArray, members);
    JournalFixture journal;
    const auto meeting = importedMeeting(journal, members);
    QVERIFY(meeting);
    QCOMPARE(meeting->date(), OptionalDate()); // Not the one that a new meeting has.
    // They are numbers, not missing.
    for (const int property :
         {Session::flagProperty, Session::counterpartSentimentProperty,
          Session::meetingSentimentProperty, Session::personalSentimentProperty})
        QVERIFY(meeting->value(property) == Value(qint64(0)));
    QVERIFY(meeting->tags().isEmpty());
    QCOMPARE(meeting->notes().size(), qsizetype(allNoteIdentifiers().size()));
}

void tst_RecordDecoding::meetingWithEveryKey()
{
    JournalFixture journal;
    const auto meeting = importedMeeting(
        journal, R"("notes":[{"contentString":"x","identifier":4}],"tags":[{"name":"launch"}],)"
                 R"("objectID":"uri","personalSentiment":8,"meetingSentiment":-32768,)"
                 R"("counterpartSentiment":32767,"flag":1,"date":573406200.25)");
    QVERIFY(meeting);
    QCOMPARE(meeting->date(), OptionalDate(Date{573406200.25}));
    QCOMPARE(meeting->flag(), 1);
    QCOMPARE(meeting->counterpartSentiment(), 32767);
    QCOMPARE(meeting->meetingSentiment(), -32768);
    QCOMPARE(meeting->personalSentiment(), 8);
    QCOMPARE(meeting->tags().size(), 1);
    QCOMPARE(meeting->sortedNotes().at(4)->contentString(), u"x"_s);
}

void tst_RecordDecoding::datesComeInAsTheyAre()
{
    JournalFixture journal;
    const QList<double> dates{0, 573406200.1234567, -63114076800.5, 1e300, -1e-300, 5e-324};
    QByteArrayList sessions;
    for (const double date : dates)
        sessions.append("\"date\":" + QByteArray::number(date, 'g', 17));
    QVERIFY(importBackup(meetingsDocument(sessions), journal));
    QList<double> found;
    for (const std::shared_ptr<Session> &session : journal.counterparts().first()->sessions())
        found.append(session->date()->secondsSinceReferenceDate);
    QVERIFY(found == dates); // To the last bit.
}

void tst_RecordDecoding::namesOfRecordsStayInMemory()
{
    JournalFixture journal;
    const auto context = newImportContext(journal);
    const QByteArray document =
        R"([{"objectID":"teammate","sessions":[{"objectID":"meeting"},{"objectID":null}]},{}])";
    {
        const auto read = readBackup(document, *context);
        QVERIFY(read);
        QCOMPARE(read->at(0)->importID, u"teammate"_s);
        QVERIFY(read->at(1)->importID.isNull());
        const auto sessions = read->at(0)->sessions();
        QCOMPARE(sessions.at(0)->importID, u"meeting"_s);
        QVERIFY(sessions.at(1)->importID.isNull());
        QVERIFY(context->save());
    }
    for (const std::shared_ptr<Counterpart> &teammate : journal.counterparts()) {
        QVERIFY(teammate->importID.isNull());
        for (const std::shared_ptr<Session> &session : teammate->sessions())
            QVERIFY(session->importID.isNull());
    }
}

void tst_RecordDecoding::namesOfRecordsPlayNoPart()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    ana->setEmail(u"ana@example.org"_s);
    const auto meeting = journal.addSession(ana, Date{5});
    const auto tag = journal.addTag(meeting, u"launch"_s, u"🚀"_s);
    journal.settle();
    const QByteArray before = writeBackup(journal).value();
    const QByteArray document = R"([{"name":"Ben","objectID":")" + uriOf(*ana)
                                + R"(","sessions":[{"date":9,"objectID":")" + uriOf(*meeting)
                                + R"(","tags":[{"name":"land","objectID":")" + uriOf(*tag)
                                + R"("}]}]}])";
    QVERIFY(importBackup(document, journal));
    QCoreApplication::processEvents(); // Those who are held hear of it.
    QCOMPARE(countOf(journal.context(), "Counterpart"), 2);
    QCOMPARE(countOf(journal.context(), "Session"), 2);
    QCOMPARE(countOf(journal.context(), "Tag"), 2);
    // Who was there is as before.
    QVERIFY(writeBackup(journal)->startsWith(before.chopped(1)));
    QCOMPARE(ana->email(), u"ana@example.org"_s);
}

QTEST_GUILESS_MAIN(tst_RecordDecoding)
#include "tst_RecordDecoding.moc"
