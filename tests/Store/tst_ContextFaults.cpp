#include "TestJournal.h"

#include "support/FaultVfs.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QTest>

#include <set>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

using Fault = FaultVfs::Fault;
using Lasting = FaultVfs::Lasting;
Q_DECLARE_METATYPE(Fault)
Q_DECLARE_METATYPE(Lasting)

namespace {

QByteArray text(const Value &value)
{
    if (const auto *number = std::get_if<qint64>(&value))
        return QByteArray::number(*number);
    if (const auto *date = std::get_if<double>(&value))
        return QByteArray::number(*date, 'f', 1);
    const auto *string = std::get_if<QString>(&value);
    return string ? string->toUtf8() : QByteArray("NULL");
}

/// A user at work on a store that fails now and then: does one thing per turn and remembers how
/// the journal looked after each, as the program showed it.
class Worker
{
public:
    explicit Worker(TestStore &store) : m_store(store)
    {
        QObject::connect(&store.context(), &ManagedObjectContext::objectsDidChange,
                         &store.context(), [this](const ChangeSet &changes) {
                             for (const auto *list : {&changes.inserted, &changes.updated}) {
                                 for (const ObjectChange &change : *list)
                                     m_known.insert(change.id);
                             }
                         });
        states.append(look());
    }

    void work();
    /// The journal as the objects show it; in the form of dumpStore().
    QByteArray look() const;

    QList<QByteArray> states;
    qsizetype confirmed = 0; ///< The state that the last successful save has promised to keep.
    int failedSaves = 0;

private:
    template<typename Edit>
    void turn(const Edit &edit)
    {
        m_store.clock.advance(2);
        edit();
        endTurn();
        states.append(look());
    }
    void save()
    {
        if (m_store.context().save())
            confirmed = states.size() - 1;
        else
            ++failedSaves;
        endTurn();
    }
    template<typename Object>
    std::shared_ptr<Object> object(ObjectID id) const
    {
        return m_store.context().object<Object>(id);
    }

    TestStore &m_store;
    std::set<ObjectID> m_known;
};

QByteArray Worker::look() const
{
    QByteArray rows[4];
    QByteArray links;
    for (const ObjectID id : m_known) {
        const auto record = m_store.context().object(id);
        if (!record)
            continue;
        const EntityDescription &entity = record->entity();
        QByteArray row = QByteArray(entity.table + '|' + QByteArray::number(id.key) + '|');
        for (int property = 0; property < entity.columnCount(); ++property)
            row += text(record->value(property)) + '|';
        rows[id.entity] += row + '\n';
        if (id.entity != itemEntity)
            continue;
        for (const ObjectID label : record->relatedIDs(Item::labelsProperty))
            links += "link|" + QByteArray::number(id.key) + '|' + QByteArray::number(label.key)
                     + "|\n";
    }
    return QByteArray(rows[0] + rows[1] + rows[2] + rows[3] + links);
}

void Worker::work()
{
    ManagedObjectContext &context = m_store.context();
    ObjectID owner, first, second, label;
    turn([&] { owner = m_store.addOwner(u"Ann"_s)->objectID(); });
    turn([&] { first = m_store.addItem(object<Owner>(owner))->objectID(); });
    save();
    turn([&] { label = m_store.addLabel(u"red"_s)->objectID(); });
    turn([&] { object<Label>(label)->addRelated(Label::itemsProperty, *object<Item>(first)); });
    turn([&] { object<Item>(first)->parts().at(1)->setContent(u"words \0"_s.repeated(2000)); });
    save();
    turn([&] { second = m_store.addItem(object<Owner>(owner))->objectID(); });
    turn([&] { (void)context.fetchKeys({"Item"}); });
    turn([&] { (void)context.deleteObject(object<Item>(first)); });
    save();
    turn([&] { m_store.undo().undo(); });
    turn([&] { object<Owner>(owner)->setName(u"Bea"_s); });
    turn([&] { (void)context.deleteObject(object<Owner>(owner)); });
    save();
    turn([&] { m_store.undo().undo(); });
    turn([&] { m_store.undo().redo(); });
    turn([&] { m_store.undo().undo(); });
    turn([&] {
        if (const auto item = object<Item>(second))
            item->setFlag(7);
    });
    save();
}

/// What is on the disk in this moment, as a start after a crash would find it.
QByteArray dumpAfterCrash(const QString &file)
{
    const QTemporaryDir copy(temporaryTemplate());
    // By another process: closing the file in this one would take away the locks SQLite holds on it.
    if (QProcess::execute(u"cp"_s, {file, QString(file + u"-wal"), copy.path()}) != 0)
        return "cannot be copied";
    return dumpStore(copy.filePath(QFileInfo(file).fileName()));
}

} // namespace

class tst_ContextFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loseNothing_data();
    void loseNothing();
};

void tst_ContextFaults::loseNothing_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<Lasting>("lasting");
    QTest::newRow("disk full once") << Fault::DiskFull << Lasting::Once;
    QTest::newRow("disk full for good") << Fault::DiskFull << Lasting::ForGood;
    QTest::newRow("I/O error once") << Fault::InputOutput << Lasting::Once;
    QTest::newRow("I/O error for good") << Fault::InputOutput << Lasting::ForGood;
    QTest::newRow("torn write") << Fault::InputOutput << Lasting::Torn;
}

void tst_ContextFaults::loseNothing()
{
    QFETCH(Fault, fault);
    QFETCH(Lasting, lasting);
    QLoggingCategory::setFilterRules(u"tembra.store.warning=false"_s);

    bool met = true;
    int failedSaves = 0;
    for (int number = 1; met; ++number) {
        FaultVfs vfs;
        TestStore store(vfs.name());
        QVERIFY(store.open());
        Worker worker(store);
        vfs.failAt(number, fault, lasting);
        worker.work();
        met = vfs.failures() > 0;
        const QByteArray where = "operation " + QByteArray::number(number);

        const QByteArray found = dumpAfterCrash(store.container->storeFile());
        QVERIFY2(worker.states.indexOf(found, worker.confirmed) >= 0,
                 QByteArray(where + ": something confirmed was lost").constData());
        vfs.failNothing();
        const QByteArray shown = worker.look();
        QVERIFY2(store.context().save(), where.constData());
        QCOMPARE(worker.look(), shown);
        QVERIFY2(!store.context().hasChanges(), where.constData());
        QVERIFY(store.open());
        QCOMPARE(dumpStore(store.container->storeFile()), shown);
        failedSaves += worker.failedSaves;
    }
    // Otherwise nothing of the above was put to the test.
    QVERIFY(failedSaves > 3);
}

QTEST_GUILESS_MAIN(tst_ContextFaults)

#include "tst_ContextFaults.moc"
