#include "TestJournal.h"

#include "Store/Results/FetchedResultsModel.h"

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

namespace {

class FlagModel : public FetchedResultsModel
{
public:
    using FetchedResultsModel::FetchedResultsModel;

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::DisplayRole)
            return {};
        const auto item = std::static_pointer_cast<Item>(objectAt(index.row()));
        return item ? QVariant(item->flag()) : QVariant();
    }
};

} // namespace

class tst_FetchedResultsModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsTheRowsOfItsResults();
    void insertsRunsOfRowsTogether();
    void removesRunsOfRowsTogether();
    void movesARow();
    void movesSeveralRows();
    void updatesRunsOfRowsTogether();
    void keepsSelections();
    void changesTheLayoutBeyondManySteps();
    void showsDataOfTheRowsThatViewsKnow();
    void takesOtherResults();
    void isEmptyWhenItsResultsGo();
    void mayBeGivenOtherResultsWhileTelling();
    void followsAnyChange();
    void loadsNothingThatIsNotShown();

private:
    std::shared_ptr<Item> addItem(double date);
    QList<double> shownDates() const;
    void show();

    std::unique_ptr<TestStore> m_store;
    std::shared_ptr<Owner> m_owner;
    std::unique_ptr<FetchedResultsController> m_results;
    std::unique_ptr<FlagModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

void tst_FetchedResultsModel::init()
{
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
    m_owner = m_store->addOwner(u"Ann"_s);
}

void tst_FetchedResultsModel::cleanup()
{
    m_tester.reset();
    m_model.reset();
    m_results.reset();
    m_owner.reset();
}

std::shared_ptr<Item> tst_FetchedResultsModel::addItem(double date)
{
    const auto item = m_store->addItem(m_owner);
    item->setDate(Date{date});
    return item;
}

void tst_FetchedResultsModel::show()
{
    endTurn();
    m_results = std::make_unique<FetchedResultsController>(
        m_store->context(),
        FetchRequest{.entityName = "Item",
                     .predicate = Predicate::fixed(u"owner == %@", {m_owner->objectID()}),
                     .sortDescriptors = {{"date", true}}});
    QVERIFY(m_results->performFetch());
    m_model = std::make_unique<FlagModel>();
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_model->setResultsController(m_results.get());
}

QList<double> tst_FetchedResultsModel::shownDates() const
{
    QList<double> dates;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const auto date = std::static_pointer_cast<Item>(m_model->objectAt(row))->date();
        dates.append(date ? date->secondsSinceReferenceDate : -1);
    }
    return dates;
}

void tst_FetchedResultsModel::showsTheRowsOfItsResults()
{
    FlagModel empty;
    QCOMPARE(empty.rowCount(), 0);
    const auto second = addItem(2);
    const auto first = addItem(1);
    first->setFlag(7);
    show();
    QCOMPARE(shownDates(), (QList<double>{1, 2}));
    QCOMPARE(m_model->index(0).data().toInt(), 7);
    QCOMPARE(m_model->idAt(1), second->objectID());
    QCOMPARE(m_model->rowOf(second->objectID()), 1);
    QCOMPARE(m_model->rowOf(m_owner->objectID()), -1);
    QCOMPARE(m_model->resultsController(), m_results.get());
}

void tst_FetchedResultsModel::insertsRunsOfRowsTogether()
{
    addItem(10);
    show();
    QSignalSpy inserted(m_model.get(), &QAbstractItemModel::rowsInserted);
    for (const double date : {1, 2, 3, 11})
        addItem(date);
    endTurn();
    QCOMPARE(shownDates(), (QList<double>{1, 2, 3, 10, 11}));
    QCOMPARE(inserted.size(), 2);
    QCOMPARE(inserted.at(0).at(1).toInt(), 0);
    QCOMPARE(inserted.at(0).at(2).toInt(), 2);
    QCOMPARE(inserted.at(1).at(1).toInt(), 4);
}

void tst_FetchedResultsModel::removesRunsOfRowsTogether()
{
    QList<std::shared_ptr<ManagedObject>> items;
    for (int i = 0; i < 6; ++i)
        items.append(addItem(i));
    show();
    QSignalSpy removed(m_model.get(), &QAbstractItemModel::rowsRemoved);
    QVERIFY(m_store->context().deleteObjects({items.at(1), items.at(2), items.at(4)}));
    endTurn();
    QCOMPARE(shownDates(), (QList<double>{0, 3, 5}));
    QCOMPARE(removed.size(), 2);
    QCOMPARE(removed.at(0).at(1).toInt(), 4);
    QCOMPARE(removed.at(1).at(1).toInt(), 1);
    QCOMPARE(removed.at(1).at(2).toInt(), 2);
}

void tst_FetchedResultsModel::movesARow()
{
    const auto item = addItem(1);
    addItem(2);
    addItem(3);
    show();
    QSignalSpy moved(m_model.get(), &QAbstractItemModel::rowsMoved);
    item->setDate(Date{5});
    endTurn();
    QCOMPARE(shownDates(), (QList<double>{2, 3, 5}));
    QCOMPARE(moved.size(), 1);
    item->setDate(Date{0});
    endTurn();
    QCOMPARE(shownDates(), (QList<double>{0, 2, 3}));
    QCOMPARE(moved.size(), 2);
}

/// A row that is yet to move down stands in the way of those that move before it.
void tst_FetchedResultsModel::movesSeveralRows()
{
    const auto downwards = addItem(1);
    addItem(2);
    addItem(3);
    const auto upwards = addItem(4);
    show();
    QSignalSpy reset(m_model.get(), &QAbstractItemModel::modelReset);
    downwards->setDate(Date{9});
    upwards->setDate(Date{2.5});
    addItem(2.2);
    endTurn();
    QCOMPARE(shownDates(), (QList<double>{2, 2.2, 2.5, 3, 9}));
    QCOMPARE(reset.size(), 0);
}

void tst_FetchedResultsModel::updatesRunsOfRowsTogether()
{
    QList<std::shared_ptr<Item>> items;
    for (int i = 0; i < 5; ++i)
        items.append(addItem(i));
    show();
    QSignalSpy updated(m_model.get(), &QAbstractItemModel::dataChanged);
    for (const int row : {0, 1, 3})
        items.at(row)->setFlag(qint16(row + 5));
    endTurn();
    QCOMPARE(updated.size(), 2);
    QCOMPARE(updated.at(0).at(0).toModelIndex().row(), 0);
    QCOMPARE(updated.at(0).at(1).toModelIndex().row(), 1);
    QCOMPARE(updated.at(1).at(0).toModelIndex().row(), 3);
    QCOMPARE(m_model->index(3).data().toInt(), 8);
    updated.clear();
    m_model->refresh(2);
    m_model->refreshAll();
    m_model->refresh(-1);
    m_model->refresh(5);
    QCOMPARE(updated.size(), 2);
}

void tst_FetchedResultsModel::keepsSelections()
{
    const auto first = addItem(1);
    const auto second = addItem(2);
    const auto third = addItem(3);
    show();
    QItemSelectionModel selection(m_model.get());
    selection.select(m_model->index(1), QItemSelectionModel::Select);
    const QPersistentModelIndex onThird = m_model->index(2);
    addItem(0);
    second->setDate(Date{10});
    QVERIFY(m_store->context().deleteObject(first));
    endTurn();
    QCOMPARE(selection.selectedIndexes().size(), 1);
    QCOMPARE(m_model->idAt(selection.selectedIndexes().first().row()), second->objectID());
    QCOMPARE(m_model->idAt(onThird.row()), third->objectID());
}

void tst_FetchedResultsModel::changesTheLayoutBeyondManySteps()
{
    const auto gone = addItem(-1);
    const auto kept = addItem(5000);
    show();
    QSignalSpy layout(m_model.get(), &QAbstractItemModel::layoutChanged);
    QSignalSpy inserted(m_model.get(), &QAbstractItemModel::rowsInserted);
    const QPersistentModelIndex onKept = m_model->index(1);
    const QPersistentModelIndex onGone = m_model->index(0);
    for (int i = 0; i < 600; ++i)
        addItem(i);
    QVERIFY(m_store->context().deleteObject(gone));
    endTurn();
    QCOMPARE(m_model->rowCount(), 601);
    QCOMPARE(layout.size(), 1);
    QCOMPARE(inserted.size(), 0);
    QCOMPARE(onKept.row(), 600);
    QVERIFY(!onGone.isValid());
    QCOMPARE(m_model->objectAt(600), kept);
}

void tst_FetchedResultsModel::showsDataOfTheRowsThatViewsKnow()
{
    QList<std::shared_ptr<ManagedObject>> items;
    for (int i = 0; i < 4; ++i) {
        items.append(addItem(i));
        std::static_pointer_cast<Item>(items.last())->setFlag(qint16(i + 1));
    }
    show();
    int steps = 0;
    const auto check = [&] {
        ++steps;
        for (int row = 0; row < m_model->rowCount(); ++row) {
            const auto item = std::static_pointer_cast<Item>(m_model->objectAt(row));
            QVERIFY(!item || item->objectID() == m_model->idAt(row));
            if (item && !item->isDeleted())
                QCOMPARE(m_model->index(row).data().toInt(), int(item->flag()));
        }
    };
    connect(m_model.get(), &QAbstractItemModel::rowsAboutToBeRemoved, this, check);
    connect(m_model.get(), &QAbstractItemModel::rowsRemoved, this, check);
    connect(m_model.get(), &QAbstractItemModel::rowsInserted, this, check);
    QVERIFY(m_store->context().deleteObjects({items.at(0), items.at(2)}));
    addItem(7);
    addItem(0.5);
    endTurn();
    QCOMPARE(steps, 6);
    QCOMPARE(shownDates(), (QList<double>{0.5, 1, 3, 7}));
}

void tst_FetchedResultsModel::takesOtherResults()
{
    addItem(1);
    show();
    const auto other = m_store->addOwner(u"Ben"_s, 3);
    endTurn();
    FetchedResultsController others(
        m_store->context(),
        {.entityName = "Item", .predicate = Predicate::fixed(u"owner == %@", {other->objectID()})});
    QVERIFY(others.performFetch());
    m_model->setResultsController(&others);
    QCOMPARE(m_model->rowCount(), 3);
    addItem(2);
    endTurn();
    QCOMPARE(m_model->rowCount(), 3);
    m_model->setResultsController(nullptr);
    QCOMPARE(m_model->rowCount(), 0);
}

void tst_FetchedResultsModel::isEmptyWhenItsResultsGo()
{
    addItem(1);
    show();
    QCOMPARE(m_model->rowCount(), 1);
    m_results.reset();
    QCOMPARE(m_model->rowCount(), 0);
    QVERIFY(!m_model->resultsController());
}

void tst_FetchedResultsModel::mayBeGivenOtherResultsWhileTelling()
{
    const auto first = addItem(1);
    show();
    connect(m_model.get(), &QAbstractItemModel::rowsRemoved, m_model.get(),
            [this] { m_model->setResultsController(nullptr); });
    QVERIFY(m_store->context().deleteObject(first));
    addItem(2);
    addItem(4);
    endTurn();
    QCOMPARE(m_model->rowCount(), 0);
}

void tst_FetchedResultsModel::followsAnyChange()
{
    QRandomGenerator random(3);
    QList<std::shared_ptr<Item>> items;
    for (int i = 0; i < 10; ++i)
        items.append(addItem(random.bounded(20)));
    show();
    for (int round = 0; round < 150; ++round) {
        for (int edit = random.bounded(5); edit >= 0; --edit) {
            const int choice = items.isEmpty() ? 0 : random.bounded(4);
            const qsizetype chosen = items.isEmpty() ? 0 : random.bounded(int(items.size()));
            if (choice == 0)
                items.append(addItem(random.bounded(20)));
            else if (choice == 1)
                QVERIFY(m_store->context().deleteObject(items.takeAt(chosen)));
            else
                items.at(chosen)->setDate(Date{double(random.bounded(20))});
        }
        endTurn();
        QList<double> expected;
        for (const auto &item : items)
            expected.append(item->date()->secondsSinceReferenceDate);
        std::sort(expected.begin(), expected.end());
        QCOMPARE(shownDates(), expected);
        for (int row = 0; row < m_model->rowCount(); ++row)
            QCOMPARE(m_model->idAt(row), m_results->idAt(row));
    }
}

void tst_FetchedResultsModel::loadsNothingThatIsNotShown()
{
    for (int i = 0; i < 10000; ++i)
        addItem(i);
    show();
    m_tester.reset();
    QCOMPARE(m_model->rowCount(), 10000);
    const int before = liveObjectCount();
    addItem(4999.5);
    endTurn();
    QCOMPARE(m_model->rowCount(), 10001);
    // The new item was written before the results were fetched again, so nobody holds it either.
    QCOMPARE(liveObjectCount(), before);
}

QTEST_GUILESS_MAIN(tst_FetchedResultsModel)
#include "tst_FetchedResultsModel.moc"
