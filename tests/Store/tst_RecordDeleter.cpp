#include "TestJournal.h"

#include "Store/File/Connection.h"
#include "Store/File/Transaction.h"
#include "support/FaultVfs.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_RecordDeleter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void cascades();
    void keepsValuesReadable();
    void tellsTheSurvivors();
    void runsEachHookOnce();
    void runsHooksOfCascadedObjects();
    void allowsHooksToEdit();
    void relatesNothingThatAHookInsertsToWhatIsDeleted();
    void allowsHooksToDeleteOthers();
    void allowsHooksToDeleteTheSame();
    void deletesWhatWasNeverWritten();
    void ignoresWhatIsDeletedAlready();
    void deletesNothingWhenItFails_data();
    void deletesNothingWhenItFails();
    void deletesNothingWhileSomebodyElseWrites();
    void deletesThousandsAtOnce();

private:
    ManagedObjectContext &context() { return m_store->context(); }

    std::unique_ptr<TestStore> m_store;
};

void tst_RecordDeleter::init()
{
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
}

void tst_RecordDeleter::cascades()
{
    const auto ann = m_store->addOwner(u"Ann"_s, 3);
    const auto bea = m_store->addOwner(u"Bea"_s, 2);
    const auto label = m_store->addLabel(u"red"_s);
    for (const auto &owner : {ann, bea}) {
        for (const ObjectID id : owner->itemIDs())
            label->addRelated(Label::itemsProperty, *context().object(id));
    }
    QVERIFY(context().save());
    QVERIFY(context().deleteObject(ann));
    QCOMPARE(m_store->storedCount("owner"), 1);
    QCOMPARE(m_store->storedCount("item"), 2);
    QCOMPARE(m_store->storedCount("part"), 2 * Item::partCount);
    QCOMPARE(m_store->storedCount("label"), 1);
    QCOMPARE(m_store->storedCount("item_label"), 2);
    QVERIFY(context().hasChanges());
    QCOMPARE(label->relatedIDs(Label::itemsProperty), bea->itemIDs());
}

void tst_RecordDeleter::keepsValuesReadable()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    const auto item = context().object<Item>(owner->itemIDs().front());
    item->setFlag(4);
    const auto part = item->parts().first();
    part->setContent(u"text"_s);
    QVERIFY(context().save());
    const ObjectID labelID = m_store->addLabel(u"red"_s)->objectID();
    QVERIFY(context().writeDrafts());
    const auto fault = context().fetch<Label>({"Label"})->first();
    QVERIFY(context().deleteObjects({owner, fault}));
    for (const auto &object :
         std::initializer_list<std::shared_ptr<ManagedObject>>{owner, item, part, fault}) {
        QVERIFY(object->isDeleted());
        QVERIFY(!object->managedObjectContext());
        QVERIFY(!context().object(object->objectID()));
    }
    QCOMPARE(owner->name(), u"Ann"_s);
    QCOMPARE(item->flag(), 4);
    QCOMPARE(part->content(), u"text"_s);
    // It had never been read before.
    QCOMPARE(fault->objectID(), labelID);
    QCOMPARE(fault->name(), u"red"_s);
    part->setContent(u"other"_s);
    QCOMPARE(part->content(), u"text"_s);
}

void tst_RecordDeleter::tellsTheSurvivors()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2);
    const auto item = context().object<Item>(owner->itemIDs().front());
    const auto part = item->parts().first();
    const auto label = m_store->addLabel(u"red"_s);
    item->addRelated(Item::labelsProperty, *label);
    QVERIFY(context().save());
    endTurn();
    QSignalSpy items(owner.get(), &Owner::itemsChanged);
    QSignalSpy labelled(label.get(), &Label::itemsChanged);
    QSignalSpy itemDeleted(item.get(), &ManagedObject::deleted);
    QSignalSpy partDeleted(part.get(), &ManagedObject::deleted);
    QList<ChangeSet> told;
    connect(&context(), &ManagedObjectContext::objectsDidChange, this,
            [&](const ChangeSet &changes) { told.append(changes); });
    connect(item.get(), &ManagedObject::deleted, this, [&] {
        QVERIFY(part->isDeleted());
        QCOMPARE(owner->itemIDs().size(), size_t(1));
        QVERIFY(label->relatedIDs(Label::itemsProperty).empty());
    });
    QVERIFY(context().deleteObject(item));
    QCOMPARE(items.size(), 1);
    QCOMPARE(labelled.size(), 1);
    QCOMPARE(itemDeleted.size(), 1);
    QCOMPARE(partDeleted.size(), 1);
    endTurn();
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().deleted.size(), size_t(1 + Item::partCount));
    QCOMPARE(told.first().updated.size(), size_t(1));
    QCOMPARE(told.first().updated.front().id, label->objectID());
    QCOMPARE(told.first().updated.front().properties, propertyBit(Label::itemsProperty));
}

void tst_RecordDeleter::runsEachHookOnce()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2);
    const auto first = context().object<Item>(owner->itemIDs().at(0));
    int called = 0;
    first->setOnDeletion([&] {
        ++called;
        QVERIFY(!first->isDeleted());
        QCOMPARE(first->owner(), owner);
    });
    QVERIFY(context().save());
    QVERIFY(context().deleteObjects({owner, first, owner}));
    QCOMPARE(called, 1);
    first->setOnDeletion({});
}

void tst_RecordDeleter::runsHooksOfCascadedObjects()
{
    int called = 0;
    ObjectID ownerID;
    {
        const auto owner = m_store->addOwner(u"Ann"_s, 3);
        ownerID = owner->objectID();
        for (const ObjectID id : owner->itemIDs())
            context().object<Item>(id)->setOnDeletion([&] { ++called; });
        QVERIFY(context().save());
    }
    // Nobody holds the items but the callbacks they carry.
    QVERIFY(context().deleteObject(context().object(ownerID)));
    QCOMPARE(called, 3);
    QCOMPARE(liveObjectCount(), 0);
}

void tst_RecordDeleter::allowsHooksToEdit()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2);
    const auto bea = m_store->addOwner(u"Bea"_s);
    const auto first = context().object<Item>(owner->itemIDs().at(0));
    const auto second = context().object<Item>(owner->itemIDs().at(1));
    QVERIFY(context().save());
    first->setOnDeletion([&] {
        bea->setName(u"Beate"_s);
        // Too late for what is deleted: nothing can stop that any more.
        second->setOwner(bea);
        first->setFlag(9);
        bea->addRelated(Owner::itemsProperty, *first);
    });
    QVERIFY(context().deleteObject(owner));
    QVERIFY(first->isDeleted());
    QCOMPARE(first->flag(), 0);
    QVERIFY(second->isDeleted());
    QVERIFY(bea->itemIDs().empty());
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount("item"), 0);
    QCOMPARE(m_store->storedCount("part"), 0);
    QCOMPARE(m_store->storedCount("owner WHERE name = 'Beate'"), 1);
}

void tst_RecordDeleter::relatesNothingThatAHookInsertsToWhatIsDeleted()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    const auto first = context().object<Item>(owner->itemIDs().at(0));
    std::shared_ptr<Item> late;
    first->setOnDeletion([&] { late = m_store->addItem(owner); });
    QVERIFY(context().deleteObject(owner));
    QVERIFY(!late->isDeleted());
    QVERIFY(!late->owner());
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount("item WHERE owner IS NULL"), 1);
    QCOMPARE(m_store->storedCount("part"), Item::partCount);
}

void tst_RecordDeleter::allowsHooksToDeleteOthers()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2);
    const auto bea = m_store->addOwner(u"Bea"_s, 1);
    const auto first = context().object<Item>(owner->itemIDs().at(0));
    const auto second = context().object<Item>(owner->itemIDs().at(1));
    const auto third = context().object<Item>(bea->itemIDs().at(0));
    endTurn();
    int called = 0;
    for (const auto &item : {first, second, third}) {
        item->setOnDeletion([&] {
            ++called;
            QVERIFY(context().deleteObject(second));
            QVERIFY(context().deleteObject(bea));
        });
    }
    QVERIFY(context().deleteObject(owner));
    QCOMPARE(called, 3);
    for (const auto &object :
         std::initializer_list<std::shared_ptr<ManagedObject>>{owner, bea, first, second, third})
        QVERIFY(object->isDeleted());
    endTurn();
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount("owner") + m_store->storedCount("item")
                 + m_store->storedCount("part"),
             0);
    m_store->undo().undo();
    QCOMPARE(m_store->storedCount("owner"), 2);
    QCOMPARE(m_store->storedCount("item"), 3);
    QCOMPARE(m_store->storedCount("part"), 3 * Item::partCount);
    for (const auto &item : {first, second, third})
        item->setOnDeletion({});
}

void tst_RecordDeleter::allowsHooksToDeleteTheSame()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    const auto item = context().object<Item>(owner->itemIDs().at(0));
    int called = 0;
    item->setOnDeletion([&] {
        ++called;
        QVERIFY(context().deleteObject(owner));
    });
    endTurn();
    QSignalSpy deleted(owner.get(), &ManagedObject::deleted);
    QVERIFY(context().deleteObject(owner));
    QCOMPARE(called, 1);
    QCOMPARE(deleted.size(), 1);
    QCOMPARE(m_store->storedCount("item"), 0);
    item->setOnDeletion({});
}

void tst_RecordDeleter::deletesWhatWasNeverWritten()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2);
    QVERIFY(context().deleteObject(owner));
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount("owner") + m_store->storedCount("item")
                 + m_store->storedCount("part"),
             0);
}

void tst_RecordDeleter::ignoresWhatIsDeletedAlready()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(context().deleteObject(owner));
    QVERIFY(context().save());
    QVERIFY(context().deleteObject(owner));
    QVERIFY(context().deleteObjects({}));
    QVERIFY(context().deleteObjects({nullptr, owner}));
    QVERIFY(!context().hasChanges());
}

void tst_RecordDeleter::deletesNothingWhenItFails_data()
{
    QTest::addColumn<int>("write");
    for (const int write : {1, 2, 3, 5})
        QTest::addRow("write %d", write) << write;
}

void tst_RecordDeleter::deletesNothingWhenItFails()
{
    QFETCH(int, write);
    FaultVfs vfs;
    TestStore store(vfs.name());
    QVERIFY(store.open());
    const auto owner = store.addOwner(u"Ann"_s, 20);
    const auto label = store.addLabel(u"red"_s);
    for (const ObjectID id : owner->itemIDs())
        label->addRelated(Label::itemsProperty, *store.context().object(id));
    QVERIFY(store.context().save());
    endTurn();
    const QByteArray before = dumpStore(store.container->storeFile());
    QSignalSpy told(&store.context(), &ManagedObjectContext::objectsDidChange);
    int hooksCalled = 0;
    const auto item = store.context().object<Item>(owner->itemIDs().front());
    item->setOnDeletion([&] { ++hooksCalled; });
    vfs.failAt(write, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood, FaultVfs::Write);
    const auto done = store.context().deleteObject(owner);
    QVERIFY2(!done, "the fault was not met");
    QVERIFY(!done.error().message.isEmpty());
    vfs.failNothing();
    QCOMPARE(hooksCalled, 0);
    QVERIFY(!owner->isDeleted());
    QCOMPARE(owner->itemIDs().size(), size_t(20));
    QCOMPARE(label->relatedIDs(Label::itemsProperty).size(), size_t(20));
    QCOMPARE(dumpStore(store.container->storeFile()), before);
    endTurn();
    QCOMPARE(told.size(), 0);
    QVERIFY(!store.context().hasChanges());
    QVERIFY(store.context().deleteObject(owner));
    QCOMPARE(hooksCalled, 1);
    QCOMPARE(store.storedCount("part"), 0);
}

void tst_RecordDeleter::deletesNothingWhileSomebodyElseWrites()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    QVERIFY(context().save());
    auto other = Connection::open(m_store->container->storeFile(), Connection::Mode::ReadWrite);
    {
        const auto writing = Transaction::begin(**other, Transaction::Durability::Draft);
        QVERIFY(writing);
        QVERIFY(!context().deleteObject(owner));
        QVERIFY(!owner->isDeleted());
    }
    QVERIFY(context().deleteObject(owner));
}

void tst_RecordDeleter::deletesThousandsAtOnce()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2000);
    QVERIFY(context().save());
    endTurn();
    QSignalSpy items(owner.get(), &Owner::itemsChanged);
    QList<std::shared_ptr<ManagedObject>> doomed;
    const auto all = owner->itemIDs();
    for (size_t i = 0; i < all.size(); i += 2)
        doomed.append(context().object(all[i]));
    QVERIFY(context().deleteObjects(doomed));
    QCOMPARE(owner->itemIDs().size(), size_t(1000));
    QCOMPARE(items.size(), 1);
    QCOMPARE(m_store->storedCount("item"), 1000);
    QCOMPARE(m_store->storedCount("part"), 1000 * Item::partCount);
    m_store->undo().undo();
    QCOMPARE(owner->itemIDs(), all);
    QCOMPARE(m_store->storedCount("part"), 2000 * Item::partCount);
}

QTEST_GUILESS_MAIN(tst_RecordDeleter)

#include "tst_RecordDeleter.moc"
