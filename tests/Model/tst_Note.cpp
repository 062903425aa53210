#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_Note : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neverFilledIn();
    void latestEntryOfTheTeammate();
    void currentMeetingCounts();
    void anEntryOfAMeetingWithoutADateIsAnEntry();
    void emptyTextIsNoEntry();
    void otherTeammatesDoNotCount();
    void otherFieldsDoNotCount();
    void labelFollowsTextsAndDates();
    void labelFollowsTheDay();
    void titleAndPlaceholderFollowTheField();
    void textsAreStoredAsTyped_data();
    void textsAreStoredAsTyped();
};

void tst_Note::neverFilledIn()
{
    JournalFixture journal;
    const auto session = journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1);
    QCOMPARE(journal.note(session, NoteIdentifier::goals)->fullLastDateLabel(),
             u"Last note: Never"_s);
}

void tst_Note::latestEntryOfTheTeammate()
{
    JournalFixture journal(utc(2026, 11, 20));
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.write(journal.addSession(ana, utc(2026, 9, 1)), NoteIdentifier::goals, u"first"_s);
    journal.write(journal.addSession(ana, utc(2026, 10, 2)), NoteIdentifier::goals, u"second"_s);
    const auto today = journal.addSession(ana, utc(2026, 11, 20));
    QCOMPARE(journal.note(today, NoteIdentifier::goals)->fullLastDateLabel(),
             u"Last note: Oct 2, 2026"_s);
}

void tst_Note::currentMeetingCounts()
{
    JournalFixture journal(utc(2026, 11, 20));
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto today = journal.addSession(ana, utc(2026, 11, 20));
    journal.write(today, NoteIdentifier::goals, u"typed just now"_s);
    journal.context().processPendingChanges();
    QCOMPARE(journal.note(today, NoteIdentifier::goals)->lastDateString(), u"Today"_s);
}

void tst_Note::anEntryOfAMeetingWithoutADateIsAnEntry()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto session = journal.addSession(ana, utc(2026, 11, 19));
    journal.write(session, NoteIdentifier::goals, u"text"_s);
    session->setDate({});
    journal.settle();
    QCOMPARE(journal.note(session, NoteIdentifier::goals)->fullLastDateLabel(),
             u"Last note: No date"_s);
}

void tst_Note::emptyTextIsNoEntry()
{
    JournalFixture journal;
    const auto session = journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1);
    journal.write(session, NoteIdentifier::goals, u""_s);
    QCOMPARE(journal.note(session, NoteIdentifier::goals)->lastDateString(), u"Never"_s);
}

void tst_Note::otherTeammatesDoNotCount()
{
    JournalFixture journal;
    journal.write(journal.addSessionDaysAgo(journal.addCounterpart(u"Ben"_s), 1),
                  NoteIdentifier::goals, u"x"_s);
    const auto session = journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1);
    QCOMPARE(journal.note(session, NoteIdentifier::goals)->lastDateString(), u"Never"_s);
}

void tst_Note::otherFieldsDoNotCount()
{
    JournalFixture journal;
    const auto session = journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1);
    journal.write(session, NoteIdentifier::wins, u"x"_s);
    QCOMPARE(journal.note(session, NoteIdentifier::goals)->lastDateString(), u"Never"_s);
}

void tst_Note::labelFollowsTextsAndDates()
{
    JournalFixture journal(utc(2026, 11, 20));
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto older = journal.addSession(ana, utc(2026, 10, 2));
    const auto shown = journal.note(journal.addSession(ana, utc(2026, 11, 19)),
                                    NoteIdentifier::goals);
    journal.settle();
    QCOMPARE(shown->lastDateString(), u"Never"_s);

    QSignalSpy announced(shown.get(), &Note::derivedChanged);
    journal.write(older, NoteIdentifier::goals, u"text"_s);
    journal.context().processPendingChanges();
    QCOMPARE(announced.count(), 1);
    QCOMPARE(shown->lastDateString(), u"Oct 2, 2026"_s);

    older->setDate(utc(2026, 10, 3));
    journal.context().processPendingChanges();
    QCOMPARE(announced.count(), 2);
    QCOMPARE(shown->lastDateString(), u"Oct 3, 2026"_s);

    QVERIFY(journal.context().deleteObject(older).has_value());
    journal.context().processPendingChanges();
    QVERIFY(announced.count() > 2);
    QCOMPARE(shown->lastDateString(), u"Never"_s);
}

void tst_Note::labelFollowsTheDay()
{
    JournalFixture journal(utc(2026, 11, 20, 23));
    const auto session = journal.addSession(journal.addCounterpart(u"Ana"_s), utc(2026, 11, 20));
    journal.write(session, NoteIdentifier::goals, u"text"_s);
    const auto note = journal.note(session, NoteIdentifier::goals);
    journal.settle();
    QCOMPARE(note->lastDateString(), u"Today"_s);
    journal.clock.setNow(utc(2026, 11, 21, 0, 1));
    journal.derivedTexts.checkClock();
    QCOMPARE(note->lastDateString(), u"Yesterday"_s);
}

void tst_Note::titleAndPlaceholderFollowTheField()
{
    JournalFixture journal;
    const auto note = journal.context().insert<Note>();
    note->setIdentifier(4);
    QCOMPARE(note->titleString(), u"Goals discussed"_s);
    QCOMPARE(note->placeholderString(), u"Examples: short-term, long-term, project-based, etc."_s);
    note->setIdentifier(8);
    QCOMPARE(note->titleString(), u"Miscellaneous"_s);
    QVERIFY(note->placeholderString().isNull());
}

void tst_Note::textsAreStoredAsTyped_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("U+0000") << QStringView(u"before\0after", 12).toString();
    QTest::newRow("right to left") << u"שלום עולם"_s;
    QTest::newRow("combining") << u"e\u0301\u0323 a\u030A"_s;
    QTest::newRow("a megabyte") << u"All work and no play. "_s.repeated(50'000);
    QTest::newRow("emoji") << u"👩‍👩‍👧‍👦🏴󠁧󠁢󠁳󠁣󠁴󠁿🇩🇪"_s;
    QTest::newRow("line ends") << u"a\r\nb\rc\nd\u2028e\u2029f"_s;
}

void tst_Note::textsAreStoredAsTyped()
{
    QFETCH(QString, text);
    JournalFixture journal;
    ObjectID id;
    {
        const auto note = journal.context().insert<Note>();
        note->setContentString(text);
        id = note->objectID();
        journal.settle();
    }
    journal.reopen();
    QCOMPARE(journal.context().object<Note>(id)->contentString(), text);
}

QTEST_GUILESS_MAIN(tst_Note)
#include "tst_Note.moc"
