#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "support/JournalFixture.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_Counterpart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutSessions();
    void mostRecentSessionHasTheLatestDate();
    void sessionsWithoutADateAreNoMostRecentSession();
    void datedSessionComesBeforeOnesWithoutDate();
    void daysAreCompleteElapsedDays();
    void overdueOnlyAboveTheInterval();
    void summaryFollowsSettings();
    void tagSummaryOfTheMostRecentSession();
    void filterByTwoTagsWantsBoth();
    void searchIgnoresCaseAndAccents_data();
    void searchIgnoresCaseAndAccents();
    void emptySearchTextMatchesSessionsWithAnyText();
    void keyValueAccess();
};

void tst_Counterpart::withoutSessions()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    QVERIFY(!ana->mostRecentSession());
    QCOMPARE(ana->daysSinceLastSession(), -1);
    QCOMPARE(ana->recentSessionSummary(), u"No sessions"_s);
    QCOMPARE(ana->recentSessionTagSummary(), u""_s);
    QVERIFY(!ana->isOverdue());
}

void tst_Counterpart::mostRecentSessionHasTheLatestDate()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSessionDaysAgo(ana, 20);
    const auto latest = journal.addSessionDaysAgo(ana, 3);
    journal.addSessionDaysAgo(ana, 10);
    QCOMPARE(ana->mostRecentSession(), latest);
    // Asked again after a change, within the same turn's notification.
    const auto newer = journal.addSessionDaysAgo(ana, 1);
    journal.context().processPendingChanges();
    QCOMPARE(ana->mostRecentSession(), newer);
    QVERIFY(journal.context().deleteObject(newer).has_value());
    journal.context().processPendingChanges();
    QCOMPARE(ana->mostRecentSession(), latest);
}

void tst_Counterpart::sessionsWithoutADateAreNoMostRecentSession()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSessionDaysAgo(ana, 3)->setDate({});
    QVERIFY(!ana->mostRecentSession());
    QCOMPARE(ana->daysSinceLastSession(), -1);
    QCOMPARE(ana->recentSessionSummary(), u"No sessions"_s);
}

void tst_Counterpart::datedSessionComesBeforeOnesWithoutDate()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSessionDaysAgo(ana, 3)->setDate({});
    const auto dated = journal.addSessionDaysAgo(ana, 400);
    QCOMPARE(ana->mostRecentSession(), dated);
}

void tst_Counterpart::daysAreCompleteElapsedDays()
{
    JournalFixture journal(utc(2026, 11, 20, 12));
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto session = journal.addSession(ana, utc(2026, 11, 18, 12, 1));
    QCOMPARE(ana->daysSinceLastSession(), 1);
    journal.clock.setNow(utc(2026, 11, 20, 12, 1));
    QCOMPARE(ana->daysSinceLastSession(), 2);
    session->setDate(utc(2026, 11, 25));
    journal.context().processPendingChanges();
    QCOMPARE(ana->daysSinceLastSession(), -4);
}

void tst_Counterpart::overdueOnlyAboveTheInterval()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto session = journal.addSessionDaysAgo(ana, 14);
    QVERIFY(!ana->isOverdue());
    QCOMPARE(ana->recentSessionSummary(), session->sessionSummary());
    journal.clock.advance(secondsPerDay);
    QVERIFY(ana->isOverdue());
    QCOMPARE(ana->recentSessionSummary(), u"⚠\uFE0F "_s + session->sessionSummary());
}

void tst_Counterpart::summaryFollowsSettings()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSessionDaysAgo(ana, 10);
    QVERIFY(!ana->isOverdue());
    journal.defaults.setCounterpartStalenessInterval(9);
    QVERIFY(ana->isOverdue());
}

void tst_Counterpart::tagSummaryOfTheMostRecentSession()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addTag(journal.addSessionDaysAgo(ana, 10), u"old"_s, u"🪵"_s);
    const auto recent = journal.addSessionDaysAgo(ana, 1);
    journal.addTag(recent, u"b"_s, u"🚀"_s);
    journal.addTag(recent, u"a"_s, u"🎯"_s);
    journal.context().processPendingChanges();
    QCOMPARE(ana->recentSessionTagSummary(), u"🎯🚀"_s);
}

void tst_Counterpart::filterByTwoTagsWantsBoth()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto first = journal.addSessionDaysAgo(ana, 1);
    const auto both = journal.addSessionDaysAgo(ana, 2);
    const auto second = journal.addSessionDaysAgo(ana, 3);
    const auto a = journal.addTag(first, u"a"_s, u"🎯"_s);
    const auto b = journal.addTag(second, u"b"_s, u"🚀"_s);
    both->addTag(*a);
    both->addTag(*b);
    const auto controller = ana->sessionsResultController({a, b});
    QVERIFY(controller->performFetch().has_value());
    QCOMPARE(*controller->fetchedObjects(), QList<std::shared_ptr<ManagedObject>>{both});
}

void tst_Counterpart::searchIgnoresCaseAndAccents_data()
{
    QTest::addColumn<QString>("note");
    QTest::addColumn<QString>("search");
    QTest::addColumn<bool>("found");
    QTest::newRow("accent in the note") << u"We met in a Café"_s << u"cafe"_s << true;
    QTest::newRow("accent in the search") << u"we met in a cafe"_s << u"CAFÉ"_s << true;
    QTest::newRow("sharp s") << u"Die Straße"_s << u"STRASSE"_s << true;
    QTest::newRow("part of a word") << u"promotion"_s << u"motion"_s << true;
    QTest::newRow("another word") << u"promotion"_s << u"demotion"_s << false;
    QTest::newRow("percent is a percent sign") << u"100 percent"_s << u"100%"_s << false;
    QTest::newRow("quote is a quote") << u"it's fine"_s << u"'s f"_s << true;
}

void tst_Counterpart::searchIgnoresCaseAndAccents()
{
    QFETCH(QString, note);
    QFETCH(QString, search);
    QFETCH(bool, found);
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.write(journal.addSessionDaysAgo(ana, 1), NoteIdentifier::wins, note);
    const auto controller = ana->sessionsResultController({}, search);
    QVERIFY(controller->performFetch().has_value());
    QCOMPARE(controller->count(), found ? 1 : 0);
}

void tst_Counterpart::emptySearchTextMatchesSessionsWithAnyText()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSessionDaysAgo(ana, 1);
    journal.write(journal.addSessionDaysAgo(ana, 2), NoteIdentifier::wins, u"something"_s);
    const auto controller = ana->sessionsResultController({}, u""_s);
    QVERIFY(controller->performFetch().has_value());
    QCOMPARE(controller->count(), 1);
}

void tst_Counterpart::keyValueAccess()
{
    JournalFixture journal;
    const auto ana = journal.context().insert<Counterpart>();
    QVERIFY(ana->name().isNull());
    QVERIFY(ana->setProperty("name", u"Ana"_s));
    QCOMPARE(ana->name(), u"Ana"_s);
    QVERIFY(ana->setProperty("email", u"ana@example.org"_s));
    QCOMPARE(ana->property("email").toString(), u"ana@example.org"_s);
    QCOMPARE(ana->property("daysSinceLastSession").toInt(), -1);
    QVERIFY(ana->setProperty("lastUpdate", QVariant::fromValue(OptionalDate(utc(2026, 1, 1)))));
    QCOMPARE(ana->lastUpdate().value(), utc(2026, 1, 1));
}

QTEST_GUILESS_MAIN(tst_Counterpart)
#include "tst_Counterpart.moc"
