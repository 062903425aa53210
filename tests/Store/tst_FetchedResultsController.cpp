#include "TestJournal.h"

#include "Store/Results/FetchedResultsController.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

namespace {

using Type = RowChange::Type;

/// What a controller told, as text: "contentWillChange" and the like are brackets.
class Listener : public QObject
{
public:
    explicit Listener(FetchedResultsController &controller)
    {
        connect(&controller, &FetchedResultsController::contentWillChange, this,
                [this] { told += u'<'; });
        connect(&controller, &FetchedResultsController::objectDidChange, this,
                [this](const RowChange &change) {
                    const char16_t letters[] = u"IDMU";
                    told += QStringView(letters + int(change.type), 1)
                            + QString::number(change.row);
                    if (change.type == Type::Move)
                        told += QString(u'>' + QString::number(change.newRow));
                    told += u' ';
                });
        connect(&controller, &FetchedResultsController::contentDidChange, this,
                [this] { told += u'>'; });
    }

    QString take()
    {
        endTurn();
        return std::exchange(told, QString());
    }

    QString told;
};

} // namespace

class tst_FetchedResultsController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void hasNoRowsBeforeItFetches();
    void fetchesInOrder();
    void hasNoRowsAfterAFailure();
    void tellsOfInsertionsAndDeletions();
    void tellsOfMoves();
    void tellsOfUpdates();
    void staysSilentAboutWhatDoesNotMatter();
    void tellsOfChangedLinks();
    void tellsOfChangedRecordsBehindAPrefetchedRelationship();
    void tellsOfAllRowsWhenManyRecordsBehindChanged();
    void tellsOfRecordsThatMovedToAnotherOwner();
    void runsOncePerTurn();
    void followsUndo();
    void followsWhatAnotherContextSaved();
    void loadsRowsInBatches();
    void holdsOnlyWhatWasShownLast();
    void readsRowsTogetherWithWhatIsPrefetched();
    void knowsDeletedRowsUntilItIsTold();
    void surfacesEditsMadeWhileTelling();
    void survivesItsEndWhileTelling();
    void fetchesAgain();
    void outlivesTheContext();

private:
    ManagedObjectContext &context() { return m_store->context(); }
    FetchRequest itemsOf(const std::shared_ptr<Owner> &owner) const;
    std::shared_ptr<Item> addItem(const std::shared_ptr<Owner> &owner, double date);

    std::unique_ptr<TestStore> m_store;
};

void tst_FetchedResultsController::init()
{
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
}

FetchRequest tst_FetchedResultsController::itemsOf(const std::shared_ptr<Owner> &owner) const
{
    return {.entityName = "Item",
            .predicate = Predicate::fixed(u"owner == %@", {owner->objectID()}),
            .sortDescriptors = {{"date", false}},
            .relationshipKeyPathsForPrefetching = {"labels"}};
}

std::shared_ptr<Item> tst_FetchedResultsController::addItem(const std::shared_ptr<Owner> &owner,
                                                            double date)
{
    const auto item = m_store->addItem(owner);
    item->setDate(Date{date});
    return item;
}

void tst_FetchedResultsController::hasNoRowsBeforeItFetches()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2);
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QCOMPARE(controller.count(), 0);
    QVERIFY(controller.fetchedObjects()->isEmpty());
    addItem(owner, 1);
    QCOMPARE(listener.take(), QString());
}

void tst_FetchedResultsController::fetchesInOrder()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto second = addItem(owner, 2);
    const auto undated = m_store->addItem(owner);
    const auto first = addItem(owner, 3);
    addItem(m_store->addOwner(u"Ben"_s), 5);
    FetchedResultsController controller(context(), itemsOf(owner));
    QVERIFY(controller.performFetch());
    QCOMPARE(controller.count(), 3);
    QCOMPARE(controller.objectAt(0), first);
    QCOMPARE(controller.objectAt(1), second);
    QCOMPARE(controller.objectAt(2), undated);
    QCOMPARE(controller.idAt(1), second->objectID());
    QCOMPARE(controller.rowOf(undated->objectID()), 2);
    QCOMPARE(controller.rowOf(owner->objectID()), -1);
    QCOMPARE(*controller.fetchedObjects(),
             (QList<std::shared_ptr<ManagedObject>>{first, second, undated}));
}

void tst_FetchedResultsController::hasNoRowsAfterAFailure()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    for (const FetchRequest &request :
         {FetchRequest{.entityName = "Person"},
          FetchRequest{.entityName = "Item", .predicate = Predicate::fixed(u"colour == NULL", {})},
          FetchRequest{.entityName = "Item", .relationshipKeyPathsForPrefetching = {"owner"}}}) {
        FetchedResultsController controller(context(), request);
        Listener listener(controller);
        QVERIFY(!controller.performFetch());
        QCOMPARE(controller.count(), 0);
        addItem(owner, 1);
        QCOMPARE(listener.take(), QString());
    }
}

void tst_FetchedResultsController::tellsOfInsertionsAndDeletions()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto old = addItem(owner, 1);
    const auto middle = addItem(owner, 2);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    QCOMPARE(listener.take(), QString());

    const auto newest = addItem(owner, 3);
    QCOMPARE(listener.take(), u"<I0 >"_s);
    QCOMPARE(controller.objectAt(0), newest);

    QVERIFY(context().deleteObjects({old, middle}));
    addItem(owner, 4);
    QCOMPARE(listener.take(), u"<D2 D1 I0 >"_s);
    QCOMPARE(controller.count(), 2);

    QVERIFY(context().deleteObject(owner));
    QCOMPARE(listener.take(), u"<D1 D0 >"_s);
}

void tst_FetchedResultsController::tellsOfMoves()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto first = addItem(owner, 3);
    addItem(owner, 2);
    addItem(owner, 1);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    first->setDate(Date{0});
    QCOMPARE(listener.take(), u"<M0>2 U2 >"_s);
    QCOMPARE(controller.objectAt(2), first);
}

void tst_FetchedResultsController::tellsOfUpdates()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto first = addItem(owner, 3);
    addItem(owner, 2);
    const auto last = addItem(owner, 1);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    last->setFlag(1);
    first->setFlag(2);
    QCOMPARE(listener.take(), u"<U0 U2 >"_s);
    first->setDate(Date{3.5});
    QCOMPARE(listener.take(), u"<U0 >"_s);
}

void tst_FetchedResultsController::staysSilentAboutWhatDoesNotMatter()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto other = m_store->addOwner(u"Ben"_s);
    const auto item = addItem(owner, 1);
    const auto foreign = addItem(other, 1);
    const auto label = m_store->addLabel(u"red"_s);
    foreign->addRelated(Item::labelsProperty, *label);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    item->parts().first()->setContent(u"text"_s);
    owner->setName(u"Anna"_s);
    foreign->setFlag(1);
    addItem(other, 2);
    label->setName(u"green"_s);
    m_store->addLabel(u"blue"_s);
    QCOMPARE(listener.take(), QString());
}

void tst_FetchedResultsController::tellsOfChangedLinks()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    addItem(owner, 2);
    const auto item = addItem(owner, 1);
    const auto label = m_store->addLabel(u"red"_s);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    item->addRelated(Item::labelsProperty, *label);
    QCOMPARE(listener.take(), u"<U1 >"_s);
    label->removeRelated(Label::itemsProperty, *item);
    QCOMPARE(listener.take(), u"<U1 >"_s);
    item->addRelated(Item::labelsProperty, *label);
    QCOMPARE(listener.take(), u"<U1 >"_s);
    QVERIFY(context().deleteObject(label));
    QCOMPARE(listener.take(), u"<U1 >"_s);
}

void tst_FetchedResultsController::tellsOfChangedRecordsBehindAPrefetchedRelationship()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto label = m_store->addLabel(u"red"_s);
    for (const double date : {3, 2, 1})
        addItem(owner, date)
            ->addRelated(Item::labelsProperty, *(date == 2 ? m_store->addLabel(u"blue"_s) : label));
    endTurn();
    FetchRequest request = itemsOf(owner);
    FetchedResultsController controller(context(), request);
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    label->setName(u"green"_s);
    QCOMPARE(listener.take(), u"<U0 U2 >"_s);

    request.relationshipKeyPathsForPrefetching = {"parts"};
    FetchedResultsController withParts(context(), request);
    Listener partsListener(withParts);
    QVERIFY(withParts.performFetch());
    const auto middle = std::static_pointer_cast<Item>(withParts.objectAt(1));
    const auto part = middle->parts().first();
    part->setContent(u"text"_s);
    QCOMPARE(partsListener.take(), u"<U1 >"_s);
    part->setItem(withParts.objectAt(0));
    QCOMPARE(partsListener.take(), u"<U0 U1 >"_s);
    QVERIFY(context().deleteObject(part));
    QCOMPARE(partsListener.take(), u"<U0 >"_s);
    label->setName(u"yellow"_s);
    QCOMPARE(partsListener.take(), QString());
}

void tst_FetchedResultsController::tellsOfAllRowsWhenManyRecordsBehindChanged()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    addItem(owner, 2);
    addItem(owner, 1);
    QList<std::shared_ptr<Label>> labels;
    for (int i = 0; i < 100; ++i)
        labels.append(m_store->addLabel(QString::number(i)));
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    for (const auto &label : labels)
        label->setName(u"same"_s);
    QCOMPARE(listener.take(), u"<U0 U1 >"_s);
}

void tst_FetchedResultsController::tellsOfRecordsThatMovedToAnotherOwner()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto other = m_store->addOwner(u"Ben"_s);
    const auto item = addItem(owner, 1);
    addItem(owner, 2);
    endTurn();
    FetchedResultsController ofOwner(context(), itemsOf(owner));
    FetchedResultsController ofOther(context(), itemsOf(other));
    Listener ownerListener(ofOwner);
    Listener otherListener(ofOther);
    QVERIFY(ofOwner.performFetch());
    QVERIFY(ofOther.performFetch());
    item->setOwner(other);
    QCOMPARE(ownerListener.take(), u"<D1 >"_s);
    QCOMPARE(otherListener.take(), u"<I0 >"_s);
}

void tst_FetchedResultsController::runsOncePerTurn()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    for (int i = 0; i < 5; ++i)
        addItem(owner, i);
    QCOMPARE(controller.count(), 0);
    QCOMPARE(listener.take(), u"<I0 I1 I2 I3 I4 >"_s);
}

void tst_FetchedResultsController::followsUndo()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    auto item = addItem(owner, 1);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    const ObjectID id = item->objectID();
    QCOMPARE(controller.objectAt(0), item);
    QVERIFY(context().deleteObject(item));
    QCOMPARE(listener.take(), u"<D0 >"_s);
    m_store->undo().undo();
    QCOMPARE(listener.take(), u"<I0 >"_s);
    QCOMPARE(controller.idAt(0), id);
    QVERIFY(!controller.objectAt(0)->isDeleted());
}

void tst_FetchedResultsController::followsWhatAnotherContextSaved()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(context().save());
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    auto background = m_store->container->newBackgroundContext();
    QVERIFY(background);
    QObject::connect(m_store->container.get(), &PersistentContainer::contextDidSave, &context(),
                     [&](ManagedObjectContext *saved, const ChangeSet &changes) {
                         if (saved != &context())
                             context().mergeChanges(changes);
                     });
    const auto item = (*background)->insert<Item>();
    item->setOwner((*background)->object<Owner>(owner->objectID()));
    QVERIFY((*background)->save());
    QTRY_COMPARE(controller.count(), 1);
    QCOMPARE(listener.take(), u"<I0 >"_s);
    QCOMPARE(controller.idAt(0), item->objectID());
}

void tst_FetchedResultsController::loadsRowsInBatches()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 200);
    QVERIFY(context().save());
    endTurn();
    const int before = liveObjectCount();
    FetchedResultsController controller(context(), itemsOf(owner));
    QVERIFY(controller.performFetch());
    QCOMPARE(liveObjectCount(), before);
    QVERIFY(controller.objectAt(120));
    const int batch = liveObjectCount() - before;
    QVERIFY2(batch >= 20 && batch <= 100, qPrintable(QString::number(batch)));
    QVERIFY(controller.objectAt(121));
    QCOMPARE(liveObjectCount() - before, batch);
}

void tst_FetchedResultsController::holdsOnlyWhatWasShownLast()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 1000);
    QVERIFY(context().save());
    endTurn();
    const int before = liveObjectCount();
    FetchedResultsController controller(context(), itemsOf(owner));
    QVERIFY(controller.performFetch());
    for (int row = 0; row < controller.count(); ++row)
        QCOMPARE(controller.objectAt(row)->objectID(), controller.idAt(row));
    const int held = liveObjectCount() - before;
    QVERIFY2(held <= 250, qPrintable(QString::number(held)));
    QVERIFY(m_store->executeElsewhere("UPDATE item SET flag = 7"));
    QCOMPARE(context().object<Item>(controller.idAt(0))->flag(), 7); // Read anew.
    QCOMPARE(context().object<Item>(controller.idAt(999))->flag(), 0);
}

void tst_FetchedResultsController::readsRowsTogetherWithWhatIsPrefetched()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto label = m_store->addLabel(u"red"_s);
    for (int i = 0; i < 20; ++i)
        addItem(owner, i)->addRelated(Item::labelsProperty, *label);
    QVERIFY(context().save());
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    QVERIFY(controller.performFetch());
    QVERIFY(controller.objectAt(0));
    // What was read is not read again: what happens to the file behind our back is not seen.
    QVERIFY(m_store->executeElsewhere("UPDATE item SET flag = 7; DELETE FROM item_label"));
    for (int row = 0; row < controller.count(); ++row) {
        const auto item = std::static_pointer_cast<Item>(controller.objectAt(row));
        QCOMPARE(item->flag(), qint16(0));
        QCOMPARE(item->relatedIDs(Item::labelsProperty).size(), size_t(1));
    }
}

void tst_FetchedResultsController::knowsDeletedRowsUntilItIsTold()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto item = addItem(owner, 1);
    addItem(owner, 2);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    QVERIFY(controller.performFetch());
    QCOMPARE(controller.objectAt(1), item);
    QVERIFY(context().deleteObject(item));
    QCOMPARE(controller.count(), 2);
    QCOMPARE(controller.objectAt(1), item);
    QVERIFY(!controller.fetchedObjects()->contains(item));
    endTurn();
    QCOMPARE(controller.count(), 1);
}

void tst_FetchedResultsController::surfacesEditsMadeWhileTelling()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    int edits = 0;
    connect(&controller, &FetchedResultsController::objectDidChange, this, [&] {
        if (edits++ > 0)
            return;
        addItem(owner, 10);
        context().processPendingChanges();
    });
    addItem(owner, 1);
    addItem(owner, 2);
    QCOMPARE(listener.take(), u"<I0 I1 ><I0 >"_s);
    QCOMPARE(controller.count(), 3);
}

void tst_FetchedResultsController::survivesItsEndWhileTelling()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    endTurn();
    for (const bool atFirst : {true, false}) {
        auto controller = std::make_unique<FetchedResultsController>(context(), itemsOf(owner));
        QVERIFY(controller->performFetch());
        if (atFirst)
            connect(controller.get(), &FetchedResultsController::contentWillChange, this,
                    [&] { controller.reset(); });
        else
            connect(controller.get(), &FetchedResultsController::objectDidChange, this,
                    [&] { controller.reset(); });
        addItem(owner, 1);
        addItem(owner, 2);
        endTurn();
        QVERIFY(!controller);
    }
}

void tst_FetchedResultsController::fetchesAgain()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    endTurn();
    FetchedResultsController controller(context(), itemsOf(owner));
    Listener listener(controller);
    QVERIFY(controller.performFetch());
    addItem(owner, 1);
    QVERIFY(controller.performFetch());
    QCOMPARE(controller.count(), 2);
    QVERIFY(!listener.take().contains(u'I'));
    addItem(owner, 2);
    QCOMPARE(listener.take(), u"<I0 >"_s);
}

void tst_FetchedResultsController::outlivesTheContext()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 3);
    FetchedResultsController controller(context(), itemsOf(owner));
    QVERIFY(controller.performFetch());
    m_store->close();
    QCOMPARE(controller.count(), 3);
    QVERIFY(!controller.objectAt(0));
    QVERIFY(controller.fetchedObjects()->isEmpty());
    QVERIFY(!controller.performFetch());
    QCOMPARE(controller.count(), 0);
}

QTEST_GUILESS_MAIN(tst_FetchedResultsController)
#include "tst_FetchedResultsController.moc"
