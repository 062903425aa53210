#include "Store/Objects/PendingEdits.h"

#include "TestJournal.h"

#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_PendingEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_store = std::make_unique<TestStore>();
        QVERIFY(m_store->open());
    }

    void addsUpTheEditsOfARecord()
    {
        const auto owner = m_store->addOwner(u"Ann"_s);
        PendingEdits edits;
        QVERIFY(edits.isEmpty());
        edits.addUpdated(*owner, 1);
        edits.addUpdated(*owner, 4);
        QCOMPARE(edits.recordCount(), 1);
        QCOMPARE(edits.columns(owner->objectID()), PropertyMask(5));
        QVERIFY(!edits.isNew(owner->objectID()));
        QCOMPARE(edits.columns({itemEntity, 999}), PropertyMask(0));
        edits.clear();
        QVERIFY(edits.isEmpty());
        QCOMPARE(edits.columns(owner->objectID()), PropertyMask(0));
    }

    void givesNewRecordsFirstAndEachAfterItsOwner()
    {
        const auto owner = m_store->addOwner(u"Ann"_s);
        const auto item = m_store->addItem(owner);
        const auto label = m_store->addLabel(u"red"_s);
        const auto part = item->parts().first();
        PendingEdits edits;
        edits.addUpdated(*label, 1);
        edits.addInserted(part);
        edits.addInserted(item);
        edits.addUpdated(*item, 1); // Is new all the same.
        edits.addInserted(owner);
        std::vector<ObjectID> order;
        for (const auto &edit : edits.recordsInWriteOrder())
            order.push_back(edit.object->objectID());
        const std::vector<ObjectID> expected{owner->objectID(), item->objectID(), part->objectID(),
                                             label->objectID()};
        QVERIFY(order == expected);
    }

    void holdsObjectsThatNobodyElseHolds()
    {
        PendingEdits edits;
        edits.addInserted(m_store->addLabel(u"red"_s));
        QVERIFY(m_store->context().save());
        QCOMPARE(liveObjectCount(), 1);
        edits.clear();
        QCOMPARE(liveObjectCount(), 0);
    }

    void knowsALinkByEitherEnd()
    {
        const ObjectModel &schema = m_store->container->model();
        const ToManyDescription &labels = schema.entity(itemEntity).toMany(Item::labelsProperty);
        const ToManyDescription &items = schema.entity(labelEntity).toMany(Label::itemsProperty);
        PendingEdits edits;
        edits.addLink(LinkKey::of(labels, 5, 8), true);
        edits.addLink(LinkKey::of(items, 8, 5), false);
        QCOMPARE(edits.links().size(), 1);
        QCOMPARE(edits.links().constBegin().value(), false);
        QVERIFY(edits.entities() != 0);
    }

private:
    std::unique_ptr<TestStore> m_store;
};

QTEST_GUILESS_MAIN(tst_PendingEdits)

#include "tst_PendingEdits.moc"
