#include "Model/JournalModel.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"
#include "support/FaultVfs.h"
#include "support/JournalFixture.h"
#include "support/RecordCount.h"

#include <QSignalSpy>
#include <QTest>

#include <stdexcept>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// As long as it lives, the disk takes nothing more.
class FullDisk
{
public:
    explicit FullDisk(FaultVfs &disk) : m_disk(disk)
    {
        m_disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
    }
    ~FullDisk() { m_disk.failNothing(); }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    FaultVfs &m_disk;
};

} // namespace

class tst_CoreDataInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savesEveryTwoMinutes();
    void noEditsCauseNoSave();
    void anEditCausesOneSave();
    void refusedCommitIsLoggedAndTheSaveGoesAhead();
    void failedSaveIsShownAndKeepsTheEdits();
    void failingAutosaveIsShownOnce();
    void noSecondAlertWhileOneIsOpen();
    void flagsBecomeTags();
    void flagOverrideNamesTheEmoji();
    void equalFlagsShareATag();
    void secondMigrationChangesNothing();
    void migrationCannotBeUndone();
    void eachFlagIsLookedUpOnce();
    void migrationTellsHowFarItIs();
    void migrationThatCannotBeSavedIsLeftToTheNextSave();
    void savesOfOtherContextsAppear();
    void aStoreThatCannotBeOpenedIsNotSaved();
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

void tst_CoreDataInterface::failedSaveIsShownAndKeepsTheEdits()
{
    FaultVfs disk;
    JournalFixture journal(utc(2026, 11, 20), disk.name());
    int shown = 0;
    QString message;
    journal.coreData().setPresentError([&](const Error &error) {
        ++shown;
        message = error.message;
    });
    QSignalSpy failing(&journal.coreData(), &CoreDataInterface::saveFailingChanged);
    const auto ana = journal.addCounterpart(u"Ana"_s);
    {
        const FullDisk full(disk);
        journal.coreData().save();
        journal.coreData().save();
    }
    QCOMPARE(shown, 2);
    QVERIFY2(message.contains(u"full"_s), qUtf8Printable(message));
    QVERIFY(journal.coreData().isSaveFailing());
    QVERIFY(journal.context().hasChanges());

    journal.coreData().save();
    QVERIFY(!journal.coreData().isSaveFailing());
    QVERIFY(!journal.context().hasChanges());
    QCOMPARE(failing.count(), 2);
    QCOMPARE(ana->name(), u"Ana"_s);
    QCOMPARE(journal.counterparts(), QList<std::shared_ptr<Counterpart>>{ana});
}

void tst_CoreDataInterface::failingAutosaveIsShownOnce()
{
    FaultVfs disk;
    JournalFixture journal(utc(2026, 11, 20), disk.name());
    int shown = 0;
    journal.coreData().setPresentError([&](const Error &) { ++shown; });
    journal.addCounterpart(u"Ana"_s);
    {
        const FullDisk full(disk);
        journal.coreData().handleTimer();
        journal.coreData().handleTimer();
        QCOMPARE(shown, 1);
        // Whoever asks for a save wants to know.
        journal.coreData().save();
        QCOMPARE(shown, 2);
    }
    journal.coreData().handleTimer();
    QVERIFY(!journal.context().hasChanges());
    journal.addCounterpart(u"Ben"_s);
    const FullDisk full(disk);
    journal.coreData().handleTimer();
    QCOMPARE(shown, 3);
}

void tst_CoreDataInterface::noSecondAlertWhileOneIsOpen()
{
    FaultVfs disk;
    JournalFixture journal(utc(2026, 11, 20), disk.name());
    int shown = 0;
    journal.coreData().setPresentError([&](const Error &) {
        ++shown;
        journal.coreData().save();
    });
    journal.addCounterpart(u"Ana"_s);
    const FullDisk full(disk);
    journal.coreData().save();
    QCOMPARE(shown, 1);
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
    QVERIFY(journal.coreData().migrateFlagsToTags());

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
    QVERIFY(journal.coreData().migrateFlagsToTags());
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
    QVERIFY(journal.coreData().migrateFlagsToTags());
    QCOMPARE(one->sortedTags(), two->sortedTags());
    QCOMPARE(recordCount(journal.context(), {.entityName = "Tag"}), 1);
}

void tst_CoreDataInterface::secondMigrationChangesNothing()
{
    JournalFixture journal;
    journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1)->setFlag(3);
    QVERIFY(journal.coreData().migrateFlagsToTags());
    QSignalSpy saved(&journal.context(), &ManagedObjectContext::didSave);
    QVERIFY(journal.coreData().migrateFlagsToTags());
    QCOMPARE(saved.count(), 0);
    QCOMPARE(recordCount(journal.context(), {.entityName = "Tag"}), 1);
}

void tst_CoreDataInterface::migrationCannotBeUndone()
{
    JournalFixture journal;
    journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1)->setFlag(3);
    journal.settle();
    QVERIFY(journal.coreData().migrateFlagsToTags());
    QVERIFY(!journal.context().undoManager()->canUndo());
}

/// A look-up that finds the tag takes a key all the same.
void tst_CoreDataInterface::eachFlagIsLookedUpOnce()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    QList<std::shared_ptr<Session>> sessions;
    for (int i = 0; i < 40; ++i) {
        sessions.append(journal.addSessionDaysAgo(ana, i + 1));
        sessions.last()->setFlag(qint16(1 + i % 2));
    }
    journal.settle();
    const auto before = journal.context().insert<Tag>();
    QVERIFY(journal.coreData().migrateFlagsToTags());
    const auto after = journal.context().insert<Tag>();
    QCOMPARE(after->objectID().key - before->objectID().key, 3);
}

void tst_CoreDataInterface::migrationTellsHowFarItIs()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    for (int i = 0; i < 200; ++i)
        journal.addSessionDaysAgo(ana, i + 1)->setFlag(1);
    QList<qsizetype> done;
    QVERIFY(journal.coreData().migrateFlagsToTags([&](qsizetype soFar, qsizetype total) {
        QCOMPARE(total, 200);
        done.append(soFar);
    }));
    QVERIFY(done.size() > 2);
    QCOMPARE(done.first(), 0);
    QVERIFY(std::is_sorted(done.begin(), done.end()));
    QVERIFY(done.last() < 200);
    done.clear();
    QVERIFY(journal.coreData().migrateFlagsToTags(
        [&](qsizetype soFar, qsizetype) { done.append(soFar); }));
    QCOMPARE(done.size(), 0);
}

void tst_CoreDataInterface::migrationThatCannotBeSavedIsLeftToTheNextSave()
{
    FaultVfs disk;
    JournalFixture journal(utc(2026, 11, 20), disk.name());
    int shown = 0;
    journal.coreData().setPresentError([&](const Error &) { ++shown; });
    const auto session = journal.addSessionDaysAgo(journal.addCounterpart(u"Ana"_s), 1);
    session->setFlag(2);
    journal.settle();
    {
        const FullDisk full(disk);
        const auto migrated = journal.coreData().migrateFlagsToTags();
        QVERIFY(!migrated);
        QVERIFY2(migrated.error().message.contains(u"full"_s),
                 qUtf8Printable(migrated.error().message));
        journal.coreData().handleTimer();
    }
    // Whoever called it tells the user, and nobody else tells it again.
    QCOMPARE(shown, 0);
    QVERIFY(journal.coreData().isSaveFailing());
    QCOMPARE(session->sortedTags().size(), 1);
    QVERIFY(journal.context().hasChanges());
    journal.coreData().handleTimer();
    QVERIFY(!journal.context().hasChanges());
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

void tst_CoreDataInterface::aStoreThatCannotBeOpenedIsNotSaved()
{
    const JournalFixture services;
    CoreDataInterface coreData(
        [&] {
            return std::make_unique<PersistentContainer>(
                u"Vum"_s, makeJournalModel(services.services),
                PersistentContainer::Options{.directory = u"/proc/nowhere"_s,
                                             .clock = &services.clock});
        },
        services.defaults);
    coreData.setStopProgram([](const QString &reason, const PersistentContainer &) {
        throw std::runtime_error(qPrintable(reason));
    });
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, coreData.viewContext());
    // While an alert tells of it, two minutes go by, and the user logs out.
    coreData.handleTimer();
    QVERIFY(coreData.saveChanges());
    QVERIFY(!coreData.isSaveFailing());
}

QTEST_GUILESS_MAIN(tst_CoreDataInterface)
#include "tst_CoreDataInterface.moc"
