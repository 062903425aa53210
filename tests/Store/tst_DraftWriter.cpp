#include "TestJournal.h"

#include "Store/File/Connection.h"
#include "Store/File/Transaction.h"
#include "support/FaultVfs.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_DraftWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void areWrittenWithinASecond();
    void areWrittenOneSecondAfterTheFirstEdit();
    void areWrittenBeforeAQuery();
    void writeNothingWhenNothingWasEdited();
    void leaveNoTransactionOpen();
    void waitWhileSomebodyElseWrites();
    void areToldAgainOnceQueriesSeeThem();
    void leaveWhatWasDeletedElsewhereDeleted();
    void dropLinksToWhatWasDeletedElsewhere();
    void keepEditsWhenASaveFails();
    void survivePowerOffOnceSaved();

private:
    ManagedObjectContext &context() { return m_store->context(); }
    QString storedName() const
    {
        const Value name = m_store->stored("SELECT name FROM owner");
        const auto *text = std::get_if<QString>(&name);
        return text ? *text : QString();
    }

    std::unique_ptr<TestStore> m_store;
};

void tst_DraftWriter::init()
{
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
}

void tst_DraftWriter::areWrittenWithinASecond()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QCOMPARE(storedName(), QString());
    QTRY_COMPARE_WITH_TIMEOUT(storedName(), u"Ann"_s, 1500);
    QVERIFY(context().hasChanges());
    // Unwritten edits that nobody else holds are held until then.
    ObjectID id = owner->objectID();
    context().object<Owner>(id)->setName(u"Bea"_s);
    QTRY_COMPARE_WITH_TIMEOUT(storedName(), u"Bea"_s, 1500);
}

void tst_DraftWriter::areWrittenOneSecondAfterTheFirstEdit()
{
    const auto owner = m_store->addOwner(u"0"_s);
    QElapsedTimer timer;
    timer.start();
    // Somebody who never stops typing does not put it off.
    for (int i = 1; timer.elapsed() < 1300; ++i) {
        owner->setName(QString::number(i));
        QTest::qWait(50);
    }
    QVERIFY(!storedName().isEmpty());
}

void tst_DraftWriter::areWrittenBeforeAQuery()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(context().fetchKeys({"Label"}));
    QCOMPARE(storedName(), u"Ann"_s);
}

void tst_DraftWriter::writeNothingWhenNothingWasEdited()
{
    FaultVfs vfs;
    TestStore store(vfs.name());
    QVERIFY(store.open());
    const auto owner = store.addOwner(u"Ann"_s, 3);
    QVERIFY(store.context().save());
    vfs.failNothing(FaultVfs::AnyChange);
    for (int i = 0; i < 5; ++i) {
        QVERIFY(store.context().fetchKeys({"Item"}));
        QVERIFY(store.context().writeDrafts());
        QVERIFY(store.context().save());
        (void)owner->itemIDs();
        owner->setName(u"Ann"_s);
    }
    QCOMPARE(vfs.count(), 0);
}

void tst_DraftWriter::leaveNoTransactionOpen()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(context().fetchKeys({"Owner"}));
    QVERIFY(m_store->executeElsewhere("UPDATE owner SET name = 'Bea'"));
    owner->setName(u"Cleo"_s);
    QVERIFY(m_store->executeElsewhere("UPDATE owner SET name = 'Dora'"));
    QVERIFY(context().save());
    QVERIFY(m_store->executeElsewhere("UPDATE owner SET name = 'Eva'"));
}

void tst_DraftWriter::waitWhileSomebodyElseWrites()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(context().save());
    auto other = Connection::open(m_store->container->storeFile(), Connection::Mode::ReadWrite);
    QVERIFY(other);
    {
        const auto writing = Transaction::begin(**other, Transaction::Durability::Draft);
        QVERIFY(writing);
        owner->setName(u"Bea"_s);
        const auto item = m_store->addItem(owner);
        QVERIFY(!context().writeDrafts());
        QVERIFY(!context().save());
        // Queries answer at once with what is there; relations are right even so.
        QElapsedTimer timer;
        timer.start();
        const auto found = context().fetchKeys({"Item"});
        QVERIFY(found && found->empty());
        QVERIFY(timer.elapsed() < 100);
        QCOMPARE(owner->itemIDs(), std::vector{item->objectID()});
        QCOMPARE(item->parts().size(), Item::partCount);
        QCOMPARE(owner->name(), u"Bea"_s);
        QVERIFY(context().hasChanges());
    }
    QTRY_COMPARE_WITH_TIMEOUT(storedName(), u"Bea"_s, 1200);
    QCOMPARE(m_store->storedCount("part"), Item::partCount);
    QVERIFY(context().save());
    QVERIFY(!context().hasChanges());
}

void tst_DraftWriter::areToldAgainOnceQueriesSeeThem()
{
    qsizetype shown = -1;
    int told = 0;
    connect(&context(), &ManagedObjectContext::objectsDidChange, this, [&] {
        ++told;
        shown = qsizetype(context().fetchKeys({"Owner"})->size());
    });
    auto other = Connection::open(m_store->container->storeFile(), Connection::Mode::ReadWrite);
    {
        const auto writing = Transaction::begin(**other, Transaction::Durability::Draft);
        QVERIFY(writing);
        m_store->addOwner(u"Ann"_s);
        endTurn();
        QCOMPARE(told, 1);
        QCOMPARE(shown, 0);
    }
    QTRY_COMPARE_WITH_TIMEOUT(shown, 1, 1200);
    QCOMPARE(told, 2);
}

void tst_DraftWriter::leaveWhatWasDeletedElsewhereDeleted()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto other = m_store->addOwner(u"Bea"_s);
    QVERIFY(context().save());
    endTurn();
    QVERIFY(m_store->executeElsewhere("DELETE FROM owner WHERE name = 'Ann'"));
    QSignalSpy deleted(owner.get(), &ManagedObject::deleted);
    QList<ChangeSet> told;
    connect(&context(), &ManagedObjectContext::objectsDidChange, this,
            [&](const ChangeSet &changes) { told.append(changes); });
    owner->setName(u"Anna"_s);
    other->setName(u"Beate"_s);
    QTest::ignoreMessage(QtWarningMsg,
                         "An edited record had been deleted elsewhere; it stays deleted.");
    QVERIFY(context().writeDrafts());
    QVERIFY(owner->isDeleted());
    QCOMPARE(deleted.size(), 1);
    QCOMPARE(m_store->storedCount("owner"), 1);
    QCOMPARE(storedName(), u"Beate"_s);
    endTurn();
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().deleted.size(), size_t(1));
    QCOMPARE(told.first().deleted.front().id, owner->objectID());
    owner->setName(u"Ann"_s);
    QCOMPARE(owner->name(), u"Anna"_s);
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount("owner"), 1);
}

void tst_DraftWriter::dropLinksToWhatWasDeletedElsewhere()
{
    const auto item = m_store->addItem(nullptr);
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto label = m_store->addLabel(u"red"_s);
    QVERIFY(context().save());
    QVERIFY(m_store->executeElsewhere("DELETE FROM label"));
    QVERIFY(m_store->executeElsewhere("DELETE FROM owner"));
    item->addRelated(Item::labelsProperty, *label);
    item->setOwner(owner);
    item->setFlag(4);
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount("item_label"), 0);
    QCOMPARE(m_store->storedCount("item WHERE owner IS NULL AND flag = 4"), 1);
}

void tst_DraftWriter::keepEditsWhenASaveFails()
{
    FaultVfs vfs;
    TestStore store(vfs.name());
    QVERIFY(store.open());
    const auto owner = store.addOwner(u"Ann"_s);
    QVERIFY(store.context().save());
    owner->setName(u"Bea"_s);
    QVERIFY(store.context().writeDrafts());
    const auto item = store.addItem(owner);
    QSignalSpy saved(&store.context(), &ManagedObjectContext::didSave);
    vfs.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
    const auto failed = store.context().save();
    QVERIFY(!failed);
    QVERIFY(!failed.error().message.isEmpty());
    QVERIFY(store.context().hasChanges());
    QCOMPARE(saved.size(), 0);
    QCOMPARE(owner->name(), u"Bea"_s);
    owner->setName(u"Cleo"_s);
    QVERIFY(!store.context().save());
    vfs.failNothing();
    QVERIFY(store.context().save());
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved.first().first().value<ChangeSet>().inserted.size(), size_t(1 + Item::partCount));
    const ObjectID itemID = item->objectID();
    QVERIFY(store.open());
    QCOMPARE(store.context().object<Item>(itemID)->owner()->name(), u"Cleo"_s);
}

void tst_DraftWriter::survivePowerOffOnceSaved()
{
    FaultVfs vfs;
    TestStore store(vfs.name());
    QVERIFY(store.open());
    const auto owner = store.addOwner(u"Ann"_s);
    QVERIFY(store.context().writeDrafts());
    vfs.failNothing(FaultVfs::Sync);
    owner->setName(u"Bea"_s);
    QVERIFY(store.context().writeDrafts());
    QCOMPARE(vfs.count(), 0);
    // Everything is drafted; the save must still wait for the disk.
    QVERIFY(store.context().save());
    QVERIFY(vfs.count() > 0);
}

QTEST_GUILESS_MAIN(tst_DraftWriter)

#include "tst_DraftWriter.moc"
