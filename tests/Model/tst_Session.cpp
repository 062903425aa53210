#include "Model/SentimentScale.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "support/RecordCount.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_Session : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newSessionHasTheCurrentDateAndNineEmptyNotes();
    void emojiWithoutOverrides();
    void emojiOffTheScalesKeepTheSeparators_data();
    void emojiOffTheScalesKeepTheSeparators();
    void emojiColumnSeparatesByLineFeeds();
    void overrideOfZeroShowsInUnratedSessions();
    void sessionSummary();
    void sessionSummaryWithoutDate();
    void tagsAreSortedByNameThenEmojiMissingFirst();
    void tagSummaryWithoutTagsIsEmpty();
    void notesAreSortedByField();
    void deletionCallsBackOnce();
    void deletionByCascadeCallsBackToo();
    void callbackSurvivesThatNobodyHoldsTheSession();
    void deletingASessionLeavesTagsAndNoNotes();
    void derivedTextsAreAnnounced();
};

void tst_Session::newSessionHasTheCurrentDateAndNineEmptyNotes()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    QCOMPARE(session->date().value(), journal.clock.now());
    const auto notes = session->sortedNotes();
    QCOMPARE(notes.size(), 9);
    for (qsizetype i = 0; i < notes.size(); ++i) {
        QCOMPARE(qsizetype(notes.at(i)->identifier()), i);
        QVERIFY(notes.at(i)->contentString().isNull());
        QCOMPARE(notes.at(i)->session(), session);
    }
    QCOMPARE(session->flag(), qint16(0));
    QCOMPARE(session->personalSentiment(), qint16(0));
}

void tst_Session::emojiWithoutOverrides()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    QCOMPARE(session->emojiSummary(), u"— — —"_s);
    session->setPersonalSentiment(3);
    session->setMeetingSentiment(4);
    session->setCounterpartSentiment(8);
    QCOMPARE(session->emojiSummary(), u"🤩 ⚡\uFE0F 🤔"_s);
}

void tst_Session::emojiOffTheScalesKeepTheSeparators_data()
{
    QTest::addColumn<int>("personal");
    QTest::addColumn<int>("meeting");
    QTest::addColumn<int>("counterpart");
    QTest::addColumn<QString>("summary");
    QTest::newRow("personal") << 9 << 1 << 1 << u" 💥 🙂"_s;
    QTest::newRow("meeting") << 1 << 7 << 1 << u"🙂  🙂"_s;
    QTest::newRow("teammate") << 1 << 1 << 9 << u"🙂 💥 "_s;
    QTest::newRow("all") << 9 << 7 << 9 << u"  "_s;
    QTest::newRow("negative") << -1 << -1 << -1 << u"  "_s;
}

void tst_Session::emojiOffTheScalesKeepTheSeparators()
{
    QFETCH(int, personal);
    QFETCH(int, meeting);
    QFETCH(int, counterpart);
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    session->setPersonalSentiment(qint16(personal));
    session->setMeetingSentiment(qint16(meeting));
    session->setCounterpartSentiment(qint16(counterpart));
    QTEST(session->emojiSummary(), "summary");
}

void tst_Session::emojiColumnSeparatesByLineFeeds()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    session->setPersonalSentiment(1);
    session->setMeetingSentiment(2);
    QCOMPARE(session->emojiColumn(), u"🙂\n🙌\n—"_s);
}

void tst_Session::overrideOfZeroShowsInUnratedSessions()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    journal.defaults.setEmojiOverride(u"personalSentimentKey0"_s, u"🫥"_s);
    QCOMPARE(session->emojiSummary(), u"🫥 — 🫥"_s);
}

void tst_Session::sessionSummary()
{
    JournalFixture journal(utc(2026, 11, 20));
    const auto session = journal.context().insert<Session>();
    session->setDate(utc(2026, 10, 2));
    QCOMPARE(session->sessionSummary(), u"Oct 2, 2026 — — —"_s);
    session->setDate(utc(2026, 11, 20, 9));
    QCOMPARE(session->sessionSummary(), u"Today — — —"_s);
    session->setDate(utc(2026, 11, 19, 23));
    QCOMPARE(session->sessionSummary(), u"Yesterday — — —"_s);
}

void tst_Session::sessionSummaryWithoutDate()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    session->setDate({});
    QCOMPARE(session->sessionSummary(), u" — — —"_s);
}

void tst_Session::tagsAreSortedByNameThenEmojiMissingFirst()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    journal.addTag(session, u"launch"_s, u"🚀"_s);
    journal.addTag(session, u"Zeta"_s, u"⚓"_s);
    journal.addTag(session, u"launch"_s, u"🌱"_s);
    journal.addTag(session, QString(), u"🎯"_s);
    journal.addTag(session, u"launch"_s, QString());
    QStringList titles;
    for (const auto &tag : session->sortedTags())
        titles.append(tag->titleString());
    // Upper case stands before lower case: the order of code points.
    const QStringList expected{u" 🎯"_s, u"Zeta ⚓"_s, u"launch "_s, u"launch 🌱"_s, u"launch 🚀"_s};
    QCOMPARE(titles, expected);
    QCOMPARE(session->tagEmojiSummary(), u"🎯⚓🌱🚀"_s);
}

void tst_Session::tagSummaryWithoutTagsIsEmpty()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    QCOMPARE(session->tagEmojiSummary(), u""_s);
}

void tst_Session::notesAreSortedByField()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    const auto notes = session->sortedNotes();
    notes.at(0)->setIdentifier(8);
    notes.at(8)->setIdentifier(0);
    const auto sorted = session->sortedNotes();
    QCOMPARE(sorted.first(), notes.at(8));
    QCOMPARE(sorted.last(), notes.at(0));
}

void tst_Session::deletionCallsBackOnce()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    int calls = 0;
    session->setOnDeletion([&] { ++calls; });
    QVERIFY(journal.context().deleteObject(session).has_value());
    QCOMPARE(calls, 1);
    QVERIFY(session->isDeleted());
}

void tst_Session::deletionByCascadeCallsBackToo()
{
    JournalFixture journal;
    const auto counterpart = journal.addCounterpart(u"Ana"_s);
    const auto session = journal.addSessionDaysAgo(counterpart, 1);
    int calls = 0;
    session->setOnDeletion([&] { ++calls; });
    QVERIFY(journal.context().deleteObject(counterpart).has_value());
    QCOMPARE(calls, 1);
}

void tst_Session::callbackSurvivesThatNobodyHoldsTheSession()
{
    JournalFixture journal;
    const auto counterpart = journal.addCounterpart(u"Ana"_s);
    int calls = 0;
    journal.addSessionDaysAgo(counterpart, 1)->setOnDeletion([&] { ++calls; });
    journal.settle();
    QVERIFY(journal.context().deleteObject(counterpart).has_value());
    QCOMPARE(calls, 1);
}

void tst_Session::deletingASessionLeavesTagsAndNoNotes()
{
    JournalFixture journal;
    const auto counterpart = journal.addCounterpart(u"Ana"_s);
    const auto session = journal.addSessionDaysAgo(counterpart, 1);
    journal.addTag(session, u"launch"_s, u"🚀"_s);
    QVERIFY(journal.context().deleteObject(session).has_value());
    QCOMPARE(recordCount(journal.context(), {.entityName = "Note"}), 0);
    QCOMPARE(recordCount(journal.context(), {.entityName = "Tag"}), 1);
    QCOMPARE(recordCount(journal.context(), {.entityName = "Counterpart"}), 1);
}

void tst_Session::derivedTextsAreAnnounced()
{
    JournalFixture journal;
    const auto session = journal.context().insert<Session>();
    journal.settle();
    QSignalSpy announced(session.get(), &Session::derivedChanged);
    session->setMeetingSentiment(2);
    journal.context().processPendingChanges();
    QCOMPARE(announced.count(), 1);
    journal.defaults.emojiChanged();
    QCOMPARE(announced.count(), 2);
    const auto tag = journal.addTag(session, u"launch"_s, u"🚀"_s);
    journal.context().processPendingChanges();
    QCOMPARE(announced.count(), 3);
    tag->setEmoji(u"🎯"_s);
    journal.context().processPendingChanges();
    QCOMPARE(announced.count(), 4);
}

QTEST_GUILESS_MAIN(tst_Session)
#include "tst_Session.moc"
