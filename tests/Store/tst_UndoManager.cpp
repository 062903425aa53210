#include "TestJournal.h"

#include "Store/File/Connection.h"
#include "Store/File/Transaction.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_UndoManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void takesBackAnEdit();
    void takesBackATurnAsOneStep();
    void takesBackAGroupAsOneStep();
    void takesBackAnInsertion();
    void takesBackADeletion();
    void takesBackLinks();
    void dividesTypingIntoWords();
    void dividesTypingWhereSomethingElseIsDone();
    void worksAfterASave();
    void forgetsRedoAfterAnEdit();
    void showsTheRecordFirst();
    void showsTheOwnerOfARecordThatComesOrGoes();
    void keepsEditsMadeWhileShowing();
    void recordsNothingWhileSuspended();
    void skipsRecordsThatAreGone();
    void keepsTheStepWhenTheStoreFails();
    void remembersABoundedNumberOfSteps();
    void notifiesLikeAnyOtherChange();
    void goesBackAndForth();

private:
    ManagedObjectContext &context() { return m_store->context(); }
    UndoManager &undo() { return m_store->undo(); }
    QByteArray dump()
    {
        [&] { QVERIFY(context().writeDrafts()); }();
        return dumpStore(m_store->container->storeFile());
    }
    /// What was done so far is saved; from here on it is recorded.
    void settle()
    {
        QVERIFY(context().save());
        endTurn();
        m_setup.reset();
    }
    /// Each text is there for a turn of its own, some time after the one before.
    void type(const std::shared_ptr<Owner> &owner, const QStringList &texts)
    {
        for (const QString &text : texts) {
            m_store->clock.advance(0.1);
            owner->setName(text);
            endTurn();
        }
    }

    std::unique_ptr<TestStore> m_store;
    std::unique_ptr<UndoManager::Suspension> m_setup; ///< Until settle().
};

void tst_UndoManager::init()
{
    m_setup.reset();
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
    m_setup = std::make_unique<UndoManager::Suspension>(undo());
}

void tst_UndoManager::takesBackAnEdit()
{
    const auto item = m_store->addItem(nullptr);
    settle();
    QVERIFY(!undo().canUndo());
    item->setFlag(3);
    QVERIFY(undo().canUndo());
    QVERIFY(!undo().canRedo());
    undo().undo();
    QCOMPARE(item->flag(), 0);
    QVERIFY(!undo().canUndo());
    QVERIFY(undo().canRedo());
    undo().redo();
    QCOMPARE(item->flag(), 3);
    QVERIFY(undo().canUndo());
    QVERIFY(!undo().canRedo());
    undo().redo();
    QCOMPARE(item->flag(), 3);
}

void tst_UndoManager::takesBackATurnAsOneStep()
{
    const auto item = m_store->addItem(nullptr);
    const auto owner = m_store->addOwner(u"Ann"_s);
    settle();
    item->setFlag(1);
    item->setFlag(2);
    owner->setName(u"Bea"_s);
    item->setOwner(owner);
    endTurn();
    item->setFlag(3);
    endTurn();
    undo().undo();
    QCOMPARE(item->flag(), 2);
    undo().undo();
    QCOMPARE(item->flag(), 0);
    QCOMPARE(owner->name(), u"Ann"_s);
    QVERIFY(!item->owner());
    QVERIFY(owner->itemIDs().empty());
    QVERIFY(!undo().canUndo());
}

void tst_UndoManager::takesBackAGroupAsOneStep()
{
    const auto item = m_store->addItem(nullptr);
    settle();
    undo().beginGroup();
    item->setFlag(1);
    endTurn();
    undo().beginGroup();
    item->setDate(Date{5});
    undo().endGroup();
    endTurn();
    item->setFlag(2);
    undo().undo(); // Not in the middle of a group.
    QCOMPARE(item->flag(), 2);
    undo().endGroup();
    undo().beginGroup();
    undo().endGroup();
    undo().undo();
    QCOMPARE(item->flag(), 0);
    QCOMPARE(item->date(), OptionalDate());
    QVERIFY(!undo().canUndo());
}

void tst_UndoManager::takesBackAnInsertion()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    settle();
    const QByteArray before = dump();
    const auto item = m_store->addItem(owner);
    const ObjectID id = item->objectID();
    item->setFlag(3);
    endTurn();
    item->parts().first()->setContent(u"text"_s);
    endTurn();
    const QByteArray after = dump();
    undo().undo();
    undo().undo();
    QCOMPARE(dump(), before);
    QVERIFY(item->isDeleted());
    QVERIFY(owner->itemIDs().empty());
    QVERIFY(!undo().canUndo());
    undo().redo();
    undo().redo();
    QCOMPARE(dump(), after);
    const auto again = context().object<Item>(id);
    QVERIFY(again);
    QCOMPARE(again->flag(), 3);
    QCOMPARE(again->awakenedFromInsert, 0);
    QCOMPARE(again->awakened, 1);
    QCOMPARE(owner->itemIDs(), std::vector{id});
}

void tst_UndoManager::takesBackADeletion()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 3);
    const auto label = m_store->addLabel(u"red"_s);
    const auto item = context().object<Item>(owner->itemIDs().at(1));
    item->addRelated(Item::labelsProperty, *label);
    item->setDate(Date{-0.1});
    item->parts().at(1)->setContent(u""_s);
    // As a text that begins with a byte order mark is.
    const QString content = QChar(QChar::ByteOrderMark) + u"a"_s + QChar(0) + u"😀";
    item->parts().at(2)->setContent(content);
    settle();
    const QByteArray before = dump();
    const auto ids = owner->itemIDs();
    QVERIFY(context().deleteObject(owner));
    endTurn();
    const QByteArray after = dump();
    QVERIFY(before != after);
    QSignalSpy labelled(label.get(), &Label::itemsChanged);
    undo().undo();
    QCOMPARE(dump(), before);
    QCOMPARE(labelled.size(), 1);
    QCOMPARE(label->relatedIDs(Label::itemsProperty), std::vector{item->objectID()});
    const auto again = context().object<Owner>(owner->objectID());
    QVERIFY(again && again != owner);
    QVERIFY(owner->isDeleted());
    QCOMPARE(again->itemIDs(), ids);
    const auto parts = context().object<Item>(item->objectID())->parts();
    QVERIFY(parts.at(0)->content().isNull());
    QVERIFY(!parts.at(1)->content().isNull());
    QVERIFY(parts.at(2)->content() == content);
    undo().redo();
    QCOMPARE(dump(), after);
    QVERIFY(again->isDeleted());
    undo().undo();
    QCOMPARE(dump(), before);
    QVERIFY(context().save());
    QVERIFY(m_store->open());
    QCOMPARE(dump(), before);
}

void tst_UndoManager::takesBackLinks()
{
    const auto item = m_store->addItem(nullptr);
    const auto red = m_store->addLabel(u"red"_s);
    const auto blue = m_store->addLabel(u"blue"_s);
    item->addRelated(Item::labelsProperty, *red);
    settle();
    const QByteArray before = dump();
    item->removeRelated(Item::labelsProperty, *red);
    blue->addRelated(Label::itemsProperty, *item);
    undo().undo();
    QCOMPARE(item->labels(), QList{red});
    QCOMPARE(dump(), before);
    undo().redo();
    QCOMPARE(item->labels(), QList{blue});
}

void tst_UndoManager::dividesTypingIntoWords()
{
    const auto owner = m_store->addOwner(u""_s);
    settle();
    type(owner, {u"a"_s, u"ab"_s, u"ab "_s, u"ab c"_s, u"ab cd"_s});
    m_store->clock.advance(1);
    type(owner, {u"ab cde"_s});
    type(owner, {u"ab cde pasted"_s, u"ab cde pastedx"_s});
    QStringList seen;
    while (undo().canUndo()) {
        undo().undo();
        seen.append(owner->name());
    }
    QCOMPARE(seen, (QStringList{u"ab cde pasted"_s, u"ab cde"_s, u"ab cd"_s, u"ab "_s, u""_s}));
    seen.clear();
    while (undo().canRedo()) {
        undo().redo();
        seen.append(owner->name());
    }
    QCOMPARE(seen, (QStringList{u"ab "_s, u"ab cd"_s, u"ab cde"_s, u"ab cde pasted"_s,
                                u"ab cde pastedx"_s}));
}

void tst_UndoManager::dividesTypingWhereSomethingElseIsDone()
{
    const auto owner = m_store->addOwner(u""_s);
    const auto item = m_store->addItem(nullptr);
    settle();
    type(owner, {u"a"_s, u"ab"_s});
    item->setFlag(1);
    endTurn();
    type(owner, {u"abc"_s, u"abcd"_s});
    undo().undo();
    QCOMPARE(owner->name(), u"ab"_s);
    undo().undo();
    QCOMPARE(item->flag(), 0);
    QCOMPARE(owner->name(), u"ab"_s);
    type(owner, {u"abx"_s}); // And undo itself.
    undo().undo();
    QCOMPARE(owner->name(), u"ab"_s);
    undo().undo();
    QCOMPARE(owner->name(), u""_s);
}

void tst_UndoManager::worksAfterASave()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    settle();
    owner->setName(u"Bea"_s);
    QVERIFY(context().save());
    QVERIFY(!context().hasChanges());
    undo().undo();
    QCOMPARE(owner->name(), u"Ann"_s);
    QVERIFY(context().hasChanges());
    QVERIFY(context().save());
    QCOMPARE(m_store->storedCount("owner WHERE name = 'Ann'"), 1);
}

void tst_UndoManager::forgetsRedoAfterAnEdit()
{
    const auto item = m_store->addItem(nullptr);
    settle();
    item->setFlag(1);
    endTurn();
    undo().undo();
    QVERIFY(undo().canRedo());
    item->setFlag(2);
    QVERIFY(!undo().canRedo());
    undo().redo();
    QCOMPARE(item->flag(), 2);
    undo().undo();
    QCOMPARE(item->flag(), 0);
}

void tst_UndoManager::showsTheRecordFirst()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    settle();
    owner->setName(u"Bea"_s);
    endTurn();
    QStringList seen;
    connect(&undo(), &UndoManager::willChangeObject, this, [&](ObjectID id, int property) {
        QCOMPARE(id, owner->objectID());
        QCOMPARE(property, int(Owner::nameProperty));
        seen.append(owner->name());
    });
    undo().undo();
    undo().redo();
    QCOMPARE(seen, (QStringList{u"Bea"_s, u"Ann"_s}));
}

void tst_UndoManager::showsTheOwnerOfARecordThatComesOrGoes()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    settle();
    const auto item = m_store->addItem(owner);
    endTurn();
    using Shown = QList<std::pair<ObjectID, int>>;
    Shown shown;
    connect(&undo(), &UndoManager::willChangeObject, this, [&](ObjectID id, int property) {
        shown.append({id, property});
    });
    const Shown expected{{owner->objectID(), Owner::itemsProperty}, {item->objectID(), -1}};
    undo().undo();
    QCOMPARE(shown, expected);
    shown.clear();
    undo().redo();
    QCOMPARE(shown, expected);
}

void tst_UndoManager::keepsEditsMadeWhileShowing()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto item = m_store->addItem(nullptr);
    settle();
    owner->setName(u"Bea"_s);
    endTurn();
    // As an editor does that ends editing when another record is shown.
    const auto connection = connect(&undo(), &UndoManager::willChangeObject, this,
                                    [&] { item->setFlag(7); });
    undo().undo();
    disconnect(connection);
    QCOMPARE(owner->name(), u"Ann"_s);
    QCOMPARE(item->flag(), 7);
    undo().undo();
    QCOMPARE(item->flag(), 0);
    QVERIFY(!undo().canUndo());
}

void tst_UndoManager::recordsNothingWhileSuspended()
{
    const auto item = m_store->addItem(nullptr);
    settle();
    {
        const UndoManager::Suspension outer(undo());
        {
            const UndoManager::Suspension inner(undo());
            item->setFlag(1);
        }
        item->setFlag(2);
        QVERIFY(context().deleteObject(m_store->addLabel(u"red"_s)));
    }
    endTurn();
    QVERIFY(!undo().canUndo());
    item->setFlag(3);
    undo().undo();
    QCOMPARE(item->flag(), 2);
}

void tst_UndoManager::skipsRecordsThatAreGone()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 1);
    const auto item = context().object<Item>(owner->itemIDs().front());
    const auto label = m_store->addLabel(u"red"_s);
    settle();
    owner->setName(u"Bea"_s);
    item->setFlag(3);
    item->addRelated(Item::labelsProperty, *label);
    endTurn();
    {
        const UndoManager::Suspension suspension(undo());
        QVERIFY(context().deleteObject(item));
    }
    undo().undo();
    QCOMPARE(owner->name(), u"Ann"_s);
    undo().redo();
    QCOMPARE(owner->name(), u"Bea"_s);

    // Deleted by somebody else, and not known here yet.
    endTurn();
    const auto added = m_store->addItem(owner);
    endTurn();
    QVERIFY(context().save());
    QVERIFY(m_store->executeElsewhere("DELETE FROM part"));
    QVERIFY(m_store->executeElsewhere("DELETE FROM item"));
    undo().undo();
    QVERIFY(added->isDeleted());
    undo().redo();
    undo().undo();
    undo().undo();
    QCOMPARE(owner->name(), u"Ann"_s);
}

void tst_UndoManager::keepsTheStepWhenTheStoreFails()
{
    const auto owner = m_store->addOwner(u"Ann"_s, 2);
    const auto label = m_store->addLabel(u"red"_s);
    settle();
    const QByteArray before = dump();
    QVERIFY(context().deleteObject(owner));
    label->setName(u"blue"_s);
    endTurn();
    QVERIFY(context().save());
    const QByteArray after = dump();
    auto other = Connection::open(m_store->container->storeFile(), Connection::Mode::ReadWrite);
    {
        const auto writing = Transaction::begin(**other, Transaction::Durability::Draft);
        QVERIFY(writing);
        QSignalSpy failed(&undo(), &UndoManager::failed);
        undo().undo();
        QCOMPARE(failed.size(), 1);
        QVERIFY(!failed.first().first().value<Error>().message.isEmpty());
        QVERIFY(!context().object(owner->objectID()));
        QVERIFY(undo().canUndo());
    }
    undo().undo();
    QCOMPARE(dump(), before);
    QVERIFY(!undo().canUndo());
    while (undo().canRedo())
        undo().redo();
    QCOMPARE(dump(), after);
}

void tst_UndoManager::remembersABoundedNumberOfSteps()
{
    const auto item = m_store->addItem(nullptr);
    settle();
    for (int i = 1; i <= 250; ++i) {
        item->setFlag(qint16(i));
        endTurn();
    }
    int steps = 0;
    for (; undo().canUndo(); ++steps)
        undo().undo();
    QCOMPARE(steps, 200);
    QCOMPARE(item->flag(), 50);
}

void tst_UndoManager::notifiesLikeAnyOtherChange()
{
    const auto owner = m_store->addOwner(u"Ann"_s);
    const auto item = m_store->addItem(owner);
    settle();
    owner->setName(u"Bea"_s);
    item->setOwner(nullptr);
    endTurn();
    QSignalSpy name(owner.get(), &Owner::nameChanged);
    QSignalSpy items(owner.get(), &Owner::itemsChanged);
    QSignalSpy told(&context(), &ManagedObjectContext::objectsDidChange);
    QSignalSpy changed(&undo(), &UndoManager::changed);
    undo().undo();
    QCOMPARE(name.size(), 1);
    QCOMPARE(items.size(), 1);
    QCOMPARE(changed.size(), 1);
    endTurn();
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().first().value<ChangeSet>().updated.size(), size_t(2));
}

void tst_UndoManager::goesBackAndForth()
{
    // A bit of everything; every state on the way is met again, in both directions, twice.
    settle();
    QList<QByteArray> states{dump()};
    const auto step = [&](const std::function<void()> &edit) {
        m_store->clock.advance(2);
        edit();
        endTurn();
        states.append(dump());
    };
    ObjectID owner, item, label;
    const auto object = [&]<typename Object>(ObjectID id, Object *) {
        return context().object<Object>(id);
    };
    const auto theOwner = [&] { return object(owner, static_cast<Owner *>(nullptr)); };
    const auto theItem = [&] { return object(item, static_cast<Item *>(nullptr)); };
    const auto theLabel = [&] { return object(label, static_cast<Label *>(nullptr)); };
    step([&] { owner = m_store->addOwner(u"Ann"_s, 2)->objectID(); });
    step([&] { label = m_store->addLabel(u"red"_s)->objectID(); });
    step([&] { item = m_store->addItem(theOwner())->objectID(); });
    step([&] { theItem()->addRelated(Item::labelsProperty, *theLabel()); });
    step([&] { theItem()->parts().at(1)->setContent(u"words"_s); });
    step([&] {
        theItem()->setFlag(3);
        QVERIFY(context().deleteObject(context().object(theOwner()->itemIDs().front())));
        m_store->addItem(theOwner())->addRelated(Item::labelsProperty, *theLabel());
    });
    step([&] { theItem()->setOwner(nullptr); });
    step([&] { QVERIFY(context().deleteObject(theOwner())); });
    step([&] { QVERIFY(context().deleteObjects({theLabel(), theItem()})); });
    for (int round = 0; round < 2; ++round) {
        for (qsizetype i = states.size() - 2; i >= 0; --i) {
            undo().undo();
            QCOMPARE(dump(), states.at(i));
            if (i % 3 == 0)
                QVERIFY(context().save());
        }
        QVERIFY(!undo().canUndo());
        for (qsizetype i = 1; i < states.size(); ++i) {
            undo().redo();
            QCOMPARE(dump(), states.at(i));
        }
        QVERIFY(!undo().canRedo());
    }
}

QTEST_GUILESS_MAIN(tst_UndoManager)

#include "tst_UndoManager.moc"
