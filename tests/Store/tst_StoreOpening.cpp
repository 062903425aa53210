#include "StoreFixture.h"

#include "support/FaultVfs.h"

#include <QElapsedTimer>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

using Prepare = std::function<void(const StoreFolder &)>;
Q_DECLARE_METATYPE(Prepare)
Q_DECLARE_METATYPE(tembra::FaultVfs::Fault)
Q_DECLARE_METATYPE(tembra::FaultVfs::Lasting)

namespace {

int permissionsOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 07777)
                                                                      : -1;
}

void makeMoreItems(const StoreFolder &folder, int first, int last)
{
    const auto store = openIn(folder);
    for (int key = first; key <= last; ++key)
        QVERIFY(store && addItem(*store->connection, key, QString(900, u'y')));
}

} // namespace

class tst_StoreOpening : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesWhatIsMissing_data();
    void makesWhatIsMissing();
    void makesEverythingForTheUserAlone();
    void tightensWhatWasOpenToOthers();
    void leavesAFolderThatHoldsMoreOpen_data();
    void leavesAFolderThatHoldsMoreOpen();
    void keepsItsUuidAndContent();
    void recoversWhatAKilledProcessCommitted();
    void opensAStoreThatWasConvertedToARollbackJournal();
    void setsALogOfAnotherFileAside_data();
    void setsALogOfAnotherFileAside();
    void replaysALogThatWasCopiedWithItsStore();
    void replaysALogOfTheTimeBeforeCheckpointIds();
    void findsEverythingAfterAnInterruptedCheckpoint_data();
    void findsEverythingAfterAnInterruptedCheckpoint();
    void tellsWhereItsContentComesFrom();
    void movesAStoreThatCannotBeOpenedOutOfTheWay();
    void refusesTheStoreOfAnotherUser();
    void isOneFileAfterAProperClose();
    void sweepsAStoreThatWasNeverFinished();
    void worksInAFolderReachedByALink();
    void worksWithAnyName_data();
    void worksWithAnyName();
    void keepsASecondProcessOut();
    void opensQuickly();
};

void tst_StoreOpening::makesWhatIsMissing_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::newRow("no folder") << Prepare([](const StoreFolder &) {});
    QTest::newRow("empty folder") << Prepare(
        [](const StoreFolder &folder) { QDir().mkpath(folder.directory); });
    QTest::newRow("empty file") << Prepare([](const StoreFolder &folder) { folder.put({}); });
    QTest::newRow("empty companions") << Prepare([](const StoreFolder &folder) {
        folder.put({});
        writeFile(folder.beside("-wal"), {});
        writeFile(folder.beside("-journal"), {});
    });
}

void tst_StoreOpening::makesWhatIsMissing()
{
    QFETCH(Prepare, prepare);
    const StoreFolder folder;
    prepare(folder);
    const auto store = openIn(folder);
    QVERIFY2(store, qPrintable(store ? QString() : store.error().description()));
    QVERIFY(addItem(*store->connection, 1, u"first"_s));
    QVERIFY(queryValue(*store->connection, "PRAGMA user_version") == Value(qint64(2)));
    QCOMPARE(store->meta.highWaterMark, 0);
    QCOMPARE(store->meta.uuid.size(), 36);
}

void tst_StoreOpening::makesEverythingForTheUserAlone()
{
    const mode_t before = ::umask(0);
    const StoreFolder folder;
    const auto store = openIn(folder);
    const bool added = store && addItem(*store->connection, 1, u"first"_s);
    ::umask(before);
    QVERIFY(added);
    QCOMPARE(permissionsOf(folder.directory), 0700);
    const QStringList names = QDir(folder.directory).entryList(QDir::Files);
    QCOMPARE(names, QStringList({u"Vum.lock"_s, u"Vum.sqlite"_s, u"Vum.sqlite-shm"_s,
                                 u"Vum.sqlite-wal"_s}));
    for (const QString &name : names)
        QCOMPARE(permissionsOf(folder.directory + u'/' + name), 0600);
}

void tst_StoreOpening::tightensWhatWasOpenToOthers()
{
    const StoreFolder folder;
    makeKilledStore(folder);
    for (const char *suffix : {"", "-wal", "-shm"})
        ::chmod(QFile::encodeName(folder.beside(suffix)).constData(), 0664);
    ::chmod(QFile::encodeName(folder.directory).constData(), 0755);
    QVERIFY(openIn(folder).has_value());
    makeStore(folder, 0);
    QCOMPARE(permissionsOf(folder.directory), 0700);
    QCOMPARE(permissionsOf(folder.file()), 0600);
}

void tst_StoreOpening::leavesAFolderThatHoldsMoreOpen_data()
{
    QTest::addColumn<QString>("below");
    QTest::addColumn<int>("mode");
    QTest::newRow("shared by everybody") << QString() << 01777;
    QTest::newRow("with other folders in it") << u"other"_s << 0755;
    QTest::newRow("with a hidden folder in it") << u".other"_s << 0755;
}

void tst_StoreOpening::leavesAFolderThatHoldsMoreOpen()
{
    QFETCH(QString, below);
    QFETCH(int, mode);
    const StoreFolder folder;
    QVERIFY(QDir().mkpath(folder.directory + u'/' + below));
    ::chmod(QFile::encodeName(folder.directory).constData(), mode_t(mode));
    QVERIFY(openIn(folder).has_value());
    QCOMPARE(permissionsOf(folder.directory), mode);
    QCOMPARE(permissionsOf(folder.file()), 0600);
}

void tst_StoreOpening::keepsItsUuidAndContent()
{
    const StoreFolder folder;
    QString uuid;
    {
        const auto store = openIn(folder);
        uuid = store->meta.uuid;
        QVERIFY(addItem(*store->connection, 1, u"kept"_s, Transaction::Durability::Draft));
    }
    const auto store = openIn(folder);
    QVERIFY(store.has_value());
    QCOMPARE(store->meta.uuid, uuid);
    QVERIFY(queryValue(*store->connection, "SELECT title FROM item") == Value(u"kept"_s));
}

void tst_StoreOpening::recoversWhatAKilledProcessCommitted()
{
    const StoreFolder folder;
    makeKilledStore(folder);
    const auto store = openIn(folder);
    QVERIFY(store.has_value());
    QVERIFY(queryValue(*store->connection, "SELECT title FROM item WHERE id = 1000")
            == Value(u"in the log"_s));
}

void tst_StoreOpening::opensAStoreThatWasConvertedToARollbackJournal()
{
    const StoreFolder folder;
    makeStore(folder);
    patch(folder, 18, QByteArray("\1\1", 2));
    const auto store = openIn(folder);
    QVERIFY(store.has_value());
    QVERIFY(queryValue(*store->connection, "PRAGMA journal_mode") == Value(u"wal"_s));
}

void tst_StoreOpening::setsALogOfAnotherFileAside_data()
{
    QTest::addColumn<Prepare>("prepareCopy");
    QTest::newRow("an earlier copy") << Prepare([](const StoreFolder &folder) {
        makeStore(folder, 20);
        QFile::copy(folder.file(), folder.beside("-copy"));
        makeMoreItems(folder, 21, 40);
    });
    QTest::newRow("a copy of the same session") << Prepare([](const StoreFolder &folder) {
        makeStore(folder, 20);
        const auto store = openIn(folder);
        QVERIFY(store && store->connection->checkpoint());
        QVERIFY(addItem(*store->connection, 30, u"later"_s));
        QVERIFY(store->connection->checkpoint());
        QFile::copy(folder.file(), folder.beside("-copy"));
        QVERIFY(addItem(*store->connection, 31, u"later still"_s, Transaction::Durability::Draft));
    });
    QTest::newRow("the copy of a migration") << Prepare([](const StoreFolder &folder) {
        QVERIFY(openIn(folder, 1).has_value());
        QVERIFY(openIn(folder, 2).has_value());
        QFile::rename(folder.directory + u"/Vum-before-version-2.sqlite"_s, folder.beside("-copy"));
    });
    QTest::newRow("another store") << Prepare([](const StoreFolder &folder) {
        const StoreFolder other;
        makeStore(other, 3);
        makeStore(folder);
        QFile::copy(other.file(), folder.beside("-copy"));
    });
}

/// SQLite would replay it into the copy, and the copy would be damaged.
void tst_StoreOpening::setsALogOfAnotherFileAside()
{
    QFETCH(Prepare, prepareCopy);
    const StoreFolder folder;
    prepareCopy(folder);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(runAndDie([&] {
                 static auto store = openIn(folder);
                 return store && addItem(*store->connection, 1000, QString(9000, u'x'));
             }),
             0);
    const QByteArray log = readFile(folder.beside("-wal"));
    const QByteArray copy = readFile(folder.beside("-copy"));
    writeFile(folder.file(), copy); // Over the same file, as "cp" does it.

    auto store = openIn(folder);
    QVERIFY2(store, store ? "" : qPrintable(store.error().description()));
    QVERIFY(queryValue(*store->connection, "PRAGMA integrity_check") == Value(u"ok"_s));
    QVERIFY(queryValue(*store->connection, "SELECT count(*) FROM item WHERE id = 1000")
            == Value(qint64(0)));
    QVERIFY(store->logSetAside.startsWith(folder.directory + u"/Vum-set-aside-"_s));
    QVERIFY(readFile(store->logSetAside) == log);
    close(store);
    const auto again = openIn(folder);
    QVERIFY(again && again->logSetAside.isEmpty());
}

void tst_StoreOpening::replaysALogThatWasCopiedWithItsStore()
{
    const StoreFolder folder;
    makeKilledStore(folder);
    const StoreFolder other;
    QVERIFY(QDir().mkpath(other.directory));
    for (const char *suffix : {"", "-wal"})
        QVERIFY(QFile::copy(folder.beside(suffix), other.beside(suffix)));
    const auto store = openIn(other);
    QVERIFY(store && store->logSetAside.isEmpty());
    QVERIFY(queryValue(*store->connection, "SELECT title FROM item WHERE id = 1000")
            == Value(u"in the log"_s));
}

void tst_StoreOpening::replaysALogOfTheTimeBeforeCheckpointIds()
{
    const StoreFolder folder;
    makeStore(folder);
    patch(folder, 68, QByteArray(4, '\0'));
    QCOMPARE(runAndDie([&] {
                 static auto connection = Connection::open(folder.file(),
                                                           Connection::Mode::ReadWrite);
                 return connection
                        && (*connection)->execute("UPDATE item SET title = 'old' WHERE id = 1");
             }),
             0);
    const auto store = openIn(folder);
    QVERIFY(store && store->logSetAside.isEmpty());
    QVERIFY(queryValue(*store->connection, "SELECT title FROM item WHERE id = 1")
            == Value(u"old"_s));
}

void tst_StoreOpening::findsEverythingAfterAnInterruptedCheckpoint_data()
{
    QTest::addColumn<FaultVfs::Fault>("fault");
    QTest::addColumn<FaultVfs::Lasting>("lasting");
    QTest::newRow("killed") << FaultVfs::Fault::ProcessEnds << FaultVfs::Lasting::Once;
    QTest::newRow("disk full") << FaultVfs::Fault::DiskFull << FaultVfs::Lasting::Once;
    QTest::newRow("disk full for good") << FaultVfs::Fault::DiskFull << FaultVfs::Lasting::ForGood;
    QTest::newRow("torn") << FaultVfs::Fault::InputOutput << FaultVfs::Lasting::Torn;
}

/// Every operation of a session with checkpoints of all kinds is interrupted: the log that stays
/// must be known for the store's own.
void tst_StoreOpening::findsEverythingAfterAnInterruptedCheckpoint()
{
    QFETCH(FaultVfs::Fault, fault);
    QFETCH(FaultVfs::Lasting, lasting);
    FaultVfs vfs;
    bool failed = true;
    int number = 1;
    for (; failed; ++number) {
        const StoreFolder folder;
        makeStore(folder, 5);
        const QString confirmedFile = folder.root.filePath(u"confirmed"_s);
        const QString end = folder.root.filePath(u"end"_s);
        writeFile(confirmedFile, {});
        (void)runAndDie([&] {
            {
                auto store = openStore({folder.directory, u"Vum"_s}, itemModel(2), vfs.name());
                vfs.failAt(number, fault, lasting);
                QByteArray confirmed;
                for (int key = 100; store && key < 109; ++key) {
                    if (addItem(*store->connection, key, QString(3000, u'x'),
                                Transaction::Durability::Draft))
                        writeFile(confirmedFile, confirmed += char(key));
                    if (key % 3 == 0)
                        (void)store->connection->checkpoint();
                    if (key % 3 == 1)
                        store->connection->checkpointAsFarAsPossible();
                }
                if (number % 2)
                    ::_exit(0);
            }
            writeFile(end, vfs.failures() > 0 ? "failed" : "undisturbed");
            return true;
        });
        failed = number % 2 || readFile(end) != "undisturbed";
        const QByteArray where = "operation " + QByteArray::number(number);
        const auto store = openIn(folder);
        QVERIFY2(store, where.constData());
        QVERIFY2(store->logSetAside.isEmpty(), where.constData());
        QVERIFY(queryValue(*store->connection, "PRAGMA integrity_check") == Value(u"ok"_s));
        for (const char key : readFile(confirmedFile))
            QVERIFY2(queryValue(*store->connection,
                                "SELECT 1 FROM item WHERE id = " + QByteArray::number(key))
                         == Value(qint64(1)),
                     where.constData());
    }
    QVERIFY(number > 20);
}

void tst_StoreOpening::tellsWhereItsContentComesFrom()
{
    const StoreFolder folder;
    QCOMPARE(openIn(folder)->origin, StoreOrigin::Made);
    QCOMPARE(openIn(folder)->origin, StoreOrigin::Found);
    folder.put({});
    QCOMPARE(openIn(folder)->origin, StoreOrigin::MadeForAnEmptyFile);
    QCOMPARE(openIn(folder)->origin, StoreOrigin::Found);
}

void tst_StoreOpening::movesAStoreThatCannotBeOpenedOutOfTheWay()
{
    const StoreFolder folder;
    makeKilledStore(folder);
    patch(folder, 8192, QByteArray(4096, '\xa5'));
    const auto damaged = openIn(folder);
    QVERIFY(!damaged);
    QCOMPARE(damaged.error().fault, StoreFault::Damaged);
    QMap<QString, QByteArray> before;
    for (const char *suffix : {"", "-wal", "-shm"})
        before.insert(QString::fromLatin1(suffix), readFile(folder.beside(suffix)));

    const auto aside = setStoreAside({folder.directory, u"Vum"_s});
    QVERIFY2(aside, aside ? "" : qPrintable(aside.error().description()));
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        QVERIFY(!QFile::exists(folder.file() + it.key()));
        QVERIFY(readFile(*aside + it.key()) == it.value());
    }
    QVERIFY(openIn(folder).has_value());
    patch(folder, 8192, QByteArray(4096, '\xa5'));
    const auto second = setStoreAside({folder.directory, u"Vum"_s});
    QVERIFY(second && *second != *aside);
    QVERIFY2(!setStoreAside({folder.directory, u"Vum"_s}), "there is nothing left to move");
}

void tst_StoreOpening::refusesTheStoreOfAnotherUser()
{
    if (::geteuid() != 0)
        QSKIP("only an administrator can give files away");
    const StoreFolder folder;
    makeKilledStore(folder);
    for (const char *suffix : {"", "-wal"}) {
        const QByteArray name = QFile::encodeName(folder.beside(suffix));
        QCOMPARE(::chown(name.constData(), 65534, 65534), 0);
        const auto before = snapshot(folder.root.path());
        const auto store = openIn(folder);
        QVERIFY(!store);
        QVERIFY2(store.error().message.contains(u"belongs to another user"_s),
                 qPrintable(store.error().message));
        QVERIFY(snapshot(folder.root.path()) == before);
        QCOMPARE(::chown(name.constData(), 0, 0), 0);
    }
    QVERIFY(openIn(folder).has_value());
}

void tst_StoreOpening::isOneFileAfterAProperClose()
{
    const StoreFolder folder;
    makeStore(folder);
    QCOMPARE(QDir(folder.directory).entryList(QDir::Files), QStringList(u"Vum.sqlite"_s));
}

void tst_StoreOpening::sweepsAStoreThatWasNeverFinished()
{
    const StoreFolder folder;
    QVERIFY(QDir().mkpath(folder.directory));
    writeFile(folder.beside("-new"), "half a store");
    writeFile(folder.beside("-new-wal"), "and its log");
    QVERIFY(openIn(folder).has_value());
    QCOMPARE(QDir(folder.directory).entryList(QDir::Files), QStringList(u"Vum.sqlite"_s));
}

void tst_StoreOpening::worksInAFolderReachedByALink()
{
    const StoreFolder folder;
    const QString real = folder.root.filePath(u"real"_s);
    QVERIFY(QDir().mkpath(real));
    QVERIFY(QFile::link(real, folder.directory));
    QVERIFY(openIn(folder).has_value());
    QVERIFY(QFile::exists(real + u"/Vum.sqlite"_s));
    QVERIFY(openIn(folder).has_value());
}

void tst_StoreOpening::worksWithAnyName_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << u"my journal"_s;
    QTest::newRow("signs that mean something in an address") << u"100% #1? a&b=c"_s;
    QTest::newRow("quotes") << u"it's \"mine\""_s;
    QTest::newRow("other scripts") << u"журнал 📓"_s;
    QTest::newRow("looks like an address") << u"file:x"_s;
}

void tst_StoreOpening::worksWithAnyName()
{
    QFETCH(QString, name);
    const QTemporaryDir root;
    const StoreLocation place{root.filePath(name), u"Vum"_s};
    for (int version : {1, 3}) {
        const auto store = openStore(place, itemModel(version), {});
        QVERIFY2(store, qPrintable(store ? QString() : store.error().description()));
    }
    QVERIFY(QFile::exists(place.storeFile()));
}

void tst_StoreOpening::keepsASecondProcessOut()
{
    const StoreFolder folder;
    const auto store = openIn(folder);
    QVERIFY(store.has_value());
    const int status = runAndDie([&] {
        const auto second = openIn(folder);
        return !second && second.error().message.contains(u"already running"_s);
    });
    QCOMPARE(status, 0);
    QVERIFY(addItem(*store->connection, 1, u"still ours"_s));
}

void tst_StoreOpening::opensQuickly()
{
    const StoreFolder folder;
    makeStore(folder);
    qint64 best = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 20; ++round) {
        QElapsedTimer timer;
        timer.start();
        const auto store = openIn(folder);
        best = qMin(best, timer.nsecsElapsed());
        QVERIFY(store.has_value());
    }
    qInfo("best opening: %.3f ms", double(best) / 1e6);
    QVERIFY2(best < 10'000'000, "opening an existing store does not depend on its size");
}

QTEST_GUILESS_MAIN(tst_StoreOpening)
#include "tst_StoreOpening.moc"
