#include "Store/Objects/PendingChanges.h"
#include "Store/Results/FetchedResultsController.h"
#include "support/FaultVfs.h"
#include "TestJournal.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int many = int(PendingChanges::bulkThreshold) / Item::partCount + 1;

const FetchRequest allParts{.entityName = "Part"};

} // namespace

/// Deleting so many records that nobody hears of each.
class tst_LargeDeletion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_faults = std::make_unique<FaultVfs>();
        m_store = std::make_unique<TestStore>(m_faults->name());
        QVERIFY(m_store->open());
        m_owner = m_store->addOwner(u"Ann"_s, many);
        m_kept = m_store->addOwner(u"Bea"_s, 2);
        m_part = firstPartOf(m_owner);
        m_part->setContent(u"kept for undo"_s);
        QVERIFY(context().save());
        endTurn();
    }
    void cleanup()
    {
        m_owner.reset();
        m_kept.reset();
        m_part.reset();
        m_store.reset();
        QCOMPARE(liveObjectCount(), 0);
    }

    void takesWhatCascadesAtOnce()
    {
        const auto alone = context().insert<Part>();
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(m_store->storedCount("owner"), 1);
        QCOMPARE(m_store->storedCount("item"), 2);
        QCOMPARE(m_store->storedCount("part"), 2 * Item::partCount + 1);
        QCOMPARE(context().object(alone->objectID()), alone);
        QCOMPARE(m_store->storedCount("pragma_foreign_key_check"), 0);
    }
    void takesRecordsThatAreAlsoNamedThemselves()
    {
        const QByteArray before = dumpStore(m_store->container->storeFile());
        const auto item = context().object(m_part->item()->objectID());
        QVERIFY(context().deleteObjects({m_part, m_owner, item, firstPartOf(m_kept)}));
        QCOMPARE(m_store->storedCount("part"), 2 * Item::partCount - 1);
        m_store->undo().undo();
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
    }

    void liveObjectsAreDeletedWithTheirOwner()
    {
        // One whose values were read, and one that is not more than a key yet.
        const auto faults = context().fetch<Part>(
            {.entityName = "Part",
             .predicate = Predicate::fixed(u"item == %@", {m_owner->itemIDs().back()})});
        const auto fault = faults->first();
        const auto survivor = firstPartOf(m_kept);
        QSignalSpy partDeleted(m_part.get(), &ManagedObject::deleted);
        QSignalSpy faultDeleted(fault.get(), &ManagedObject::deleted);
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(partDeleted.size(), 1);
        QCOMPARE(faultDeleted.size(), 1);
        QVERIFY(m_part->isDeleted() && fault->isDeleted() && !survivor->isDeleted());
        QCOMPARE(m_part->content(), u"kept for undo"_s);
    }
    void isABulkChange()
    {
        FetchedResultsController parts(context(), allParts);
        QVERIFY(parts.performFetch());
        QSignalSpy told(&context(), &ManagedObjectContext::objectsDidChange);
        QVERIFY(context().deleteObject(m_owner));
        QTRY_COMPARE(parts.count(), 2 * Item::partCount);
        QCOMPARE(told.size(), 1);
        const auto changes = told.first().first().value<ChangeSet>();
        QVERIFY(changes.isBulkChange(partEntity));
        QVERIFY(!changes.isBulkChange(itemEntity));
        QCOMPARE(changes.deleted.size(), size_t(1 + many));
    }

    void comesBackWithUndo()
    {
        const QByteArray before = dumpStore(m_store->container->storeFile());
        const ObjectID item = m_part->item()->objectID();
        FetchedResultsController parts(context(), allParts);
        QVERIFY(parts.performFetch());
        const int count = parts.count();
        QVERIFY(context().deleteObject(m_owner));
        QTRY_COMPARE(parts.count(), 2 * Item::partCount);
        for (int round = 0; round < 2; ++round) {
            m_store->undo().undo();
            QCOMPARE(dumpStore(m_store->container->storeFile()), before);
            QCOMPARE(context().object<Part>(m_part->objectID())->content(), u"kept for undo"_s);
            QCOMPARE(context().object<Item>(item)->parts().size(), Item::partCount);
            QTRY_COMPARE(parts.count(), count);
            m_store->undo().redo();
            QCOMPARE(m_store->storedCount("part"), 2 * Item::partCount);
            QTRY_COMPARE(parts.count(), 2 * Item::partCount);
        }
    }

    void aDeletionThatFailsLeavesNothing_data()
    {
        QTest::addColumn<int>("write");
        for (const int write : {1, 2, 5, 20})
            QTest::addRow("write %d", write) << write;
    }
    void aDeletionThatFailsLeavesNothing()
    {
        QFETCH(int, write);
        const QByteArray before = dumpStore(m_store->container->storeFile());
        m_faults->failAt(write, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::Once);
        QVERIFY(!context().deleteObject(m_owner));
        QCOMPARE(m_faults->failures(), 1);
        m_faults->failNothing();
        QVERIFY(!m_owner->isDeleted() && !m_part->isDeleted());
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(m_store->storedCount("part"), 2 * Item::partCount);
    }

private:
    ManagedObjectContext &context() { return m_store->context(); }
    std::shared_ptr<Part> firstPartOf(const std::shared_ptr<Owner> &owner)
    {
        return context().object<Item>(owner->itemIDs().front())->parts().first();
    }

    std::unique_ptr<FaultVfs> m_faults;
    std::unique_ptr<TestStore> m_store;
    std::shared_ptr<Owner> m_owner;
    std::shared_ptr<Owner> m_kept;
    std::shared_ptr<Part> m_part;
};

QTEST_GUILESS_MAIN(tst_LargeDeletion)

#include "tst_LargeDeletion.moc"
