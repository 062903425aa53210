#include "TestJournal.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_ManagedObjectContext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void findsEverythingAgain();
    void seesEditsInQueries();
    void insertsInAnyOrderOfEntities();
    void readsWithTheResultWhenAsked();
    void prefetchesRelationships();
    void readsManyObjectsTogether();
    void tellsChangesOncePerTurn();
    void tellsChangesWhenForced();
    void leavesOutWhatCameAndWent();
    void tellsToOnesOfRecordsNotLoaded();
    void allowsEditsWhileTelling();
    void tellsOfASaveAndOfChanges();
    void doesNotSaveWithoutChanges();
    void takesOverWhatAnotherContextSaved();
    void keepsUnwrittenEditsInAMerge();
    void letsGoOfCleanObjects();
    void holdsNothingWhileScrolling();
    void neverGivesAnIdTwice();

private:
    ManagedObjectContext &context() { return m_store->context(); }

    std::unique_ptr<TestStore> m_store;
};

void tst_ManagedObjectContext::init()
{
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
}

void tst_ManagedObjectContext::findsEverythingAgain()
{
    ObjectID itemID;
    {
        const auto item = m_store->addItem(m_store->addOwner(u"Ann"_s));
        itemID = item->objectID();
        item->addRelated(Item::labelsProperty, *m_store->addLabel(u"red"_s));
        item->setDate(Date{0.1 + 0.2});
        item->parts().at(1)->setContent(u"Grüße"_s);
        QVERIFY(context().save());
    }
    QVERIFY(m_store->open());
    const auto item = context().object<Item>(itemID);
    QVERIFY(item);
    QCOMPARE(item->owner()->name(), u"Ann"_s);
    QCOMPARE(item->date(), OptionalDate(Date{0.1 + 0.2}));
    QCOMPARE(item->parts().size(), Item::partCount);
    QCOMPARE(item->parts().at(1)->content(), u"Grüße"_s);
    QVERIFY(item->parts().at(0)->content().isNull());
    QCOMPARE(item->labels().size(), 1);
    QCOMPARE(item->labels().first()->name(), u"red"_s);
}

void tst_ManagedObjectContext::seesEditsInQueries()
{
    const auto item = m_store->addItem(nullptr);
    item->setFlag(3);
    const FetchRequest flagged{"Item", Predicate::fixed(u"flag > %d", {qint64(0)})};
    QCOMPARE(context().fetchKeys(flagged)->size(), size_t(1));
    item->setFlag(0);
    QCOMPARE(context().fetchKeys(flagged)->size(), size_t(0));
    QVERIFY(context().hasChanges());
}

void tst_ManagedObjectContext::insertsInAnyOrderOfEntities()
{
    // The part first, then what it hangs on.
    const auto part = context().insert<Part>();
    const auto item = context().insert<Item>();
    const auto owner = context().insert<Owner>();
    part->setItem(item);
    item->setOwner(owner);
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount(
                 "part JOIN item ON part.item = item.id JOIN owner ON item.owner = owner.id"),
             Item::partCount + 1);
}

void tst_ManagedObjectContext::readsWithTheResultWhenAsked()
{
    m_store->addOwner(u"Ann"_s);
    QVERIFY(context().save());
    FetchRequest request{"Owner"};
    {
        const auto faults = context().fetch<Owner>(request);
        QCOMPARE(faults->first()->awakened, 0);
        QCOMPARE(faults->first()->name(), u"Ann"_s);
        QCOMPARE(faults->first()->awakened, 1);
    }
    request.returnsObjectsAsFaults = false;
    const auto loaded = context().fetch<Owner>(request);
    QCOMPARE(loaded->first()->awakened, 1);
}

void tst_ManagedObjectContext::prefetchesRelationships()
{
    ObjectID labelID;
    {
        const auto owner = m_store->addOwner(u"Ann"_s, 40);
        const auto label = m_store->addLabel(u"red"_s);
        labelID = label->objectID();
        for (const ObjectID id : owner->itemIDs())
            label->addRelated(Label::itemsProperty, *context().object(id));
        QVERIFY(context().save());
    }
    FetchRequest request{"Item"};
    request.relationshipKeyPathsForPrefetching = {"labels", "parts"};
    const auto items = context().fetch<Item>(request);
    QVERIFY(items);
    QCOMPARE(items->size(), 40);
    // What is gone from the store behind the context's back proves that it is not asked again.
    QVERIFY(m_store->executeElsewhere("DELETE FROM item_label"));
    QVERIFY(m_store->executeElsewhere("DELETE FROM part"));
    for (const auto &item : *items) {
        QCOMPARE(item->relatedIDs(Item::labelsProperty), std::vector{labelID});
        QCOMPARE(item->relatedIDs(Item::partsProperty).size(), size_t(Item::partCount));
    }
}

void tst_ManagedObjectContext::readsManyObjectsTogether()
{
    std::vector<qint64> keys;
    for (int i = 0; i < 600; ++i)
        keys.push_back(m_store->addOwner(QString::number(i))->objectID().key);
    QVERIFY(context().save());
    std::reverse(keys.begin(), keys.end());
    keys.insert(keys.begin() + 10, 999'999);
    const auto objects = context().objects(ownerEntity, keys);
    QVERIFY(objects);
    QCOMPARE(objects->size(), 600);
    for (int i = 0; i < 600; ++i)
        QCOMPARE(std::static_pointer_cast<Owner>(objects->at(i))->name(), QString::number(599 - i));
}

void tst_ManagedObjectContext::tellsChangesOncePerTurn()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    endTurn();
    QList<ChangeSet> told;
    connect(&context(), &ManagedObjectContext::objectsDidChange, this,
            [&](const ChangeSet &changes) { told.append(changes); });
    const auto item = m_store->addItem(owner);
    owner->setName(u"Bea"_s);
    owner->setName(u"Ann"_s);
    QVERIFY(told.isEmpty());
    endTurn();
    QCOMPARE(told.size(), 1);
    const ChangeSet &changes = told.first();
    QCOMPARE(changes.inserted.size(), size_t(1 + Item::partCount));
    QCOMPARE(changes.inserted.front().id, item->objectID());
    QCOMPARE(changes.inserted.front().toOnes.size(), 1);
    QCOMPARE(changes.inserted.front().toOnes.first().oldKey, 0);
    QCOMPARE(changes.inserted.front().toOnes.first().newKey, owner->objectID().key);
    // Set back, and still an update.
    QCOMPARE(changes.updated.size(), size_t(1));
    QCOMPARE(changes.updated.front().properties, propertyBit(Owner::nameProperty));
    endTurn();
    QCOMPARE(told.size(), 1);
}

void tst_ManagedObjectContext::tellsChangesWhenForced()
{
    QSignalSpy told(&context(), &ManagedObjectContext::objectsDidChange);
    m_store->addOwner(u"Ann"_s);
    context().processPendingChanges();
    QCOMPARE(told.size(), 1);
    context().processPendingChanges();
    endTurn();
    QCOMPARE(told.size(), 1);
}

void tst_ManagedObjectContext::leavesOutWhatCameAndWent()
{
    QSignalSpy told(&context(), &ManagedObjectContext::objectsDidChange);
    QSignalSpy saved(&context(), &ManagedObjectContext::didSave);
    const auto item = m_store->addItem(nullptr);
    QVERIFY(context().deleteObject(item));
    endTurn();
    QCOMPARE(told.size(), 0);
    QVERIFY(context().hasChanges());
    QVERIFY(context().save());
    QVERIFY(saved.first().first().value<ChangeSet>().isEmpty());
}

void tst_ManagedObjectContext::tellsToOnesOfRecordsNotLoaded()
{
    ObjectID itemID, ownerID;
    {
        const auto owner = m_store->addOwner(u"Ann"_s, 1);
        ownerID = owner->objectID();
        itemID = owner->itemIDs().front();
        QVERIFY(context().save());
    }
    QList<ChangeSet> told;
    connect(&context(), &ManagedObjectContext::objectsDidChange, this,
            [&](const ChangeSet &changes) { told.append(changes); });
    QVERIFY(context().deleteObject(context().object(ownerID)));
    endTurn();
    QCOMPARE(told.size(), 1);
    const auto &deleted = told.first().deleted;
    QCOMPARE(deleted.size(), size_t(2 + Item::partCount));
    const auto item = std::find_if(deleted.begin(), deleted.end(),
                                   [&](const auto &c) { return c.id == itemID; });
    QVERIFY(item != deleted.end());
    QCOMPARE(item->toOnes.first().oldKey, ownerID.key);
    QCOMPARE(item->toOnes.first().newKey, 0);
}

void tst_ManagedObjectContext::allowsEditsWhileTelling()
{
    const auto owner = m_store->addOwner(u"0"_s);
    int turns = 0;
    connect(&context(), &ManagedObjectContext::objectsDidChange, this, [&] {
        if (++turns < 4)
            owner->setName(QString::number(turns));
    });
    for (int i = 0; i < 10; ++i)
        endTurn();
    QCOMPARE(turns, 4);
    QCOMPARE(owner->name(), u"3"_s);
    QVERIFY(context().save());
    QCOMPARE(std::get<QString>(m_store->stored("SELECT name FROM owner")), u"3"_s);
}

void tst_ManagedObjectContext::tellsOfASaveAndOfChanges()
{
    QList<bool> has;
    connect(&context(), &ManagedObjectContext::hasChangesChanged, this,
            [&](bool now) { has.append(now); });
    QList<ChangeSet> saves;
    connect(&context(), &ManagedObjectContext::didSave, this, [&](const ChangeSet &saved) {
        QVERIFY(!context().hasChanges());
        saves.append(saved);
    });
    QSignalSpy posted(m_store->container.get(), &PersistentContainer::contextDidSave);

    const auto owner = m_store->addOwner(u"Ann"_s);
    endTurn();
    owner->setName(u"Bea"_s);
    QVERIFY(context().writeDrafts());
    QVERIFY(context().hasChanges());
    QVERIFY(saves.isEmpty());
    const auto item = m_store->addItem(owner);
    endTurn();
    QVERIFY(context().save());
    QCOMPARE(has, (QList{true, false}));
    QCOMPARE(saves.size(), 1);
    QCOMPARE(saves.first().inserted.size(), size_t(2 + Item::partCount));
    QVERIFY(saves.first().updated.empty());
    QCOMPARE(posted.size(), 1);

    item->setFlag(1);
    QVERIFY(context().save());
    QCOMPARE(has, (QList{true, false, true, false}));
    QCOMPARE(saves.last().updated.size(), size_t(1));
    QVERIFY(saves.last().inserted.empty());
}

void tst_ManagedObjectContext::doesNotSaveWithoutChanges()
{
    QSignalSpy saved(&context(), &ManagedObjectContext::didSave);
    QVERIFY(context().save());
    QCOMPARE(saved.size(), 0);
}

void tst_ManagedObjectContext::takesOverWhatAnotherContextSaved()
{
    auto setup = std::make_unique<UndoManager::Suspension>(m_store->undo());
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    const auto item = context().object<Item>(owner->itemIDs().front());
    const auto other = m_store->addItem(owner);
    const auto label = m_store->addLabel(u"red"_s);
    QVERIFY(context().save());
    endTurn();
    setup.reset();
    QCOMPARE(owner->itemIDs().size(), size_t(2));

    QVERIFY(m_store->executeElsewhere("UPDATE owner SET name = 'Bea'"));
    QVERIFY(m_store->executeElsewhere(
        "INSERT INTO item (id, owner) VALUES (5000, (SELECT id FROM owner))"));
    QVERIFY(m_store->executeElsewhere("INSERT INTO item_label SELECT 5000, id FROM label"));
    const QByteArray key = QByteArray::number(item->objectID().key);
    QVERIFY(m_store->executeElsewhere("DELETE FROM part WHERE item = " + key));
    QVERIFY(m_store->executeElsewhere("DELETE FROM item WHERE id = " + key));

    ChangeSet saved;
    const qint64 ownerKey = owner->objectID().key;
    saved.inserted.push_back(
        {{itemEntity, 5000}, allProperties, {{Item::ownerProperty, 0, ownerKey}}});
    saved.updated.push_back({owner->objectID(), propertyBit(Owner::nameProperty), {}});
    saved.updated.push_back({label->objectID(), propertyBit(Label::itemsProperty), {}});
    saved.deleted.push_back(
        {item->objectID(), allProperties, {{Item::ownerProperty, ownerKey, 0}}});

    QSignalSpy name(owner.get(), &Owner::nameChanged);
    QSignalSpy items(owner.get(), &Owner::itemsChanged);
    QSignalSpy labelled(label.get(), &Label::itemsChanged);
    QSignalSpy deleted(item.get(), &ManagedObject::deleted);
    QSignalSpy told(&context(), &ManagedObjectContext::objectsDidChange);
    context().mergeChanges(saved);
    QCOMPARE(name.size(), 1);
    QCOMPARE(items.size(), 1);
    QCOMPARE(labelled.size(), 1);
    QCOMPARE(deleted.size(), 1);
    QCOMPARE(owner->name(), u"Bea"_s);
    QVERIFY(item->isDeleted());
    QVERIFY(!item->managedObjectContext());
    QCOMPARE(owner->itemIDs(), (std::vector<ObjectID>{other->objectID(), {itemEntity, 5000}}));
    QCOMPARE(label->relatedIDs(Label::itemsProperty), (std::vector<ObjectID>{{itemEntity, 5000}}));
    endTurn();
    QCOMPARE(told.size(), 1);
    QVERIFY(!context().hasChanges());
    QVERIFY(!m_store->undo().canUndo());
}

void tst_ManagedObjectContext::keepsUnwrittenEditsInAMerge()
{
    const auto item = m_store->addItem(nullptr);
    item->setFlag(1);
    QVERIFY(context().save());
    QVERIFY(m_store->executeElsewhere("UPDATE item SET flag = 5, date = 77"));
    item->setFlag(2);
    ChangeSet saved;
    saved.updated.push_back({item->objectID(), allProperties, {}});
    context().mergeChanges(saved);
    QCOMPARE(item->flag(), 2);
    QCOMPARE(item->date(), OptionalDate(Date{77}));
    QVERIFY(context().save());
    QCOMPARE(std::get<qint64>(m_store->stored("SELECT flag FROM item")), 2);
    QCOMPARE(std::get<double>(m_store->stored("SELECT date FROM item")), 77);
}

void tst_ManagedObjectContext::letsGoOfCleanObjects()
{
    const int before = liveObjectCount();
    m_store->addOwner(u"Ann"_s, 5);
    // Held by the context alone, until the store has them.
    QCOMPARE(liveObjectCount() - before, 1 + 5 * (1 + Item::partCount));
    QVERIFY(context().writeDrafts());
    QCOMPARE(liveObjectCount(), before);
    {
        const auto owners = context().fetch<Owner>({"Owner"});
        owners->first()->setName(u"Bea"_s);
    }
    QCOMPARE(liveObjectCount(), before + 1);
    QVERIFY(context().writeDrafts());
    QCOMPARE(liveObjectCount(), before);
}

void tst_ManagedObjectContext::holdsNothingWhileScrolling()
{
    QVERIFY(m_store->executeElsewhere(
        "WITH RECURSIVE n(i) AS (VALUES(1) UNION ALL SELECT i + 1 FROM n WHERE i < 100000)"
        " INSERT INTO owner SELECT i, 'Owner ' || i FROM n"));
    const int before = liveObjectCount();
    const auto keys = context().fetchKeys({"Owner"});
    QCOMPARE(keys->size(), size_t(100'000));
    constexpr size_t page = 50;
    for (size_t top = 0; top < keys->size(); top += page) {
        const auto shown = context().objects(ownerEntity, std::span(*keys).subspan(top, page));
        QCOMPARE(shown->size(), qsizetype(page));
        QCOMPARE(std::static_pointer_cast<Owner>(shown->first())->name(),
                 QString(u"Owner "_s + QString::number(top + 1)));
        QVERIFY(liveObjectCount() - before <= int(page));
    }
    QCOMPARE(liveObjectCount(), before);
}

void tst_ManagedObjectContext::neverGivesAnIdTwice()
{
    QSet<qint64> given;
    for (int start = 0; start < 3; ++start) {
        for (int i = 0; i < 3; ++i) {
            const auto owner = m_store->addOwner(u"Ann"_s);
            QVERIFY(!given.contains(owner->objectID().key));
            given.insert(owner->objectID().key);
            QVERIFY(context().deleteObject(owner));
        }
        QVERIFY(m_store->open());
    }
}

QTEST_GUILESS_MAIN(tst_ManagedObjectContext)

#include "tst_ManagedObjectContext.moc"
