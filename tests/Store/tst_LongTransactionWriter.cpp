#include "TestJournal.h"

#include "Store/File/Connection.h"
#include "Store/File/Transaction.h"
#include "support/FaultVfs.h"
#include "support/RecordCount.h"

#include <QSignalSpy>
#include <QTest>

#include <thread>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_LongTransactionWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void insertsOnAnotherThread();
    void keepsMemoryFlat();
    void leavesNothingWhenDropped();
    void readsItsOwnRows();
    void deletesWhatItInserted();
    void linksToExistingRecords();
    void dropsLinksToVanishedRecords();
    void sharesOneSequenceOfIds();
    void keepsTheEditsOfTheMainContext();
    void failsWhileSomebodyElseWrites();
    void tellsWhenItLostEverything();
    void savesMoreThanOnce();

private:
    std::unique_ptr<ManagedObjectContext> background()
    {
        auto made = m_store->container->newBackgroundContext();
        return made ? std::move(*made) : nullptr;
    }
    /// Merges what others save, as the program does.
    void followSaves()
    {
        connect(m_store->container.get(), &PersistentContainer::contextDidSave, this,
                [this](ManagedObjectContext *context, const ChangeSet &changes) {
                    if (context != &m_store->context())
                        m_store->context().mergeChanges(changes);
                });
    }

    std::unique_ptr<TestStore> m_store;
};

void tst_LongTransactionWriter::init()
{
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
}

void tst_LongTransactionWriter::cleanup()
{
    m_store.reset();
    QCOMPARE(liveObjectCount(), 0);
}

void tst_LongTransactionWriter::insertsOnAnotherThread()
{
    followSaves();
    auto setup = std::make_unique<UndoManager::Suspension>(m_store->undo());
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    QVERIFY(m_store->context().save());
    QCOMPARE(owner->itemIDs().size(), size_t(1));
    endTurn();
    setup.reset();
    QSignalSpy items(owner.get(), &Owner::itemsChanged);
    QSignalSpy told(&m_store->context(), &ManagedObjectContext::objectsDidChange);
    const ObjectID ownerID = owner->objectID();

    auto context = background();
    QVERIFY(context);
    bool saved = false;
    std::thread thread([&] {
        for (int i = 0; i < 700; ++i) {
            const auto item = context->insert<Item>();
            item->setOwner(context->object(ownerID));
            item->setDate(Date{double(i)});
            item->parts().first()->setContent(QString::number(i));
        }
        saved = context->save().has_value();
        context.reset();
    });
    thread.join();
    QVERIFY(saved);
    QTRY_COMPARE(told.size(), 1);
    QCOMPARE(items.size(), 1);
    QCOMPARE(owner->itemIDs().size(), size_t(701));
    const auto last = m_store->context().object<Item>(owner->itemIDs().back());
    QCOMPARE(last->date(), OptionalDate(Date{699}));
    QCOMPARE(last->parts().first()->content(), u"699"_s);
    QCOMPARE(last->awakenedFromInsert, 0);
    const auto changes = told.first().first().value<ChangeSet>();
    QCOMPARE(changes.inserted.size(), size_t(700 * (1 + Item::partCount)));
    QVERIFY(!m_store->context().hasChanges());
    QVERIFY(!m_store->undo().canUndo());
}

void tst_LongTransactionWriter::keepsMemoryFlat()
{
    const auto context = background();
    const int before = liveObjectCount();
    int most = 0;
    const auto owner = context->insert<Owner>();
    for (int i = 0; i < 3000; ++i) {
        context->insert<Item>()->setOwner(owner);
        most = std::max(most, liveObjectCount() - before);
    }
    QVERIFY2(most < 600, qPrintable(QString::number(most)));
    QVERIFY(context->save());
    QCOMPARE(liveObjectCount(), before + 1);
    QCOMPARE(m_store->storedCount("part"), 3000 * Item::partCount);
}

void tst_LongTransactionWriter::leavesNothingWhenDropped()
{
    {
        const auto context = background();
        for (int i = 0; i < 400; ++i)
            context->insert<Item>();
        QVERIFY(context->fetchKeys({"Item"}));
    }
    QCOMPARE(m_store->storedCount("item"), 0);
    // The way is free again.
    m_store->addOwner(u"Ann"_s);
    QVERIFY(m_store->context().save());
}

void tst_LongTransactionWriter::readsItsOwnRows()
{
    m_store->addLabel(u"red"_s);
    QVERIFY(m_store->context().save());
    const auto context = background();
    context->insert<Label>()->setName(u"blue"_s);
    const auto found = context->fetch<Label>({"Label"});
    QVERIFY(found);
    QCOMPARE(found->size(), 2);
    QCOMPARE(found->at(1)->name(), u"blue"_s);
    QCOMPARE(recordCount(*context, {"Label"}), 2);
    // Nobody else sees them before the save.
    QCOMPARE(recordCount(m_store->context(), {"Label"}), 1);
    QVERIFY(context->save());
    QCOMPARE(recordCount(m_store->context(), {"Label"}), 2);
}

void tst_LongTransactionWriter::deletesWhatItInserted()
{
    followSaves();
    const auto context = background();
    QSignalSpy saved(context.get(), &ManagedObjectContext::didSave);
    const auto kept = context->insert<Label>();
    const auto duplicate = context->insert<Label>();
    QVERIFY(context->fetchKeys({"Label"}));
    QVERIFY(context->deleteObject(duplicate));
    QVERIFY(duplicate->isDeleted());
    QCOMPARE(recordCount(*context, {"Label"}), 1);
    QVERIFY(context->save());
    QCOMPARE(saved.size(), 1);
    const auto changes = saved.first().first().value<ChangeSet>();
    QCOMPARE(changes.inserted.size(), size_t(1));
    QCOMPARE(changes.inserted.front().id, kept->objectID());
    QVERIFY(changes.deleted.empty());
    QCOMPARE(m_store->storedCount("label"), 1);
}

void tst_LongTransactionWriter::linksToExistingRecords()
{
    followSaves();
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto label = m_store->addLabel(u"red"_s);
    QVERIFY(m_store->context().save());
    QVERIFY(label->relatedIDs(Label::itemsProperty).empty());
    const auto context = background();
    const auto item = context->insert<Item>();
    item->setOwner(context->object(owner->objectID()));
    item->addRelated(Item::labelsProperty, *context->object(label->objectID()));
    QVERIFY(context->save());
    QCOMPARE(label->relatedIDs(Label::itemsProperty), std::vector{item->objectID()});
    QCOMPARE(owner->itemIDs(), std::vector{item->objectID()});
}

void tst_LongTransactionWriter::dropsLinksToVanishedRecords()
{
    followSaves();
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto label = m_store->addLabel(u"red"_s);
    QVERIFY(m_store->context().save());
    const auto context = background();
    const auto item = context->insert<Item>();
    item->setFlag(5);
    item->setOwner(context->object(owner->objectID()));
    item->addRelated(Item::labelsProperty, *context->object(label->objectID()));
    // The user deletes both before the import writes its first row.
    QVERIFY(m_store->context().deleteObjects({owner, label}));
    QVERIFY(m_store->context().save());
    QVERIFY(context->save());
    QCOMPARE(m_store->storedCount("item WHERE flag = 5 AND owner IS NULL"), 1);
    QCOMPARE(m_store->storedCount("item_label"), 0);
}

void tst_LongTransactionWriter::sharesOneSequenceOfIds()
{
    const auto context = background();
    QSet<qint64> keys;
    for (int i = 0; i < 50; ++i) {
        keys.insert(context->insert<Label>()->objectID().key);
        keys.insert(m_store->context().insert<Label>()->objectID().key);
    }
    QCOMPARE(keys.size(), 100);
    QVERIFY(context->save());
    QVERIFY(m_store->context().save());
    QCOMPARE(m_store->storedCount("label"), 100);
}

void tst_LongTransactionWriter::keepsTheEditsOfTheMainContext()
{
    followSaves();
    const auto owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(m_store->context().save());
    auto context = background();
    context->insert<Label>()->setName(u"red"_s);
    QVERIFY(context->fetchKeys({"Label"}));
    // Now the import holds the write lock: nothing is lost if somebody edits all the same.
    owner->setName(u"Bea"_s);
    const auto item = m_store->addItem(owner);
    QVERIFY(!m_store->context().writeDrafts());
    QVERIFY(m_store->context().fetchKeys({"Owner"}));
    QCOMPARE(item->parts().size(), Item::partCount);
    QVERIFY(context->save());
    context.reset();
    QTRY_COMPARE_WITH_TIMEOUT(m_store->storedCount("owner WHERE name = 'Bea'"), 1, 1200);
    QVERIFY(m_store->context().save());
    QCOMPARE(m_store->storedCount("label"), 1);
    QCOMPARE(m_store->storedCount("part"), Item::partCount);
}

void tst_LongTransactionWriter::failsWhileSomebodyElseWrites()
{
    const auto context = background();
    auto other = Connection::open(m_store->container->storeFile(), Connection::Mode::ReadWrite);
    {
        const auto writing = Transaction::begin(**other, Transaction::Durability::Draft);
        QVERIFY(writing);
        context->insert<Label>();
        QVERIFY(!context->save());
    }
    // Half of an import is worse than none: what was gathered is gone.
    QVERIFY(!context->save());
    QCOMPARE(m_store->storedCount("label"), 0);
}

void tst_LongTransactionWriter::tellsWhenItLostEverything()
{
    FaultVfs vfs;
    TestStore store(vfs.name());
    QVERIFY(store.open());
    store.addOwner(u"Ann"_s);
    QVERIFY(store.context().save());
    for (int write = 1; write <= 3; ++write) {
        const auto made = store.container->newBackgroundContext();
        QVERIFY(made);
        ManagedObjectContext &context = **made;
        QSignalSpy saved(&context, &ManagedObjectContext::didSave);
        for (int i = 0; i < 400; ++i)
            context.insert<Item>();
        vfs.failAt(write, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::Once, FaultVfs::Write);
        const auto done = context.save();
        QVERIFY(!done);
        QVERIFY(!done.error().message.isEmpty());
        // Half of an import is worse than none: trying again does not bring the other half alone.
        QVERIFY(!context.save());
        QVERIFY(context.hasChanges());
        // What can never be saved is not gathered either.
        for (int i = 0; i < 2000; ++i)
            context.insert<Label>();
        QVERIFY(liveObjectCount() < 1100);
        QCOMPARE(saved.size(), 0);
        vfs.failNothing();
    }
    QCOMPARE(store.storedCount("item"), 0);
    QVERIFY(store.addItem(nullptr));
    QVERIFY(store.context().save());
}

void tst_LongTransactionWriter::savesMoreThanOnce()
{
    const auto context = background();
    QSignalSpy saved(context.get(), &ManagedObjectContext::didSave);
    context->insert<Label>();
    QVERIFY(context->save());
    QVERIFY(context->save());
    context->insert<Label>();
    QVERIFY(context->hasChanges());
    QVERIFY(context->save());
    QCOMPARE(saved.size(), 2);
    QCOMPARE(saved.last().first().value<ChangeSet>().inserted.size(), size_t(1));
    QCOMPARE(m_store->storedCount("label"), 2);
}

QTEST_GUILESS_MAIN(tst_LongTransactionWriter)

#include "tst_LongTransactionWriter.moc"
