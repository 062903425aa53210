#include "Store/Objects/DeletionPlan.h"

#include "Store/File/Connection.h"
#include "Store/Rows/RowReader.h"
#include "TestJournal.h"

#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_DeletionPlan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_store = std::make_unique<TestStore>();
        QVERIFY(m_store->open());
        m_owner = m_store->addOwner(u"Ann"_s, 2);
        m_label = m_store->addLabel(u"red"_s);
        m_item = m_store->context().object<Item>(m_owner->itemIDs().front());
        m_item->addRelated(Item::labelsProperty, *m_label);
        QVERIFY(m_store->context().save());
        m_connection = std::move(
            *Connection::open(m_store->container->storeFile(), Connection::Mode::ReadWrite));
    }
    void cleanup()
    {
        m_owner.reset();
        m_label.reset();
        m_item.reset();
        m_connection.reset();
        m_store.reset();
    }

    void followsCascadesAndNamesTheirEndsByOwner()
    {
        const DeletionPlan plan = planOf({m_owner->objectID()});
        QCOMPARE(plan.keys(ownerEntity).size(), size_t(1));
        QCOMPARE(plan.keys(itemEntity).size(), size_t(2));
        QVERIFY(plan.contains(m_item->objectID()));
        QVERIFY(plan.keys(partEntity).empty());
        QVERIFY(plan.ownerColumn(partEntity));
        QCOMPARE(plan.ownerColumn(partEntity)->destination, int(itemEntity));
        QVERIFY(!plan.ownerColumn(itemEntity));
        // A link is no reason to go with it.
        QVERIFY(plan.keys(labelEntity).empty());
    }

    void namesByKeyWhatIsNamedAlready()
    {
        const auto part = m_item->parts().first();
        const DeletionPlan plan = planOf(
            {part->objectID(), m_item->objectID(), m_item->objectID()});
        QCOMPARE(plan.keys(itemEntity).size(), size_t(1));
        QCOMPARE(plan.keys(partEntity).size(), size_t(Item::partCount));
        QVERIFY(!plan.ownerColumn(partEntity));
    }

    void takesNothingElse()
    {
        const DeletionPlan plan = planOf({m_label->objectID()});
        QVERIFY(plan.contains(m_label->objectID()));
        QVERIFY(plan.keys(itemEntity).empty());
        QVERIFY(!plan.ownerColumn(partEntity));
    }

private:
    DeletionPlan planOf(const std::vector<ObjectID> &roots)
    {
        RowReader reader(m_schema, *m_connection);
        return *DeletionPlan::cascadingFrom(roots, m_schema, reader);
    }

    const ObjectModel m_schema = testModel();
    std::unique_ptr<TestStore> m_store;
    std::shared_ptr<Owner> m_owner;
    std::shared_ptr<Label> m_label;
    std::shared_ptr<Item> m_item;
    std::unique_ptr<Connection> m_connection;
};

QTEST_GUILESS_MAIN(tst_DeletionPlan)

#include "tst_DeletionPlan.moc"
