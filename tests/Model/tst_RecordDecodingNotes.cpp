#include "BackupFixture.h"
#include "MeetingsDocument.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QTest>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

QString shown(const Note &note)
{
    const QString text = note.contentString();
    return QString::number(note.identifier()) + (text.isNull() ? u""_s : u":\""_s + text + u'"');
}

QString shown(const QList<std::shared_ptr<Note>> &notes)
{
    QStringList parts;
    for (const std::shared_ptr<Note> &note : notes)
        parts.append(shown(*note));
    return parts.join(u' ');
}

/// The notes of the store that no meeting has, in the order in which they were made.
QString notesWithoutMeeting(ManagedObjectContext &context)
{
    auto notes = context.fetch<Note>({.entityName = "Note"}).value();
    notes.removeIf([](const std::shared_ptr<Note> &note) { return note->session() != nullptr; });
    std::sort(notes.begin(), notes.end(), [](const auto &left, const auto &right) {
        return left->objectID() < right->objectID();
    });
    return shown(notes);
}

} // namespace

class tst_RecordDecodingNotes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notesOfAMeeting_data();
    void notesOfAMeeting();
    void everyMeetingHasItsOwn();
    void replacedNotesMoveToNoOtherMeeting();
};

void tst_RecordDecodingNotes::notesOfAMeeting_data()
{
    QTest::addColumn<QByteArray>("notes");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("withoutMeeting");

    const auto row = [](const char *name, const char *notes, const char *expected,
                        const char *withoutMeeting) {
        QTest::newRow(name) << QByteArray(notes) << QString::fromUtf8(expected)
                            << QString::fromUtf8(withoutMeeting);
    };
    row("absent", "", "0 1 2 3 4 5 6 7 8", "");
    row("null", R"("notes":null)", "0 1 2 3 4 5 6 7 8", "");
    row("none", R"("notes":[])", "0 1 2 3 4 5 6 7 8", "");
    row("one", R"("notes":[{"identifier":3,"contentString":"x"}])", R"(0 1 2 3:"x" 4 5 6 7 8)",
        "3");
    row("two, any order",
        R"("notes":[{"contentString":"y","identifier":8},{"identifier":1,"contentString":"x"}])",
        R"(0 1:"x" 2 3 4 5 6 7 8:"y")", "1 8");
    row("all",
        R"("notes":[{"identifier":0,"contentString":"a"},{"identifier":1,"contentString":"b"},)"
        R"({"identifier":2,"contentString":"c"},{"identifier":3,"contentString":"d"},)"
        R"({"identifier":4,"contentString":"e"},{"identifier":5,"contentString":"f"},)"
        R"({"identifier":6,"contentString":"g"},{"identifier":7,"contentString":"h"},)"
        R"({"identifier":8,"contentString":"i"}])",
        R"(0:"a" 1:"b" 2:"c" 3:"d" 4:"e" 5:"f" 6:"g" 7:"h" 8:"i")", "0 1 2 3 4 5 6 7 8");
    row("empty text", R"("notes":[{"identifier":3,"contentString":""}])", R"(0 1 2 3:"" 4 5 6 7 8)",
        "3");
    row("no text", R"("notes":[{"identifier":3}])", "0 1 2 3 4 5 6 7 8", "3");
    row("no field", R"("notes":[{"contentString":"x"}])", R"(0:"x" 1 2 3 4 5 6 7 8)", "0");
    row("null as field", R"("notes":[{"identifier":null,"contentString":"x"}])",
        R"(0:"x" 1 2 3 4 5 6 7 8)", "0");
    row("nothing in it", R"("notes":[{}])", "0 1 2 3 4 5 6 7 8", "0");
    row("same field twice",
        R"("notes":[{"identifier":3,"contentString":"x"},{"identifier":3,"contentString":"y"}])",
        R"(0 1 2 3:"y" 4 5 6 7 8)", R"(3 3:"x")");
    row("same field twice, the later without text",
        R"("notes":[{"identifier":3,"contentString":"x"},{"identifier":3}])", "0 1 2 3 4 5 6 7 8",
        R"(3 3:"x")");
    row("same field three times, others between",
        R"("notes":[{"identifier":3,"contentString":"x"},{"identifier":4,"contentString":"v"},)"
        R"({"identifier":3,"contentString":"y"},{"identifier":3,"contentString":"z"}])",
        R"(0 1 2 3:"z" 4:"v" 5 6 7 8)", R"(3 4 3:"x" 3:"y")");
    row("unknown fields",
        R"("notes":[{"identifier":9,"contentString":"x"},{"identifier":-1,"contentString":"y"},)"
        R"({"identifier":32767},{"identifier":-32768}])",
        R"(-32768 -1:"y" 0 1 2 3 4 5 6 7 8 9:"x" 32767)", "");
    row("unknown field twice",
        R"("notes":[{"identifier":40,"contentString":"x"},{"identifier":40,"contentString":"y"}])",
        R"(0 1 2 3 4 5 6 7 8 40:"y")", R"(40:"x")");
    row("key twice",
        R"("notes":[{"identifier":3,"contentString":"x"}],)"
        R"("notes":[{"identifier":4,"contentString":"y"}])",
        R"(0 1 2 3 4:"y" 5 6 7 8)", "4");
    row("key twice, then null", R"("notes":[{"identifier":3,"contentString":"x"}],"notes":null)",
        "0 1 2 3 4 5 6 7 8", "");
}

void tst_RecordDecodingNotes::notesOfAMeeting()
{
    QFETCH(QByteArray, notes);
    JournalFixture journal;
    QVERIFY(importBackup(meetingsDocument({notes}), journal));
    const auto meeting = journal.counterparts().first()->sessions().first();
    QTEST(shown(meeting->sortedNotes()), "expected");
    for (const std::shared_ptr<Note> &note : meeting->notes())
        QCOMPARE(note->session(), meeting);
    // They are in the store all the same.
    QTEST(notesWithoutMeeting(journal.context()), "withoutMeeting");
}

void tst_RecordDecodingNotes::everyMeetingHasItsOwn()
{
    JournalFixture journal;
    QVERIFY(importBackup(
        R"([{"sessions":[{"notes":[{"identifier":1,"contentString":"x"}]},{},)"
        R"({"notes":[{"identifier":1,"contentString":"y"},{"identifier":2,"contentString":"z"}]}]}])",
        journal));
    QStringList found;
    for (const std::shared_ptr<Session> &session : journal.counterparts().first()->sessions())
        found.append(shown(session->sortedNotes()));
    QCOMPARE(found, QStringList({uR"(0 1:"x" 2 3 4 5 6 7 8)"_s, u"0 1 2 3 4 5 6 7 8"_s,
                                 uR"(0 1:"y" 2:"z" 3 4 5 6 7 8)"_s}));
}

void tst_RecordDecodingNotes::replacedNotesMoveToNoOtherMeeting()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto meeting = journal.addSession(ana, Date{5});
    journal.write(meeting, NoteIdentifier::goals, u"mine"_s);
    journal.settle();
    QVERIFY(
        importBackup(meetingsDocument({R"("notes":[{"identifier":4,"contentString":"theirs"}])"}),
                     journal));
    QCOMPARE(shown(meeting->sortedNotes()), uR"(0 1 2 3 4:"mine" 5 6 7 8)"_s);
    // A backup of all this holds none without a meeting.
    const QByteArray whole = writeBackup(journal).value();
    QCOMPARE(whole.count("\"identifier\":"), 2);
}

QTEST_GUILESS_MAIN(tst_RecordDecodingNotes)
#include "tst_RecordDecodingNotes.moc"
