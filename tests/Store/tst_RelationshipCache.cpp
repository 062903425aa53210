#include "Store/Objects/RelationshipCache.h"

#include "Store/File/Connection.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Rows/RowReader.h"
#include "TestJournal.h"

#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

using Keys = std::vector<qint64>;

class tst_RelationshipCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_store = std::make_unique<TestStore>();
        QVERIFY(m_store->open());
        m_ann = m_store->addOwner(u"Ann"_s, 2);
        m_bea = m_store->addOwner(u"Bea"_s);
        m_label = m_store->addLabel(u"red"_s);
        m_item = m_store->context().object<Item>(m_ann->itemIDs().front());
        m_item->addRelated(Item::labelsProperty, *m_label);
        QVERIFY(m_store->context().save());
        m_connection = std::move(
            *Connection::open(m_store->container->storeFile(), Connection::Mode::ReadWrite));
        m_reader = std::make_unique<RowReader>(m_schema, *m_connection);
        m_edits = std::make_unique<PendingEdits>();
        m_cache = std::make_unique<RelationshipCache>(m_schema, *m_reader, *m_edits);
    }
    void cleanup()
    {
        m_cache.reset();
        m_edits.reset();
        m_reader.reset();
        m_connection.reset();
        m_ann.reset();
        m_bea.reset();
        m_label.reset();
        m_item.reset();
        m_store.reset();
    }

    void readsARelationshipOnce()
    {
        const ObjectID ann = m_ann->objectID();
        QVERIFY(!m_cache->isCached(ann, Owner::itemsProperty));
        const Keys all = keysOf(m_ann->itemIDs());
        QCOMPARE(*m_cache->keys(ann, items()), all);
        QVERIFY(m_store->executeElsewhere("UPDATE item SET owner = NULL"));
        QCOMPARE(*m_cache->keys(ann, items()), all);
        QVERIFY(m_cache->forget(ann, Owner::itemsProperty));
        QVERIFY(!m_cache->forget(ann, Owner::itemsProperty));
        QVERIFY(m_cache->keys(ann, items())->empty());
    }

    void readsSeveralOwnersTogether()
    {
        const std::vector<qint64> owners{m_ann->objectID().key, m_bea->objectID().key};
        QVERIFY(m_cache->read(items(), owners));
        QVERIFY(m_cache->isCached(m_bea->objectID(), Owner::itemsProperty));
        QCOMPARE(m_cache->keys(m_ann->objectID(), items())->size(), size_t(2));
        QVERIFY(m_cache->keys(m_bea->objectID(), items())->empty());
    }

    void laysPendingToOnesOverWhatItReads()
    {
        m_item->setOwner(m_bea);
        m_edits->addUpdated(*m_item, propertyBit(Item::ownerProperty));
        const qint64 key = m_item->objectID().key;
        QCOMPARE(*m_cache->keys(m_bea->objectID(), items()), Keys{key});
        QCOMPARE(m_cache->keys(m_ann->objectID(), items())->size(), size_t(1));
    }

    void laysPendingLinksOverWhatItReads()
    {
        const ObjectID label = m_label->objectID();
        const ObjectID other{itemEntity, m_ann->itemIDs().back().key};
        m_edits->addLink(LinkKey::of(labelled(), label.key, m_item->objectID().key), false);
        m_edits->addLink(LinkKey::of(labelled(), label.key, other.key), true);
        QVERIFY(m_cache->isLinked(label, labelled(), other));
        QVERIFY(!m_cache->isLinked(label, labelled(), m_item->objectID()));
        QCOMPARE(*m_cache->keys(label, labelled()), Keys{other.key});
        // From the other end, too.
        const ToManyDescription &labels = m_schema.entity(itemEntity).toMany(Item::labelsProperty);
        QCOMPARE(*m_cache->keys(other, labels), Keys{label.key});
        QVERIFY(m_cache->keys(m_item->objectID(), labels)->empty());
    }

    void bringsOnlyCachedRelationshipsUpToDate()
    {
        const ObjectID bea = m_bea->objectID();
        m_cache->setRelated(bea, Owner::itemsProperty, 900, true);
        QVERIFY(!m_cache->isCached(bea, Owner::itemsProperty));
        QVERIFY(m_cache->keys(bea, items())->empty());
        m_cache->setRelated(bea, Owner::itemsProperty, 900, true);
        m_cache->setRelated(bea, Owner::itemsProperty, Keys{950, 800, 900}, true);
        QCOMPARE(*m_cache->keys(bea, items()), (Keys{800, 900, 950}));
        m_cache->setRelated(bea, Owner::itemsProperty, Keys{950, 1, 800}, false);
        m_cache->setRelated(bea, Owner::itemsProperty, 1, false);
        QCOMPARE(*m_cache->keys(bea, items()), Keys{900});
    }

    void knowsThatANewRecordHasNoRelatives()
    {
        const ObjectID fresh{itemEntity, 999};
        m_cache->insertEmpty(fresh);
        QVERIFY(m_cache->isCached(fresh, Item::partsProperty));
        QVERIFY(m_cache->isCached(fresh, Item::labelsProperty));
        m_cache->forget(fresh);
        QVERIFY(!m_cache->isCached(fresh, Item::partsProperty));
    }

private:
    const ToManyDescription &items() const
    {
        return m_schema.entity(ownerEntity).toMany(Owner::itemsProperty);
    }
    const ToManyDescription &labelled() const
    {
        return m_schema.entity(labelEntity).toMany(Label::itemsProperty);
    }
    static Keys keysOf(const std::vector<ObjectID> &ids)
    {
        Keys keys;
        for (const ObjectID id : ids)
            keys.push_back(id.key);
        return keys;
    }

    const ObjectModel m_schema = testModel();
    std::unique_ptr<TestStore> m_store;
    std::shared_ptr<Owner> m_ann;
    std::shared_ptr<Owner> m_bea;
    std::shared_ptr<Label> m_label;
    std::shared_ptr<Item> m_item;
    std::unique_ptr<Connection> m_connection;
    std::unique_ptr<RowReader> m_reader;
    std::unique_ptr<PendingEdits> m_edits;
    std::unique_ptr<RelationshipCache> m_cache;
};

QTEST_GUILESS_MAIN(tst_RelationshipCache)

#include "tst_RelationshipCache.moc"
