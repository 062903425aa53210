#include "TestJournal.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_ManagedObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void awakensOnceFromInsertAndOncePerLoad();
    void storesTextsAsTheyAre_data();
    void storesTextsAsTheyAre();
    void storesMegabytes();
    void tellsMissingFromEmpty();
    void dropsDatesThatAreNotFinite();
    void notifiesOfEachChangeAtOnce();
    void saysNothingWhenNothingChanges();
    void notifiesBothEndsOfAToOne();
    void notifiesBothEndsOfAToMany();
    void relatesThroughEitherEnd();
    void unlinksOnlyWhatIsLinked();
    void seesRelationsThatAreNotWritten();
    void ignoresAToOneThatLeadsNowhere();
    void isOneObjectPerRecord();
    void isReadAndWrittenByKey();
    void allowsSettersInItsOwnSignals();
    void outlivesItsContext();
    void holdsPinnedObjects();

private:
    std::unique_ptr<TestStore> m_store;
};

void tst_ManagedObject::init()
{
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
}

void tst_ManagedObject::cleanup()
{
    m_store.reset();
    QCOMPARE(liveObjectCount(), 0);
}

void tst_ManagedObject::awakensOnceFromInsertAndOncePerLoad()
{
    ObjectID id;
    {
        const auto owner = m_store->addOwner(u"Ann"_s);
        id = owner->objectID();
        QCOMPARE(owner->awakenedFromInsert, 1);
        QCOMPARE(owner->awakened, 1);
        QVERIFY(m_store->context().writeDrafts());
    }
    const auto owner = m_store->context().object<Owner>(id);
    QCOMPARE(owner->awakenedFromInsert, 0);
    QCOMPARE(owner->awakened, 1);
    (void)owner->name();
    QCOMPARE(owner->awakened, 1);
}

void tst_ManagedObject::storesTextsAsTheyAre_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    const auto same = [](const char *name, const QString &text) {
        QTest::newRow(name) << text << text;
    };
    same("plain", u"Ann"_s);
    same("right-to-left", u"שלום"_s);
    same("combining", u"e\u0301"_s);
    same("emoji", u"👩‍👩‍👧"_s);
    same("with U+0000", u"a"_s + QChar(0) + u'b');
    same("only U+0000", QString(QChar(0)));
    same("quotes", u"it's \"so\"; DROP TABLE owner"_s);
    QTest::newRow("lone high surrogate") << QString(QChar(0xD83D)) + u'x' << u"\uFFFDx"_s;
    QTest::newRow("lone low surrogate") << QString(u"x"_s + QChar(0xDC00)) << u"x\uFFFD"_s;
    QTest::newRow("surrogates the wrong way round")
        << QString(QChar(0xDC00)) + QChar(0xD83D) << u"\uFFFD\uFFFD"_s;
}

void tst_ManagedObject::storesTextsAsTheyAre()
{
    QFETCH(QString, typed);
    QFETCH(QString, kept);
    ObjectID id;
    {
        const auto owner = m_store->addOwner(typed);
        id = owner->objectID();
        QCOMPARE(owner->name(), kept);
        QVERIFY(m_store->context().save());
    }
    QCOMPARE(m_store->context().object<Owner>(id)->name(), kept);
}

void tst_ManagedObject::storesMegabytes()
{
    const QString text = u"größer "_s.repeated(150'000);
    const auto owner = m_store->addOwner(text);
    const ObjectID id = owner->objectID();
    QVERIFY(m_store->context().save());
    QVERIFY(m_store->open());
    QVERIFY(m_store->context().object<Owner>(id)->name() == text);
}

void tst_ManagedObject::tellsMissingFromEmpty()
{
    const auto missing = m_store->addOwner(QString());
    const auto empty = m_store->addOwner(u""_s);
    QVERIFY(m_store->context().save());
    const ObjectID missingID = missing->objectID();
    const ObjectID emptyID = empty->objectID();
    QVERIFY(m_store->open());
    QVERIFY(m_store->context().object<Owner>(missingID)->name().isNull());
    const auto again = m_store->context().object<Owner>(emptyID);
    QVERIFY(!again->name().isNull());
    QCOMPARE(again->name().size(), 0);

    QSignalSpy changed(again.get(), &Owner::nameChanged);
    again->setName(QString());
    QVERIFY(again->name().isNull());
    QCOMPARE(changed.size(), 1);
}

void tst_ManagedObject::dropsDatesThatAreNotFinite()
{
    const auto item = m_store->addItem(nullptr);
    item->setDate(Date{5});
    item->setDate(Date{std::numeric_limits<double>::quiet_NaN()});
    QCOMPARE(item->date(), OptionalDate());
    item->setDate(Date{std::numeric_limits<double>::infinity()});
    QCOMPARE(item->date(), OptionalDate());
}

void tst_ManagedObject::notifiesOfEachChangeAtOnce()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QString seen;
    connect(owner.get(), &Owner::nameChanged, this, [&] { seen += owner->name() + u'|'; });
    owner->setName(u"Bea"_s);
    owner->setName(u"Cleo"_s);
    QCOMPARE(seen, u"Bea|Cleo|"_s);
}

void tst_ManagedObject::saysNothingWhenNothingChanges()
{
    const auto item = m_store->addItem(m_store->addOwner(u"Ann"_s));
    item->setDate(Date{5});
    QVERIFY(m_store->context().save());
    QSignalSpy date(item.get(), &Item::dateChanged);
    QSignalSpy owner(item.get(), &Item::ownerChanged);
    item->setDate(Date{5});
    item->setOwner(item->owner());
    QCOMPARE(date.size() + owner.size(), 0);
    QVERIFY(!m_store->context().hasChanges());
}

void tst_ManagedObject::notifiesBothEndsOfAToOne()
{
    const auto ann = m_store->addOwner(u"Ann"_s);
    const auto bea = m_store->addOwner(u"Bea"_s);
    const auto item = m_store->addItem(ann);
    QSignalSpy ofAnn(ann.get(), &Owner::itemsChanged);
    QSignalSpy ofBea(bea.get(), &Owner::itemsChanged);
    QSignalSpy ofItem(item.get(), &Item::ownerChanged);
    QObject::connect(ann.get(), &Owner::itemsChanged, this, [&] {
        // Both ends agree by the time anybody hears of it.
        QVERIFY(ann->itemIDs().empty());
        QCOMPARE(bea->itemIDs().size(), size_t(1));
        QCOMPARE(item->owner(), bea);
    });
    item->setOwner(bea);
    QCOMPARE(ofAnn.size(), 1);
    QCOMPARE(ofBea.size(), 1);
    QCOMPARE(ofItem.size(), 1);
    item->setOwner(nullptr);
    QCOMPARE(ofAnn.size(), 1);
    QCOMPARE(ofBea.size(), 2);
    QVERIFY(!item->owner());
}

void tst_ManagedObject::notifiesBothEndsOfAToMany()
{
    const auto item = m_store->addItem(nullptr);
    const auto label = m_store->addLabel(u"red"_s);
    QSignalSpy ofItem(item.get(), &Item::labelsChanged);
    QSignalSpy ofLabel(label.get(), &Label::itemsChanged);
    item->addRelated(Item::labelsProperty, *label);
    item->addRelated(Item::labelsProperty, *label);
    QCOMPARE(ofItem.size(), 1);
    QCOMPARE(ofLabel.size(), 1);
    label->removeRelated(Label::itemsProperty, *item);
    label->removeRelated(Label::itemsProperty, *item);
    QCOMPARE(ofItem.size(), 2);
    QCOMPARE(ofLabel.size(), 2);
}

void tst_ManagedObject::relatesThroughEitherEnd()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto item = m_store->addItem(nullptr);
    const auto label = m_store->addLabel(u"red"_s);
    owner->addRelated(Owner::itemsProperty, *item);
    QCOMPARE(item->owner(), owner);
    label->addRelated(Label::itemsProperty, *item);
    QCOMPARE(item->relatedIDs(Item::labelsProperty), std::vector{label->objectID()});
    QVERIFY(m_store->context().save());
    QCOMPARE(m_store->storedCount("item_label"), 1);

    owner->removeRelated(Owner::itemsProperty, *item);
    item->removeRelated(Item::labelsProperty, *label);
    QVERIFY(!item->owner());
    QVERIFY(m_store->context().save());
    QCOMPARE(m_store->storedCount("item_label"), 0);
    QCOMPARE(m_store->storedCount("item WHERE owner IS NULL"), 1);
}

void tst_ManagedObject::unlinksOnlyWhatIsLinked()
{
    const auto ann = m_store->addOwner(u"Ann"_s);
    const auto bea = m_store->addOwner(u"Bea"_s);
    const auto item = m_store->addItem(ann);
    bea->removeRelated(Owner::itemsProperty, *item);
    QCOMPARE(item->owner(), ann);
}

void tst_ManagedObject::seesRelationsThatAreNotWritten()
{
    ObjectID ownerID, itemID, labelID, otherID;
    {
        const auto owner = m_store->addOwner(u"Ann"_s);
        const auto item = m_store->addItem(owner);
        const auto label = m_store->addLabel(u"red"_s);
        item->addRelated(Item::labelsProperty, *label);
        ownerID = owner->objectID();
        itemID = item->objectID();
        labelID = label->objectID();
        otherID = m_store->addItem(nullptr)->objectID();
        QVERIFY(m_store->context().save());
    }
    // Read anew, with edits that the store does not have yet: the relations are right all the same.
    const auto item = m_store->context().object<Item>(itemID);
    const auto other = m_store->context().object<Item>(otherID);
    const auto label = m_store->context().object<Label>(labelID);
    const auto owner = m_store->context().object<Owner>(ownerID);
    item->setOwner(nullptr);
    other->setOwner(owner);
    item->removeRelated(Item::labelsProperty, *label);
    other->addRelated(Item::labelsProperty, *label);
    QCOMPARE(owner->itemIDs(), std::vector{otherID});
    QCOMPARE(label->relatedIDs(Label::itemsProperty), std::vector{otherID});
    QVERIFY(item->relatedIDs(Item::labelsProperty).empty());
    QCOMPARE(m_store->storedCount("item WHERE owner IS NOT NULL"), 1);
    QCOMPARE(std::get<qint64>(m_store->stored("SELECT id FROM item WHERE owner IS NOT NULL")),
             itemID.key);
}

void tst_ManagedObject::ignoresAToOneThatLeadsNowhere()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto item = m_store->addItem(owner);
    item->setValue(Item::ownerProperty, Value(qint64(123456)));
    QCOMPARE(item->owner(), owner);
    const auto gone = m_store->addOwner(u"Bea"_s);
    QVERIFY(m_store->context().deleteObject(gone));
    item->setOwner(gone);
    QCOMPARE(item->owner(), owner);
    QVERIFY(m_store->context().save());
}

void tst_ManagedObject::isOneObjectPerRecord()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto item = m_store->addItem(owner);
    QCOMPARE(item->owner().get(), owner.get());
    QCOMPARE(m_store->context().object(owner->objectID()).get(), owner.get());
    const auto found = m_store->context().fetch<Owner>({"Owner"});
    QVERIFY(found);
    QCOMPARE(found->first().get(), owner.get());
    QVERIFY(!m_store->context().object({ownerEntity, 999}));
    QVERIFY(!m_store->context().object({}));
}

void tst_ManagedObject::isReadAndWrittenByKey()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    QCOMPARE(owner->property("name").toString(), u"Ann"_s);
    QVERIFY(owner->setProperty("name", u"Bea"_s));
    QVERIFY(m_store->context().save());
    QCOMPARE(std::get<QString>(m_store->stored("SELECT name FROM owner")), u"Bea"_s);
}

void tst_ManagedObject::allowsSettersInItsOwnSignals()
{
    const auto ann = m_store->addOwner(u"ann"_s);
    const auto item = m_store->addItem(nullptr);
    connect(ann.get(), &Owner::nameChanged, this, [&] {
        ann->setName(ann->name().toUpper());
        item->setOwner(ann);
    });
    connect(item.get(), &Item::ownerChanged, this,
            [&] { QVERIFY(m_store->context().deleteObject(ann)); });
    ann->setName(u"bea"_s);
    QVERIFY(ann->isDeleted());
    QVERIFY(item->isDeleted());
    QCOMPARE(ann->name(), u"BEA"_s);
    QVERIFY(m_store->context().save());
    QCOMPARE(m_store->storedCount("owner") + m_store->storedCount("item")
                 + m_store->storedCount("part"),
             0);
}

void tst_ManagedObject::outlivesItsContext()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto item = m_store->addItem(owner);
    QSignalSpy changed(owner.get(), &Owner::nameChanged);
    m_store->close();
    QVERIFY(!owner->managedObjectContext());
    QVERIFY(!owner->isDeleted());
    QCOMPARE(owner->name(), u"Ann"_s);
    owner->setName(u"Bea"_s);
    item->setOwner(nullptr);
    owner->addRelated(Owner::itemsProperty, *item);
    QCOMPARE(owner->name(), u"Ann"_s);
    QVERIFY(!item->owner());
    QVERIFY(owner->itemIDs().empty());
    QCOMPARE(changed.size(), 0);
}

void tst_ManagedObject::holdsPinnedObjects()
{
    int called = 0;
    ObjectID id;
    {
        const auto item = m_store->addItem(nullptr);
        id = item->objectID();
        item->setOnDeletion([&] { ++called; });
        QVERIFY(m_store->context().save());
    }
    QCOMPARE(liveObjectCount(), 1);
    m_store->context().object<Item>(id)->setOnDeletion({});
    QCOMPARE(liveObjectCount(), 0);
    m_store->context().object<Item>(id)->setOnDeletion([&] { ++called; });
    QVERIFY(m_store->context().deleteObject(m_store->context().object(id)));
    QCOMPARE(called, 1);
    QCOMPARE(liveObjectCount(), 0);
}

QTEST_GUILESS_MAIN(tst_ManagedObject)

#include "tst_ManagedObject.moc"
