#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_DerivedTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheTeammateOfAChangedSessionIsTold();
    void movingASessionTellsBothTeammates();
    void deletingASessionTellsItsTeammate();
    void typingANoteTellsNoTeammate();
    void countChangesAtTheMeetingsHour();
    void relativeDatesChangeAtMidnight();
    void nothingIsToldBeforeTheMoment();
    void recordsMayGoWhileOthersAreAsked();
};

void tst_DerivedTexts::onlyTheTeammateOfAChangedSessionIsTold()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto ben = journal.addCounterpart(u"Ben"_s);
    const auto session = journal.addSessionDaysAgo(ana, 2);
    journal.settle();
    QSignalSpy anaTold(ana.get(), &Counterpart::derivedChanged);
    QSignalSpy benTold(ben.get(), &Counterpart::derivedChanged);
    session->setPersonalSentiment(2);
    journal.context().processPendingChanges();
    QCOMPARE(anaTold.count(), 1);
    QCOMPARE(benTold.count(), 0);
}

void tst_DerivedTexts::movingASessionTellsBothTeammates()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto ben = journal.addCounterpart(u"Ben"_s);
    const auto session = journal.addSessionDaysAgo(ana, 2);
    journal.settle();
    QCOMPARE(ana->daysSinceLastSession(), 2);
    QSignalSpy anaTold(ana.get(), &Counterpart::derivedChanged);
    QSignalSpy benTold(ben.get(), &Counterpart::derivedChanged);
    session->setCounterpart(ben);
    journal.context().processPendingChanges();
    QCOMPARE(anaTold.count(), 1);
    QCOMPARE(benTold.count(), 1);
    QCOMPARE(ana->daysSinceLastSession(), -1);
    QCOMPARE(ben->daysSinceLastSession(), 2);
}

void tst_DerivedTexts::deletingASessionTellsItsTeammate()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto session = journal.addSessionDaysAgo(ana, 2);
    journal.settle();
    QCOMPARE(ana->daysSinceLastSession(), 2);
    QSignalSpy told(ana.get(), &Counterpart::derivedChanged);
    QVERIFY(journal.context().deleteObject(session).has_value());
    journal.context().processPendingChanges();
    QCOMPARE(told.count(), 1);
    QCOMPARE(ana->daysSinceLastSession(), -1);
}

void tst_DerivedTexts::typingANoteTellsNoTeammate()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto session = journal.addSessionDaysAgo(ana, 2);
    journal.settle();
    QSignalSpy told(ana.get(), &Counterpart::derivedChanged);
    journal.write(session, NoteIdentifier::wins, u"typed"_s);
    journal.context().processPendingChanges();
    QCOMPARE(told.count(), 0);
}

void tst_DerivedTexts::countChangesAtTheMeetingsHour()
{
    JournalFixture journal(utc(2026, 11, 20, 12));
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSession(ana, utc(2026, 11, 18, 15));
    journal.settle();
    QCOMPARE(ana->daysSinceLastSession(), 1);
    QCOMPARE(journal.derivedTexts.nextMoment(), utc(2026, 11, 20, 15));
    QSignalSpy told(ana.get(), &Counterpart::derivedChanged);
    journal.clock.setNow(utc(2026, 11, 20, 15));
    journal.derivedTexts.checkClock();
    QCOMPARE(told.count(), 1);
    QCOMPARE(ana->daysSinceLastSession(), 2);
}

void tst_DerivedTexts::relativeDatesChangeAtMidnight()
{
    JournalFixture journal(utc(2026, 11, 20, 16));
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSession(ana, utc(2026, 11, 20, 15));
    journal.settle();
    QCOMPARE(journal.derivedTexts.nextMoment(), utc(2026, 11, 21, 0));
}

void tst_DerivedTexts::nothingIsToldBeforeTheMoment()
{
    JournalFixture journal(utc(2026, 11, 20, 12));
    const auto ana = journal.addCounterpart(u"Ana"_s);
    journal.addSession(ana, utc(2026, 11, 18, 15));
    journal.settle();
    QSignalSpy told(ana.get(), &Counterpart::derivedChanged);
    journal.clock.setNow(utc(2026, 11, 20, 14, 59));
    journal.derivedTexts.checkClock();
    QCOMPARE(told.count(), 0);
}

void tst_DerivedTexts::recordsMayGoWhileOthersAreAsked()
{
    JournalFixture journal;
    // Nobody holds these: they live for their unwritten edits, and the first question writes those.
    for (int i = 0; i < 200; ++i)
        journal.addSessionDaysAgo(journal.addCounterpart(QString::number(i)), i);
    journal.context().processPendingChanges();
    QCOMPARE(journal.counterparts().size(), 200);
}

QTEST_GUILESS_MAIN(tst_DerivedTexts)
#include "tst_DerivedTexts.moc"
