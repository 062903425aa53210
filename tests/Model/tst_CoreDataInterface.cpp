#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/UndoManager.h"
#include "support/JournalFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_CoreDataInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savesEveryTwoMinutes();
    void noEditsCauseNoSave();
    void anEditCausesOneSave();
    void refusedCommitIsLoggedAndTheSaveGoesAhead();
    void flagsBecomeTags();
    void flagOverrideNamesTheEmoji();
    void equalFlagsShareATag();
    void secondMigrationChangesNothing();
    void migrationCannotBeUndone();
    void savesOfOtherContextsAppear();
};

void tst_CoreDataInterface::savesEveryTwoMinutes()
{
    JournalFixture journal;
    QCOMPARE(journal.coreData().saveInterval(), 120.0);
    const auto *timer = journal.coreData().findChild<QTimer *>();
    QVERIFY(timer);
    QVERIFY(timer->isActive());
    QVERIFY(!timer->isSingleShot());
    QCOMPARE(timer->interval(), 120'000);
}

void tst_CoreDataInterface::noEditsCauseNoSave()
{
    JournalFixture journal;
    QSignalSpy saved(&journal.context(), &ManagedObjectContext::didSave);
    journal.coreData().handleTimer();
    QCOMPARE(saved.count(), 0);
}

void tst_CoreDataInterface::anEditCausesOneSave()
{
    JournalFixture journal;
    QSignalSpy saved(&journal.context(), &ManagedObjectContext::didSave);
    journal.addCounterpart(u"Ana"_s);
    journal.coreData().handleTimer();
    journal.coreData().handleTimer();
    QCOMPARE(saved.count(), 1);
    QVERIFY(!journal.context().hasChanges());
}

void tst_CoreDataInterface::refusedCommitIsLoggedAndTheSaveGoesAhead()
{
    JournalFixture journal;
    journal.coreData().setCommitEditing([] { return false; });
    journal.addCounterpart(u"Ana"_s);
    QTest::ignoreMessage(QtWarningMsg, "CoreDataInterface unable to commit editing before saving");
    journal.coreData().save();
    QVERIFY(!journal.context().hasChanges());
}

void tst_CoreDataInterface::flagsBecomeTags()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto second = journal.addSessionDaysAgo(ana, 1);
    second->setFlag(2);
    const auto seventh = journal.addSessionDaysAgo(ana, 2);
    seventh->setFlag(7);
    const auto unflagged = journal.addSessionDaysAgo(ana, 3);
    journal.coreData().migrateFlagsToTags();

    QCOMPARE(second->sortedTags().size(), 1);
    QCOMPARE(second->sortedTags().first()->name(), u"Flag 2"_s);
    QCOMPARE(second->sortedTags().first()->emoji(), u"🚩"_s);
    QCOMPARE(seventh->sortedTags().size(), 1);
    QCOMPARE(seventh->sortedTags().first()->name(), u"Flag 7"_s);
    QVERIFY(seventh->sortedTags().first()->emoji().isNull());
    QVERIFY(unflagged->sortedTags().isEmpty());
    QCOMPARE(second->flag(), qint16(0));
    QCOMPARE(seventh->flag(), qint16(0));
    QVERIFY(!journal.context().hasChanges());
}

void tst_CoreDataInterface::flagOverrideNamesTheEmoji()
{
    JournalFixture journal;
    journal.defaults.setEmojiOverride(u"flagKey2"_s, u"🎏"_s);
    const auto session = journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1);
    session->setFlag(2);
    journal.coreData().migrateFlagsToTags();
    QCOMPARE(session->sortedTags().first()->emoji(), u"🎏"_s);
}

void tst_CoreDataInterface::equalFlagsShareATag()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto one = journal.addSessionDaysAgo(ana, 1);
    const auto two = journal.addSessionDaysAgo(ana, 2);
    one->setFlag(4);
    two->setFlag(4);
    journal.coreData().migrateFlagsToTags();
    QCOMPARE(one->sortedTags(), two->sortedTags());
    QCOMPARE(journal.context().count({.entityName = "Tag"}).value(), 1);
}

void tst_CoreDataInterface::secondMigrationChangesNothing()
{
    JournalFixture journal;
    journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1)->setFlag(3);
    journal.coreData().migrateFlagsToTags();
    QSignalSpy saved(&journal.context(), &ManagedObjectContext::didSave);
    journal.coreData().migrateFlagsToTags();
    QCOMPARE(saved.count(), 0);
    QCOMPARE(journal.context().count({.entityName = "Tag"}).value(), 1);
}

void tst_CoreDataInterface::migrationCannotBeUndone()
{
    JournalFixture journal;
    journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1)->setFlag(3);
    journal.settle();
    journal.coreData().migrateFlagsToTags();
    QVERIFY(!journal.context().undoManager()->canUndo());
}

void tst_CoreDataInterface::savesOfOtherContextsAppear()
{
    JournalFixture journal;
    auto other = journal.coreData().persistentContainer().newBackgroundContext();
    QVERIFY(other.has_value());
    (*other)->insert<Counterpart>()->setName(u"From elsewhere"_s);
    QSignalSpy told(&journal.context(), &ManagedObjectContext::objectsDidChange);
    QVERIFY((*other)->save().has_value());
    QTRY_VERIFY(told.count() > 0);
    const auto all = journal.counterparts();
    QCOMPARE(all.size(), 1);
    QCOMPARE(all.first()->name(), u"From elsewhere"_s);
}

QTEST_GUILESS_MAIN(tst_CoreDataInterface)
#include "tst_CoreDataInterface.moc"
