#include "Store/Rows/LeftoverRows.h"

#include "Store/Results/FetchedResultsController.h"
#include "support/FaultVfs.h"
#include "TestJournal.h"

#include <QDir>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int many = int(LeftoverRows::fewestOwners);
constexpr qint64 manyParts = qint64(many) * Item::partCount;

const FetchRequest allParts{.entityName = "Part"};

} // namespace

/// What a deletion of very many records leaves in the store for a moment is never seen, goes by
/// itself and comes back with undo.
class tst_LeftoverRows : public QObject
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

    void staysInTheStoreForAMoment()
    {
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(m_store->storedCount("owner"), 1);
        QCOMPARE(m_store->storedCount("item"), 2);
        QCOMPARE(m_store->storedCount("part"), manyParts + 2 * Item::partCount);
        QTRY_COMPARE(m_store->storedCount("part"), qint64(2 * Item::partCount));
        QVERIFY(!hasTable());
    }
    void fewerAreDeletedAtOnce()
    {
        const auto items = m_owner->itemIDs();
        QVERIFY(context().deleteObject(context().object(items.front())));
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(m_store->storedCount("part"), qint64(2 * Item::partCount));
        QVERIFY(!hasTable());
    }

    void isNeverSeen()
    {
        const ObjectID item = m_part->item()->objectID();
        const ObjectID neverRead = lastPartOf(m_owner);
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(context().count(allParts).value(), qint64(2 * Item::partCount));
        QCOMPARE(context().fetchKeys(allParts).value().size(), size_t(2 * Item::partCount));
        const auto predicate = Predicate::fixed(u"item == %@ OR number == %d", {item, qint64(0)});
        QCOMPARE(context().count({.entityName = "Part", .predicate = predicate}).value(),
                 qint64(2));
        QVERIFY(!context().object(neverRead));
        QVERIFY(!context().object(m_part->objectID()));
        QCOMPARE(m_store->storedCount("part"), manyParts + 2 * Item::partCount);
    }
    void recordsOfNobodyAreSeenAllTheWhile()
    {
        const auto alone = context().insert<Part>();
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(context().count(allParts).value(), qint64(2 * Item::partCount + 1));
        QCOMPARE(context().object(alone->objectID()), alone);
    }
    void anotherContextDoesNotSeeItEither()
    {
        QVERIFY(context().deleteObject(m_owner));
        const auto other = m_store->container->newBackgroundContext();
        QVERIFY(other.has_value());
        QCOMPARE((*other)->count(allParts).value(), qint64(2 * Item::partCount));
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
    void isToldWholesale()
    {
        FetchedResultsController parts(context(), allParts);
        QVERIFY(parts.performFetch());
        QSignalSpy told(&context(), &ManagedObjectContext::objectsDidChange);
        QVERIFY(context().deleteObject(m_owner));
        QTRY_COMPARE(parts.count(), 2 * Item::partCount);
        QCOMPARE(told.size(), 1);
        const auto changes = told.first().first().value<ChangeSet>();
        QVERIFY(changes.isWholesale(partEntity));
        QVERIFY(!changes.isWholesale(itemEntity));
        QCOMPARE(changes.deleted.size(), size_t(1 + many));
    }

    void comesBackWithUndo_data()
    {
        QTest::addColumn<bool>("late");
        QTest::newRow("while it is still there") << false;
        QTest::newRow("once it is gone") << true;
    }
    void comesBackWithUndo()
    {
        QFETCH(bool, late);
        const QByteArray before = dumpStore(m_store->container->storeFile());
        QVERIFY(context().deleteObject(m_owner));
        if (late)
            QTRY_COMPARE(m_store->storedCount("part"), qint64(2 * Item::partCount));
        m_store->undo().undo();
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
        QCOMPARE(context().object<Part>(m_part->objectID())->content(), u"kept for undo"_s);
        m_store->undo().redo();
        QCOMPARE(m_store->storedCount("part"), manyParts + 2 * Item::partCount);
        QCOMPARE(context().count(allParts).value(), qint64(2 * Item::partCount));
        m_store->undo().undo();
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
    }
    void severalDeletionsFollowEachOther()
    {
        const auto third = m_store->addOwner(u"Cem"_s, many + 300);
        QVERIFY(context().save());
        endTurn();
        const QByteArray before = dumpStore(m_store->container->storeFile());
        QVERIFY(context().deleteObject(m_owner));
        endTurn();
        QVERIFY(context().deleteObject(third));
        QCOMPARE(context().count(allParts).value(), qint64(2 * Item::partCount));
        QTRY_COMPARE(m_store->storedCount("part"), qint64(2 * Item::partCount));
        QVERIFY(!hasTable());
        m_store->undo().undo();
        m_store->undo().undo();
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
    }

    void goesWhenTheStoreIsClosed()
    {
        QVERIFY(context().deleteObject(m_owner));
        const QString file = m_store->container->storeFile();
        forgetObjects();
        m_store->close();
        QCOMPARE(dumpStore(file).count("part|"), qsizetype(2 * Item::partCount));
    }
    void goesBeforeAStoreIsUsedThatAKilledProgramLeft()
    {
        QVERIFY(context().deleteObject(m_owner));
        QVERIFY(hasTable());
        // What the disk holds of a program that ends here.
        TestStore killed;
        QVERIFY(QDir().mkpath(killed.folder.filePath(u"data"_s)));
        const QString file = m_store->container->storeFile();
        for (const QString &companion : {QString(), u"-wal"_s})
            QVERIFY(QFile::copy(file + companion,
                                killed.folder.filePath(u"data/Test.sqlite"_s) + companion));
        QVERIFY(killed.open());
        QCOMPARE(killed.storedCount("part"), qint64(2 * Item::partCount));
        QCOMPARE(killed.storedCount("item"), 2);
        QCOMPARE(killed.storedCount("sqlite_schema WHERE name = 'leftover'"), 0);
        QCOMPARE(killed.storedCount("pragma_foreign_key_check"), 0);
    }

    void stayingLongerChangesNothing()
    {
        QVERIFY(context().deleteObject(m_owner));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"could not be finished yet"_s));
        m_faults->failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        QVERIFY(!context().finishDeletions());
        QTRY_VERIFY(m_faults->failures() > 2);
        QCOMPARE(context().count(allParts).value(), qint64(2 * Item::partCount));
        m_faults->failNothing();
        QTRY_COMPARE(m_store->storedCount("part"), qint64(2 * Item::partCount));
        m_store->undo().undo();
        QCOMPARE(m_store->storedCount("part"), manyParts + 2 * Item::partCount);
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
        QVERIFY(!hasTable());
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
        QVERIFY(context().deleteObject(m_owner));
        QTRY_COMPARE(m_store->storedCount("part"), qint64(2 * Item::partCount));
    }
    void whatWasAddedMeanwhileKeepsItsOwner()
    {
        const auto item = std::static_pointer_cast<Item>(m_part->item());
        const QByteArray owner = QByteArray::number(m_owner->objectID().key);
        item->setOnDeletion([&] {
            QVERIFY(m_store->executeElsewhere("INSERT INTO item (id, owner) VALUES (999999, "
                                              + owner + ")"));
        });
        QVERIFY(!context().deleteObject(m_owner));
        item->setOnDeletion({});
        QCOMPARE(m_store->storedCount("owner"), 2);
        QCOMPARE(m_store->storedCount("pragma_foreign_key_check"), 0);
        QVERIFY(context().deleteObject(m_owner));
        QCOMPARE(m_store->storedCount("item"), 2);
    }

private:
    ManagedObjectContext &context() { return m_store->context(); }
    std::shared_ptr<Part> firstPartOf(const std::shared_ptr<Owner> &owner)
    {
        return context().object<Item>(owner->itemIDs().front())->parts().first();
    }
    ObjectID lastPartOf(const std::shared_ptr<Owner> &owner)
    {
        return context()
            .object<Item>(owner->itemIDs().back())
            ->relatedIDs(Item::partsProperty)
            .back();
    }
    void forgetObjects()
    {
        m_owner.reset();
        m_kept.reset();
        m_part.reset();
    }
    bool hasTable() { return m_store->storedCount("sqlite_schema WHERE name = 'leftover'") != 0; }

    std::unique_ptr<FaultVfs> m_faults;
    std::unique_ptr<TestStore> m_store;
    std::shared_ptr<Owner> m_owner;
    std::shared_ptr<Owner> m_kept;
    std::shared_ptr<Part> m_part;
};

QTEST_GUILESS_MAIN(tst_LeftoverRows)

#include "tst_LeftoverRows.moc"
