#include "Model/JournalEncoding.h"

#include "BackupFixture.h"
#include "Foundation/Json/JsonEncoder.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// The document of a whole journal, without keys.
QByteArray document(const JournalFixture &journal)
{
    return withoutKeys(writeBackup(journal).value());
}

/// What is written of a meeting's notes or tags, as text: from that key on.
QByteArray fromKey(const JournalFixture &journal, const char *key)
{
    const QByteArray whole = document(journal);
    const qsizetype place = whole.indexOf(QByteArray('"' + QByteArray(key) + '"'));
    return place < 0 ? QByteArray() : whole.mid(place);
}

template<typename Record>
QByteArray encoded(const Record &record)
{
    JsonEncoder encoder;
    if constexpr (std::is_void_v<decltype(record.encode(encoder))>)
        record.encode(encoder);
    else if (const Result<void> done = record.encode(encoder); !done)
        return done.error().message.toUtf8();
    return encoder.takeDocument().value();
}

/// Ana with one meeting at @p date.
std::shared_ptr<Session> addMeeting(const JournalFixture &journal, Date date = Date{5})
{
    return journal.addSession(journal.addCounterpart(u"Ana"_s), date);
}

constexpr auto emptyMeeting = R"("flag":0,"counterpartSentiment":0,"meetingSentiment":0,)"
                              R"("personalSentiment":0,"objectID":"Session","tags":[],"notes":[]})";

} // namespace

class tst_JournalEncoding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void journalWithoutTeammates();
    void wholeDocument();
    void teammatesInTheOrderGiven();
    void teammateWithoutNameOrMeetings();
    void onlyWhatBelongsToABackup();
    void meetingsInTheOrderOfTheirKeys();
    void meetingWithoutValues();
    void integersOfAllSizes();
    void datesAsTheyAre();
    void notesByField();
    void notesWithoutText();
    void meetingWithoutNotes();
    void tagsInTheirOrder();
    void tagOfSeveralMeetings();
    void editsOfThisMoment();
    void deletedRecords();
    void moreMeetingsThanAreReadAtOnce();
    void recordsWriteThemselvesAlike();
};

void tst_JournalEncoding::journalWithoutTeammates()
{
    JournalFixture journal;
    QCOMPARE(writeBackup(journal), QByteArray("[]"));
    Tag::findOrCreate(journal.context(), u"unused"_s, u"🚀"_s);
    QCOMPARE(writeBackup(journal), QByteArray("[]"));
}

void tst_JournalEncoding::wholeDocument()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto meeting = journal.addSession(ana, utc(2019, 3, 4, 15, 30));
    meeting->setCounterpartSentiment(2);
    meeting->setMeetingSentiment(3);
    meeting->setPersonalSentiment(1);
    meeting->setFlag(4);
    const auto tag = journal.addTag(meeting, u"launch"_s, u"🚀"_s);
    meeting->sortedNotes().at(0)->setContentString(u"Blocked on review"_s);
    meeting->sortedNotes().at(4)->setContentString(u"Wants to lead the next release"_s);

    const QByteArray expected = R"([{"name":"Ana","objectID":")" + uriOf(*ana)
                                + R"(","sessions":[{"date":573406200,"flag":4,)"
                                  R"("counterpartSentiment":2,"meetingSentiment":3,)"
                                  R"("personalSentiment":1,"objectID":")"
                                + uriOf(*meeting)
                                + R"(","tags":[{"emoji":"🚀","name":"launch","objectID":")"
                                + uriOf(*tag)
                                + R"("}],"notes":[)"
                                  R"({"identifier":0,"contentString":"Blocked on review"},)"
                                  R"({"identifier":4,)"
                                  R"("contentString":"Wants to lead the next release"}]}]}])";
    QCOMPARE(writeBackup(journal), expected);
    const auto found = journal.coreData().persistentContainer().objectIDForURI(
        QString::fromUtf8(uriOf(*meeting)));
    QCOMPARE(found, meeting->objectID());
}

void tst_JournalEncoding::teammatesInTheOrderGiven()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto ben = journal.addCounterpart(u"Ben"_s);
    journal.addCounterpart(u"Cem"_s);
    const auto dora = journal.addCounterpart(u"Dora"_s);
    const auto written = [&](const QList<std::shared_ptr<Counterpart>> &order) {
        return withoutKeys(encodeJournal(journal.context(), order).value());
    };
    const auto document = [](const QByteArrayList &names) {
        QByteArrayList teammates;
        for (const QByteArray &name : names)
            teammates.append(R"({"name":")" + name
                             + R"(","objectID":"Counterpart","sessions":[]})");
        return QByteArray('[' + teammates.join(',') + ']');
    };
    QCOMPARE(written({dora, ben, ana}), document({"Dora", "Ben", "Ana", "Cem"}));
    // A list that could not be read, or is not up to date, leaves nobody out.
    QCOMPARE(written({}), document({"Ana", "Ben", "Cem", "Dora"}));
    QVERIFY(journal.context().deleteObject(dora));
    QCOMPARE(written({dora, ben, ben}), document({"Ben", "Ana", "Cem"}));
}

void tst_JournalEncoding::teammateWithoutNameOrMeetings()
{
    JournalFixture journal;
    const auto nobody = journal.addCounterpart({});
    QCOMPARE(document(journal), R"([{"name":null,"objectID":"Counterpart","sessions":[]}])");
    nobody->setName(u""_s);
    QCOMPARE(document(journal), R"([{"name":"","objectID":"Counterpart","sessions":[]}])");
}

void tst_JournalEncoding::onlyWhatBelongsToABackup()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    ana->setEmail(u"ana@example.org"_s);
    ana->setLastUpdate(Date{7});
    ana->importID = u"elsewhere"_s;
    const auto tag = journal.addTag(journal.addSession(ana, Date{5}), u"launch"_s, u"🚀"_s);
    tag->setLastUse(Date{9});
    QCOMPARE(document(journal),
             R"([{"name":"Ana","objectID":"Counterpart","sessions":[{"date":5,"flag":0,)"
             R"("counterpartSentiment":0,"meetingSentiment":0,"personalSentiment":0,)"
             R"("objectID":"Session",)"
             R"("tags":[{"emoji":"🚀","name":"launch","objectID":"Tag"}],"notes":[]}]}])");
}

void tst_JournalEncoding::meetingsInTheOrderOfTheirKeys()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    QByteArray expected;
    for (const double date : {30.0, 10.0, 20.0}) {
        const auto meeting = journal.addSession(ana, Date{date});
        expected += QByteArray::number(date) + ' ' + uriOf(*meeting) + '\n';
    }
    journal.addSession(journal.addCounterpart(u"Ben"_s), Date{40}); // Not Ana's.
    const auto whole = QJsonDocument::fromJson(encodeJournal(journal.context(), {ana}).value());
    QByteArray found;
    for (const QJsonValue meeting : whole.array().at(0)["sessions"_L1].toArray())
        found += QByteArray::number(meeting["date"_L1].toDouble()) + ' '
                 + meeting["objectID"_L1].toString().toUtf8() + '\n';
    QCOMPARE(found, expected);
}

void tst_JournalEncoding::meetingWithoutValues()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    meeting->setDate({});
    // Numbers that were never given.
    QVERIFY(isMissing(meeting->value(Session::flagProperty)));
    QCOMPARE(fromKey(journal, "date"), "\"date\":null," + QByteArray(emptyMeeting) + "]}]");
}

void tst_JournalEncoding::integersOfAllSizes()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    meeting->setFlag(-32768);
    meeting->setCounterpartSentiment(32767);
    meeting->setMeetingSentiment(-1);
    meeting->setPersonalSentiment(99);
    QVERIFY2(fromKey(journal, "flag")
                 .startsWith(R"("flag":-32768,"counterpartSentiment":32767,"meetingSentiment":-1,)"
                             R"("personalSentiment":99,)"),
             fromKey(journal, "flag").constData());
}

void tst_JournalEncoding::datesAsTheyAre()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    const QList<std::pair<double, QByteArray>> dates{{0, "0"},
                                                     {-86400, "-86400"},
                                                     {573406200.123456, "573406200.123456"},
                                                     {-63114076800.5, "-63114076800.5"},
                                                     {1e300, "1e+300"},
                                                     {0.1, "0.1"}};
    for (const auto &[seconds, text] : dates) {
        meeting->setDate(Date{seconds});
        QCOMPARE(fromKey(journal, "date"), "\"date\":" + text + ',' + emptyMeeting + "]}]");
    }
}

void tst_JournalEncoding::notesByField()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    const auto notes = meeting->sortedNotes();
    notes.at(8)->setContentString(u"eight \U0001F3F3\uFE0F"_s);
    notes.at(2)->setContentString(u"\"two\"\n"_s + QChar(0) + u"שלום"_s);
    notes.at(5)->setContentString(QString(u"five "_s + QChar(0xD83D))); // A lone surrogate.
    // Fields that this version does not know stand where their numbers are.
    notes.at(1)->setIdentifier(40);
    notes.at(1)->setContentString(u"forty"_s);
    notes.at(3)->setIdentifier(-3);
    notes.at(3)->setContentString(u"minus three"_s);
    QCOMPARE(fromKey(journal, "notes"),
             R"("notes":[{"identifier":-3,"contentString":"minus three"},)"
             R"({"identifier":2,"contentString":"\"two\"\n\u0000שלום"},)"
             "{\"identifier\":5,\"contentString\":\"five \uFFFD\"},"
             "{\"identifier\":8,\"contentString\":\"eight \U0001F3F3\uFE0F\"},"
             R"({"identifier":40,"contentString":"forty"}]}]}])");
}

void tst_JournalEncoding::notesWithoutText()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    QCOMPARE(fromKey(journal, "notes"), R"("notes":[]}]}])");
    // An empty text is one.
    meeting->sortedNotes().at(3)->setContentString(u""_s);
    QCOMPARE(fromKey(journal, "notes"), R"("notes":[{"identifier":3,"contentString":""}]}]}])");
    meeting->sortedNotes().at(3)->setContentString({});
    QCOMPARE(fromKey(journal, "notes"), R"("notes":[]}]}])");
}

void tst_JournalEncoding::meetingWithoutNotes()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    for (const std::shared_ptr<Note> &note : meeting->notes())
        QVERIFY(journal.context().deleteObject(note));
    QCOMPARE(fromKey(journal, "tags"), R"("tags":[]}]}])");
}

void tst_JournalEncoding::tagsInTheirOrder()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    QCOMPARE(fromKey(journal, "tags"), R"("tags":[],"notes":[]}]}])");
    const QList<std::pair<QString, QString>> tags{
        {u"b"_s, u"🚀"_s},  {u"b"_s, {}}, {u"a"_s, u"🚀"_s}, {{}, u"🚀"_s},    {u""_s, u"🚀"_s},
        {u"\uFF5E"_s, {}}, {u"𐌀"_s, {}}, {u"B"_s, u"🚀"_s}, {u"b"_s, u""_s}, {u"b"_s, u"\uFF5E"_s},
    };
    for (const auto &[name, emoji] : tags)
        journal.addTag(meeting, name, emoji);
    QByteArray expected = "\"tags\":[";
    for (const std::shared_ptr<Tag> &tag : meeting->sortedTags())
        expected += encoded(*tag) + ',';
    expected.chop(1);
    expected += R"(],"notes":[]}]}])";
    QCOMPARE(fromKey(journal, "tags"), withoutKeys(expected));
    // By code points; missing first.
    QVERIFY(expected.startsWith(R"("tags":[{"emoji":"🚀","name":null,)"));
    const QByteArrayList order{R"("name":"",)",
                               R"("name":"B",)",
                               R"("name":"a",)",
                               R"({"emoji":null,"name":"b",)",
                               R"({"emoji":"","name":"b",)",
                               "{\"emoji\":\"\uFF5E\",\"name\":\"b\",",
                               R"({"emoji":"🚀","name":"b",)",
                               "\"name\":\"\uFF5E\",",
                               R"("name":"𐌀",)"};
    qsizetype place = 0;
    for (const QByteArray &next : order) {
        place = expected.indexOf(next, place);
        QVERIFY2(place > 0, next.constData());
    }
}

void tst_JournalEncoding::tagOfSeveralMeetings()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto first = journal.addSession(ana, Date{1});
    const auto second = journal.addSession(ana, Date{2});
    const auto launch = journal.addTag(first, u"launch"_s, u"🚀"_s);
    second->addTag(*launch);
    // The same in all but the key, as a tag that was renamed.
    const auto twin = journal.addTag(second, u"land"_s, u"🚀"_s);
    twin->setName(u"launch"_s);
    const auto shown = [](const Tag &tag) -> QByteArray {
        return R"({"emoji":"🚀","name":"launch","objectID":")" + uriOf(tag) + "\"}";
    };
    const QByteArray whole = writeBackup(journal).value();
    const QByteArray one = "\"tags\":[" + shown(*launch) + ']';
    const QByteArray both = "\"tags\":[" + shown(*launch) + ',' + shown(*twin) + ']';
    QVERIFY2(whole.contains(one), whole.constData());
    QVERIFY2(whole.indexOf(both) > whole.indexOf("\"date\":2,"), whole.constData());
}

void tst_JournalEncoding::editsOfThisMoment()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    meeting->setFlag(1);
    const auto tag = journal.addTag(meeting, u"launch"_s, u"🚀"_s);
    journal.settle();
    QSignalSpy saved(&journal.context(), &ManagedObjectContext::didSave);

    meeting->counterpart()->setName(u"Anna"_s);
    meeting->setFlag(2);
    meeting->setDate({});
    meeting->sortedNotes().at(1)->setContentString(u"typed just now"_s);
    meeting->removeTag(*tag);
    journal.addTag(meeting, u"new"_s, {});
    journal.addSession(meeting->counterpart(), Date{6});
    journal.addCounterpart(u"Ben"_s);
    QCOMPARE(document(journal),
             R"([{"name":"Anna","objectID":"Counterpart","sessions":[)"
             R"({"date":null,"flag":2,"counterpartSentiment":0,"meetingSentiment":0,)"
             R"("personalSentiment":0,"objectID":"Session",)"
             R"("tags":[{"emoji":null,"name":"new","objectID":"Tag"}],)"
             R"("notes":[{"identifier":1,"contentString":"typed just now"}]},)"
             R"({"date":6,)"
                 + QByteArray(emptyMeeting)
                 + R"(]},{"name":"Ben","objectID":"Counterpart","sessions":[]}])");
    // Writing a backup is no save.
    QCOMPARE(saved.count(), 0);
    QVERIFY(journal.context().hasChanges());
}

void tst_JournalEncoding::deletedRecords()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    const auto ben = journal.addCounterpart(u"Ben"_s);
    journal.addTag(meeting, u"launch"_s, u"🚀"_s);
    const auto tag = journal.addTag(meeting, u"launch"_s, u"⭐"_s);
    journal.settle();
    const QByteArray before = writeBackup(journal).value();
    const auto all = journal.counterparts();

    QVERIFY(journal.context().deleteObject(tag));
    QVERIFY(fromKey(journal, "tags")
                .startsWith(R"("tags":[{"emoji":"🚀","name":"launch","objectID":"Tag"}],)"));
    QVERIFY(journal.context().deleteObject(meeting));
    QVERIFY(journal.context().deleteObject(ben));
    const QByteArray expected = R"([{"name":"Ana","objectID":"Counterpart","sessions":[]}])";
    QCOMPARE(document(journal), expected);
    // A list that has not heard of it yet still names who is gone.
    QCOMPARE(all.size(), 2);
    QCOMPARE(withoutKeys(encodeJournal(journal.context(), all).value()), expected);

    for (int i = 0; i < 3; ++i) {
        journal.context().processPendingChanges();
        journal.context().undoManager()->undo();
    }
    QCOMPARE(writeBackup(journal), before);
}

void tst_JournalEncoding::moreMeetingsThanAreReadAtOnce()
{
    JournalFixture journal;
    constexpr int count = 700;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto even = Tag::findOrCreate(journal.context(), u"even"_s, u"🚀"_s);
    for (int i = 0; i < count; ++i) {
        const auto meeting = journal.addSession(ana, Date{double(count - i)});
        meeting->sortedNotes().at(i % 9)->setContentString(QString::number(i));
        if (i % 2 == 0)
            meeting->addTag(*even);
    }
    const QJsonArray found =
        QJsonDocument::fromJson(writeBackup(journal).value()).array().at(0)["sessions"_L1].toArray();
    QCOMPARE(found.size(), count);
    for (int i = 0; i < count; ++i) {
        const QJsonValue meeting = found.at(i);
        QCOMPARE(meeting["date"_L1].toInt(), count - i);
        const QJsonArray expected{
            QJsonObject{{u"identifier"_s, i % 9}, {u"contentString"_s, QString::number(i)}}};
        QCOMPARE(meeting["notes"_L1].toArray(), expected);
        QCOMPARE(meeting["tags"_L1].toArray().size(), i % 2 == 0 ? 1 : 0);
    }
}

void tst_JournalEncoding::recordsWriteThemselvesAlike()
{
    JournalFixture journal;
    const auto meeting = addMeeting(journal);
    const auto tag = journal.addTag(meeting, u"launch"_s, u"🚀"_s);
    const auto note = meeting->sortedNotes().at(6);
    QCOMPARE(encoded(*note), R"({"identifier":6,"contentString":null})");
    note->setContentString(u"x"_s);
    const QByteArray whole = writeBackup(journal).value();
    const QByteArray sessions = R"("sessions":[)" + encoded(*meeting) + "]}]";
    const QByteArray tags = R"("tags":[)" + encoded(*tag) + ']';
    const QByteArray notes = R"("notes":[)" + encoded(*note) + ']';
    QVERIFY(whole.contains(sessions));
    QVERIFY(whole.contains(tags));
    QVERIFY(whole.contains(notes));
}

QTEST_GUILESS_MAIN(tst_JournalEncoding)
#include "tst_JournalEncoding.moc"
