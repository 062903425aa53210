#include "StoreFixture.h"

#include "support/FaultVfs.h"

#include <QTest>

#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;
using Fault = FaultVfs::Fault;
using Lasting = FaultVfs::Lasting;

Q_DECLARE_METATYPE(tembra::FaultVfs::Fault)
Q_DECLARE_METATYPE(tembra::FaultVfs::Lasting)

namespace {

/// What lies there before the store is opened while writes fail.
enum class Start { Nothing, Closed, Killed, Older, OlderKilled, OtherLog };

constexpr int items = 30;

const std::pair<const char *, Start> starts[] = {{"nothing there", Start::Nothing},
                                                 {"closed properly", Start::Closed},
                                                 {"killed", Start::Killed},
                                                 {"older schema", Start::Older},
                                                 {"older schema, killed", Start::OlderKilled},
                                                 {"beside another file's log", Start::OtherLog}};

void fill(const StoreFolder &folder, int version)
{
    const auto store = openStore({folder.directory, u"Vum"_s}, itemModel(version), {});
    for (int key = 1; key <= items; ++key) {
        if (!store
            || !addItem(*store->connection, key, QString(500, u'x'),
                        Transaction::Durability::Draft))
            qFatal("no store to start from");
    }
}

void prepare(const StoreFolder &folder, Start start)
{
    const int version = start == Start::Older || start == Start::OlderKilled ? 1 : 3;
    if (start == Start::Nothing)
        return;
    if (start == Start::Closed || start == Start::Older)
        return fill(folder, version);
    QByteArray copy;
    if (start == Start::OtherLog) {
        fill(folder, version);
        copy = readFile(folder.file());
        if (!addItem(*openIn(folder, version)->connection, 1000, u"later"_s))
            qFatal("the copy is not an old one");
    }
    const int status = runAndDie([&] {
        static auto store = openStore({folder.directory, u"Vum"_s}, itemModel(version), {});
        for (int key = 1; store && key <= items; ++key)
            (void)addItem(*store->connection, copy.isEmpty() ? key : key + 2000, QString(500, u'x'),
                          Transaction::Durability::Draft);
        return store.has_value();
    });
    if (status != 0)
        qFatal("no killed store to start from");
    if (!copy.isEmpty())
        writeFile(folder.file(), copy);
}

} // namespace

Q_DECLARE_METATYPE(Start)

/// Every k-th write, sync, truncation and opening of a file fails while a store is opened, made or
/// brought up to date.
class tst_StoreFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neverLeavesABadStore_data();
    void neverLeavesABadStore();
    void survivesBeingKilled_data();
    void survivesBeingKilled();
    void saysThatTheDiskIsFull();
};

void tst_StoreFaults::neverLeavesABadStore_data()
{
    QTest::addColumn<Start>("start");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<Lasting>("lasting");
    const std::pair<const char *, Lasting> lastings[] = {{"once", Lasting::Once},
                                                         {"for good", Lasting::ForGood},
                                                         {"within a write", Lasting::Torn}};
    for (const auto &[startName, start] : starts) {
        for (const auto &[lastingName, lasting] : lastings) {
            QTest::addRow("%s, disk full %s", startName, lastingName)
                << start << Fault::DiskFull << lasting;
            QTest::addRow("%s, disk error %s", startName, lastingName)
                << start << Fault::InputOutput << lasting;
        }
    }
}

void tst_StoreFaults::neverLeavesABadStore()
{
    QFETCH(Start, start);
    QFETCH(Fault, fault);
    QFETCH(Lasting, lasting);
    const qint64 expectedItems = start == Start::Nothing ? 0 : items;
    const bool isMigrated = start == Start::Older || start == Start::OlderKilled;
    FaultVfs vfs;
    bool failed = true;
    int number = 1;
    for (; failed; ++number) {
        const StoreFolder folder;
        prepare(folder, start);
        const auto before = snapshot(folder.root.path());
        vfs.failAt(number, fault, lasting);
        auto store = openStore({folder.directory, u"Vum"_s}, itemModel(3), vfs.name());
        const bool opened = store.has_value();
        failed = vfs.failures() > 0;
        vfs.failNothing();
        const QByteArray where = "fault " + QByteArray::number(number);
        if (opened)
            QVERIFY2(addItem(*store->connection, 5000, u"works"_s), where.constData());
        else if (!QFile::exists(folder.directory + u"/Vum-before-version-3.sqlite"_s))
            QVERIFY2(snapshot(folder.root.path()) == before, where.constData());
        QVERIFY2(opened || !store.error().message.isEmpty(), where.constData());
        QVERIFY2(opened || failed, where.constData());
        close(store);

        const auto again = openStore({folder.directory, u"Vum"_s}, itemModel(3), {});
        QVERIFY2(again, again ? "" : qPrintable(again.error().description()));
        QVERIFY(queryValue(*again->connection, "PRAGMA integrity_check") == Value(u"ok"_s));
        QVERIFY(queryValue(*again->connection, "SELECT count(*) FROM item WHERE id < 5000")
                == Value(expectedItems));
        QVERIFY(queryValue(*again->connection, "SELECT count(*) FROM part")
                == Value(isMigrated ? qint64(items) : qint64(0)));
        QVERIFY(queryValue(*again->connection, "SELECT count(*) FROM item WHERE id = 5000")
                == Value(qint64(opened)));
        QVERIFY(queryValue(*again->connection, "PRAGMA user_version") == Value(qint64(3)));
    }
    QVERIFY2(number > 2, "something was written that could fail");
}

void tst_StoreFaults::survivesBeingKilled_data()
{
    QTest::addColumn<Start>("start");
    for (const auto &[name, start] : starts)
        QTest::newRow(name) << start;
}

/// The process ends at each of its operations in turn, while it opens, makes or migrates a store.
void tst_StoreFaults::survivesBeingKilled()
{
    QFETCH(Start, start);
    FaultVfs vfs;
    bool died = true;
    int number = 1;
    for (; died; ++number) {
        const StoreFolder folder;
        const QString end = folder.root.filePath(u"end"_s);
        prepare(folder, start);
        (void)runAndDie([&] {
            vfs.failAt(number, Fault::ProcessEnds, Lasting::Once);
            (void)openStore({folder.directory, u"Vum"_s}, itemModel(3), vfs.name());
            writeFile(end, "reached");
            return true;
        });
        died = !QFile::exists(end);
        const auto again = openStore({folder.directory, u"Vum"_s}, itemModel(3), {});
        QVERIFY2(again, again ? "" : qPrintable(again.error().description()));
        QVERIFY(queryValue(*again->connection, "PRAGMA integrity_check") == Value(u"ok"_s));
        QVERIFY(queryValue(*again->connection, "SELECT count(*) FROM item")
                == Value(qint64(start == Start::Nothing ? 0 : items)));
    }
    QVERIFY2(number > 2, "there was something to be killed at");
}

void tst_StoreFaults::saysThatTheDiskIsFull()
{
    FaultVfs vfs;
    const StoreFolder folder;
    vfs.failAt(1, Fault::DiskFull, Lasting::ForGood, FaultVfs::Write);
    const auto store = openStore({folder.directory, u"Vum"_s}, itemModel(1), vfs.name());
    QVERIFY(!store);
    QVERIFY2(store.error().message.startsWith(u"The disk is full"_s),
             qPrintable(store.error().message));
    QVERIFY2(!QFile::exists(folder.directory), "nothing is left behind");
}

QTEST_GUILESS_MAIN(tst_StoreFaults)
#include "tst_StoreFaults.moc"
