#include "Store/Rows/KeyRanges.h"
#include "TestJournal.h"

#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

/// Undoing an import: deleting what a background context inserted.
class tst_KeyRangeDeleter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_store = std::make_unique<TestStore>();
        QVERIFY(m_store->open());
    }
    void cleanup()
    {
        m_store.reset();
        QCOMPARE(liveObjectCount(), 0);
    }

    void deletesExactlyWhatWasInserted()
    {
        const auto label = m_store->addLabel(u"mine"_s);
        m_store->addItem(m_store->addOwner(u"Ann"_s))->addRelated(Item::labelsProperty, *label);
        QVERIFY(m_store->context().save());
        const QByteArray before = dumpStore(m_store->container->storeFile());
        const KeyRanges keys = insertMany();
        QVERIFY(dumpStore(m_store->container->storeFile()) != before);
        QVERIFY(deleteAgain(keys));
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
    }

    void keepsAnOwnerThatGotMore()
    {
        const KeyRanges keys = insertMany();
        const auto owner = m_store->context().object<Owner>({ownerEntity, m_owner});
        const auto mine = m_store->addItem(owner);
        QVERIFY(m_store->context().save());
        QVERIFY(deleteAgain(keys));
        QCOMPARE(m_store->storedCount("owner"), 1);
        QCOMPARE(m_store->storedCount("item"), 1);
        QCOMPARE(mine->owner(), owner);
    }

    void keepsALabelThatIsUsedElsewhere()
    {
        const KeyRanges keys = insertMany();
        const auto label = m_store->context().object<Label>({labelEntity, m_label});
        m_store->addItem(nullptr)->addRelated(Item::labelsProperty, *label);
        QVERIFY(m_store->context().save());
        QVERIFY(deleteAgain(keys));
        QCOMPARE(m_store->storedCount("label"), 1);
        QCOMPARE(m_store->storedCount("item_label"), 1);
        QCOMPARE(m_store->storedCount("item"), 1);
        QCOMPARE(m_store->storedCount("owner"), 0);
    }

    void deletesWhatWasEditedButNotWhatLiesBetween()
    {
        auto context = std::move(*m_store->container->newBackgroundContext());
        context->insert<Item>()->setFlag(1);
        const auto between = m_store->addLabel(u"mine"_s); // Its key lies among theirs.
        context->insert<Item>();
        QCOMPARE(context->insertedKeys().ranges().size(), size_t(2));
        const KeyRanges keys = context->insertedKeys();
        QVERIFY(context->save());
        context.reset();
        QVERIFY(m_store->context().save());
        QVERIFY(m_store->executeElsewhere("UPDATE item SET flag = 7"));
        QVERIFY(deleteAgain(keys));
        QCOMPARE(m_store->storedCount("item"), 0);
        QCOMPARE(m_store->storedCount("part"), 0);
        QCOMPARE(m_store->storedCount("label"), 1);
        QVERIFY(!between->isDeleted());
    }

    void changesNothingWhenItIsCancelled()
    {
        const KeyRanges keys = insertMany();
        const QByteArray before = dumpStore(m_store->container->storeFile());
        for (int steps = 0; steps < 4; ++steps) {
            auto context = std::move(*m_store->container->newBackgroundContext());
            int left = steps;
            QVERIFY(!context->deleteInserted(keys, [&](double) { return left-- > 0; }));
            QVERIFY(!context->save());
        }
        QCOMPARE(dumpStore(m_store->container->storeFile()), before);
        QVERIFY(deleteAgain(keys));
        QCOMPARE(m_store->storedCount("item"), 0);
    }

    void deletesAgainWhatIsGone()
    {
        const KeyRanges keys = insertMany();
        QVERIFY(deleteAgain(keys));
        QVERIFY(deleteAgain(keys));
        QCOMPARE(m_store->storedCount("item"), 0);
    }

private:
    /// An owner with 20 items of a label, all inserted by a background context.
    KeyRanges insertMany()
    {
        auto context = std::move(*m_store->container->newBackgroundContext());
        const auto owner = context->insert<Owner>();
        const auto label = context->insert<Label>();
        for (int i = 0; i < 20; ++i) {
            const auto item = context->insert<Item>();
            item->setOwner(owner);
            item->addRelated(Item::labelsProperty, *label);
        }
        m_owner = owner->objectID().key;
        m_label = label->objectID().key;
        const bool saved = context->save().has_value();
        return saved ? context->insertedKeys() : KeyRanges();
    }

    bool deleteAgain(const KeyRanges &keys)
    {
        auto context = std::move(*m_store->container->newBackgroundContext());
        return !keys.isEmpty()
               && context->deleteInserted(keys, [](double) { return true; }).has_value()
               && context->save().has_value();
    }

    std::unique_ptr<TestStore> m_store;
    qint64 m_owner = 0;
    qint64 m_label = 0;
};

QTEST_GUILESS_MAIN(tst_KeyRangeDeleter)

#include "tst_KeyRangeDeleter.moc"
