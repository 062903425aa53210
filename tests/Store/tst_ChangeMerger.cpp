#include "Store/Objects/PendingChanges.h"
#include "Store/Results/FetchedResultsController.h"
#include "Store/Rows/KeyRanges.h"
#include "TestJournal.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

/// Taking over very many changes, which are told as bulk changes.
class tst_ChangeMerger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_store = std::make_unique<TestStore>();
        QVERIFY(m_store->open());
        connect(m_store->container.get(), &PersistentContainer::contextDidSave, this,
                [this](ManagedObjectContext *context, const ChangeSet &changes) {
                    if (context != &m_store->context())
                        m_store->context().mergeChanges(changes);
                });
    }
    void cleanup()
    {
        m_store.reset();
        QCOMPARE(liveObjectCount(), 0);
    }

    void manyInsertionsAreABulkChange()
    {
        const auto context = insertMany(nullptr);
        QSignalSpy told(&m_store->context(), &ManagedObjectContext::objectsDidChange);
        QVERIFY(context->save());
        QTRY_COMPARE(told.size(), 1);
        const auto changes = told.first().first().value<ChangeSet>();
        QVERIFY(changes.isBulkChange(itemEntity));
        QVERIFY(changes.isBulkChange(partEntity));
        QVERIFY(!changes.isBulkChange(labelEntity));
        QVERIFY(changes.inserted.empty());
        QVERIFY(!m_store->context().hasChanges());
    }

    void liveResultsTakeThemIn()
    {
        FetchedResultsController items(m_store->context(), {.entityName = "Item"});
        QVERIFY(items.performFetch());
        FetchedResultsController labels(m_store->context(), {.entityName = "Label"});
        QVERIFY(labels.performFetch());
        QSignalSpy untouched(&labels, &FetchedResultsController::contentDidChange);
        const auto context = insertMany(nullptr);
        QVERIFY(context->save());
        QTRY_COMPARE(items.count(), many);
        QCOMPARE(untouched.size(), 0);
    }

    void relationshipsThatWereReadAreReadAnew()
    {
        const auto owner = m_store->addOwner(u"Ann"_s, 1);
        QVERIFY(m_store->context().save());
        QCOMPARE(owner->itemIDs().size(), size_t(1));
        QSignalSpy items(owner.get(), &Owner::itemsChanged);
        const auto context = insertMany(owner.get());
        QVERIFY(context->save());
        QCOMPARE(items.size(), 1);
        QCOMPARE(owner->itemIDs().size(), size_t(1 + many));
    }

    void recordsThatVanishedBecomeDeleted()
    {
        auto context = insertMany(nullptr);
        const KeyRanges keys = context->insertedKeys();
        QVERIFY(context->save());
        context.reset();
        FetchedResultsController items(m_store->context(), {.entityName = "Item"});
        QVERIFY(items.performFetch());
        const auto shown = items.objectAt(3);
        const auto mine = m_store->addItem(nullptr);
        QVERIFY(m_store->context().save());
        QSignalSpy deleted(shown.get(), &ManagedObject::deleted);

        context = std::move(*m_store->container->newBackgroundContext());
        QVERIFY(context->deleteInserted(keys, [](double) { return true; }));
        QVERIFY(context->save());
        QCOMPARE(deleted.size(), 1);
        QVERIFY(shown->isDeleted());
        QVERIFY(!mine->isDeleted());
        QTRY_COMPARE(items.count(), 1);
        QCOMPARE(items.objectAt(0), mine);
    }

    void recordsThatWereNeverWrittenStay()
    {
        auto context = insertMany(nullptr);
        const KeyRanges keys = context->insertedKeys();
        QVERIFY(context->save());
        const auto fresh = m_store->context().insert<Label>();
        fresh->setName(u"red"_s);
        QVERIFY(context->deleteInserted(keys, [](double) { return true; }));
        QVERIFY(context->save());
        QVERIFY(!fresh->isDeleted());
        context.reset();
        QVERIFY(m_store->context().save());
        QCOMPARE(m_store->storedCount("label WHERE name = 'red'"), 1);
    }

private:
    static constexpr int many = int(PendingChanges::bulkThreshold) + 1;

    std::unique_ptr<ManagedObjectContext> insertMany(const Owner *owner)
    {
        auto context = std::move(*m_store->container->newBackgroundContext());
        const auto there = owner ? context->object(owner->objectID()) : nullptr;
        for (int i = 0; i < many; ++i)
            context->insert<Item>()->setOwner(there);
        return context;
    }

    std::unique_ptr<TestStore> m_store;
};

QTEST_GUILESS_MAIN(tst_ChangeMerger)

#include "tst_ChangeMerger.moc"
