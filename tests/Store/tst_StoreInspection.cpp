#include "StoreFixture.h"

#include <QTest>

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

using Prepare = std::function<void(const StoreFolder &)>;
Q_DECLARE_METATYPE(Prepare)

namespace {

constexpr int pageSize = 4096;

/// Changes the store's file, or makes one, as another program would.
void change(const StoreFolder &folder, const QByteArray &statements)
{
    QDir().mkpath(folder.directory);
    const auto connection = Connection::open(folder.file(), Connection::Mode::Create);
    if (!connection || !(*connection)->execute(statements))
        qFatal("the store could not be changed");
}

/// Without the safety settings of this program.
void forge(const StoreFolder &folder, const char *statements)
{
    sqlite3 *database = nullptr;
    const QByteArray name = QFile::encodeName(folder.file());
    if (sqlite3_open(name.constData(), &database) != SQLITE_OK
        || sqlite3_exec(database, statements, nullptr, nullptr, nullptr) != SQLITE_OK)
        qFatal("the store could not be forged");
    sqlite3_close(database);
}

void addRow(const char *name, const QString &saying, Prepare prepare)
{
    QTest::newRow(name) << std::move(prepare) << saying;
}

/// A row for a sound store that was then changed.
void addChangedRow(const char *name, const QString &saying, const QByteArray &statements)
{
    addRow(name, saying, [statements](const StoreFolder &folder) {
        makeStore(folder);
        change(folder, statements);
    });
}

/// A row for a sound store of which @p size bytes from @p offset were overwritten.
void addPatchedRow(const char *name, int offset, int size, bool isKilled = false)
{
    addRow(name, u"is damaged"_s, [=](const StoreFolder &folder) {
        isKilled ? makeKilledStore(folder) : makeStore(folder);
        patch(folder, offset, QByteArray(size, '\xa5'));
    });
}

void addRowsOfOtherKinds()
{
    const QString notAFile = u"is not a file"_s;
    addRow("folder in its place", notAFile,
           [](const StoreFolder &folder) { QDir().mkpath(folder.file()); });
    addRow("link in its place", notAFile, [](const StoreFolder &folder) {
        makeStore(folder);
        QFile::rename(folder.file(), folder.beside("-elsewhere"));
        QFile::link(folder.beside("-elsewhere"), folder.file());
    });
    addRow("dangling link in its place", notAFile, [](const StoreFolder &folder) {
        QDir().mkpath(folder.directory);
        QFile::link(u"/nowhere/at/all"_s, folder.file());
    });
    addRow("pipe in its place", notAFile, [](const StoreFolder &folder) {
        QDir().mkpath(folder.directory);
        ::mkfifo(QFile::encodeName(folder.file()).constData(), 0600);
    });
    addRow("pipe in the place of its log", notAFile, [](const StoreFolder &folder) {
        makeStore(folder);
        ::mkfifo(QFile::encodeName(folder.beside("-wal")).constData(), 0600);
    });
    addRow("link in the place of its index", notAFile, [](const StoreFolder &folder) {
        makeStore(folder);
        QFile::link(folder.file(), folder.beside("-shm"));
    });
    addRow("file in the place of its folder", u"is not a folder"_s,
           [](const StoreFolder &folder) { writeFile(folder.directory, "x"); });
}

void addRowsOfOtherPrograms()
{
    const QString notAJournal = u"is not a journal of Tembra"_s;
    addRow("text", notAJournal,
           [](const StoreFolder &folder) { folder.put("Dear diary,\ntoday nothing"); });
    addRow("one byte", notAJournal, [](const StoreFolder &folder) { folder.put("x"); });
    addRow("zeros", notAJournal,
           [](const StoreFolder &folder) { folder.put(QByteArray(2 * pageSize, '\0')); });
    addRow("another program's database", notAJournal, [](const StoreFolder &folder) {
        change(folder, "CREATE TABLE places (url TEXT); PRAGMA user_version = 77");
    });
    addRow("another program's empty database", notAJournal,
           [](const StoreFolder &folder) { change(folder, "PRAGMA user_version = 1"); });
    addRow("another program's rollback journal", u"Another program"_s,
           [](const StoreFolder &folder) {
               makeStore(folder);
               writeFile(folder.beside("-journal"),
                         QByteArray::fromHex("d9d505f920a163d7") + QByteArray(600, '\1'));
           });
    addChangedRow("column renamed", notAJournal, "ALTER TABLE item RENAME COLUMN rating TO stars");
    addChangedRow("table missing", notAJournal, "DROP TABLE item");
    addChangedRow("column added", notAJournal, "ALTER TABLE item ADD COLUMN extra");
    addChangedRow("table added", notAJournal, "CREATE TABLE more (x)");
    addChangedRow("index added", notAJournal, "CREATE INDEX item_title ON item(title)");
    addChangedRow("trigger added", notAJournal,
                  "CREATE TRIGGER t AFTER INSERT ON item BEGIN DELETE FROM item; END");
    addChangedRow("view added", notAJournal, "CREATE VIEW v AS SELECT * FROM item");
    addRow("forged index", notAJournal, [](const StoreFolder &folder) {
        makeStore(folder);
        forge(folder, "CREATE INDEX item_title ON item(title); PRAGMA writable_schema=ON;"
                      "UPDATE sqlite_schema SET sql = 'CREATE INDEX item_title ON item(rating)'"
                      " WHERE name = 'item_title'");
    });
    addRow("statement forged", notAJournal, [](const StoreFolder &folder) {
        makeStore(folder);
        forge(folder, "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET sql ="
                      " 'CREATE TABLE item (id INTEGER PRIMARY KEY, rating TEXT, title INTEGER)'"
                      " WHERE name = 'item'");
    });
    addRow("two tables at one page", u"is damaged"_s, [](const StoreFolder &folder) {
        makeStore(folder);
        forge(folder, "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET rootpage = 2"
                      " WHERE name = 'item'");
    });
    addChangedRow("no version", notAJournal, "PRAGMA user_version = 0");
    addChangedRow("negative version", notAJournal, "PRAGMA user_version = -2");
}

void addRowsOfNewerSchemas()
{
    const QString newer = u"newer version of Tembra"_s;
    addChangedRow("newer schema", newer, "PRAGMA user_version = 3");
    addRow("newer schema, only in the log", newer,
           [](const StoreFolder &folder) { makeKilledStore(folder, "PRAGMA user_version = 3"); });
    addRow("newer schema, only in a log without its index", newer, [](const StoreFolder &folder) {
        makeKilledStore(folder, "PRAGMA user_version = 3");
        QFile::remove(folder.beside("-shm"));
    });
}

void addRowsOfDamage()
{
    for (const int size : {10, 60, 100, pageSize, 2 * pageSize, 20000}) {
        addRow(qPrintable(u"cut to %1 bytes"_s.arg(size)), u"is damaged"_s,
               [size](const StoreFolder &folder) {
                   makeStore(folder);
                   writeFile(folder.file(), readFile(folder.file()).first(size));
               });
    }
    addPatchedRow("header overwritten", 16, 80);
    addPatchedRow("schema overwritten", 100, pageSize - 100);
    addPatchedRow("first page of a table overwritten", 2 * pageSize, pageSize);
    addPatchedRow("first page of a table overwritten, beside a log", 2 * pageSize, pageSize, true);
    addChangedRow("own record missing", u"is damaged"_s, "DELETE FROM store_meta");
    addChangedRow("own record senseless", u"is damaged"_s, "UPDATE store_meta SET uuid = '../x'");
}

void addRowsOfMissingParts()
{
    addRow("log without its store", u"is missing"_s, [](const StoreFolder &folder) {
        makeKilledStore(folder);
        QFile::remove(folder.file());
    });
    addRow("log beside an empty file", u"is missing"_s, [](const StoreFolder &folder) {
        makeKilledStore(folder);
        writeFile(folder.file(), {});
    });
}

} // namespace

/// Whatever lies in the store's place that cannot be used stays byte for byte as it is, and the
/// message says what is wrong and where.
class tst_StoreInspection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesAloneWhatItCannotUse_data();
    void leavesAloneWhatItCannotUse();
    void leavesAloneWhatItMayNotTouch_data();
    void leavesAloneWhatItMayNotTouch();
    void leavesAloneWhatAnotherProgramUses();
    void leavesTheLockOfAKilledProcessAlone();
};

void tst_StoreInspection::leavesAloneWhatItCannotUse_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<QString>("saying");
    addRowsOfOtherKinds();
    addRowsOfOtherPrograms();
    addRowsOfNewerSchemas();
    addRowsOfDamage();
    addRowsOfMissingParts();
}

void tst_StoreInspection::leavesAloneWhatItCannotUse()
{
    QFETCH(Prepare, prepare);
    QFETCH(QString, saying);
    const StoreFolder folder;
    prepare(folder);
    const auto before = snapshot(folder.root.path());
    const auto store = openIn(folder);
    QVERIFY(!store);
    QVERIFY2(store.error().message.contains(saying), qPrintable(store.error().description()));
    QVERIFY2(store.error().message.contains(folder.root.path()), qPrintable(store.error().message));
    const auto after = snapshot(folder.root.path());
    QCOMPARE(after.keys(), before.keys());
    QVERIFY(after == before);
}

void tst_StoreInspection::leavesAloneWhatItMayNotTouch_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("mode");
    QTest::newRow("file not readable") << u"data/Vum.sqlite"_s << 0;
    QTest::newRow("file not writable") << u"data/Vum.sqlite"_s << 0400;
    QTest::newRow("log not readable") << u"data/Vum.sqlite-wal"_s << 0;
    QTest::newRow("folder not writable") << u"data"_s << 0500;
    QTest::newRow("folder not to be entered") << u"data"_s << 0600;
    QTest::newRow("parent folder not writable") << u"."_s << 0500;
}

/// Permissions bind no administrator: when one runs the test, a process of an ordinary user tries.
void tst_StoreInspection::leavesAloneWhatItMayNotTouch()
{
    QFETCH(QString, path);
    QFETCH(int, mode);
    constexpr uid_t ordinaryUser = 65534;
    const bool isAdministrator = ::geteuid() == 0;
    const StoreFolder folder;
    if (path != u"."_s)
        makeKilledStore(folder);
    QStringList entries = snapshot(folder.root.path()).keys();
    for (const QString &entry : entries << u"."_s) {
        const QByteArray name = QFile::encodeName(folder.root.filePath(entry));
        QVERIFY(!isAdministrator || ::lchown(name.constData(), ordinaryUser, ordinaryUser) == 0);
    }
    const auto before = snapshot(folder.root.path());
    const QByteArray target = QFile::encodeName(folder.root.filePath(path));
    struct stat status = {};
    QCOMPARE(::stat(target.constData(), &status), 0);
    ::chmod(target.constData(), mode_t(mode));
    const int result = runAndDie([&] {
        if (isAdministrator && (::setgid(ordinaryUser) != 0 || ::setuid(ordinaryUser) != 0))
            return false;
        const auto store = openIn(folder);
        return !store && store.error().message.contains(u"You may not"_s);
    });
    ::chmod(target.constData(), status.st_mode & 07777);
    QCOMPARE(result, 0);
    QVERIFY(snapshot(folder.root.path()) == before);
}

void tst_StoreInspection::leavesAloneWhatAnotherProgramUses()
{
    const StoreFolder folder;
    makeKilledStore(folder);
    const auto other = Connection::open(folder.file(), Connection::Mode::ReadWrite);
    QVERIFY(other && (*other)->execute("BEGIN IMMEDIATE"));
    const auto before = snapshot(folder.directory);
    const auto store = openIn(folder);
    QVERIFY(!store);
    QVERIFY2(store.error().message.contains(u"in use by another program"_s),
             qPrintable(store.error().message));
    QVERIFY(snapshot(folder.directory) == before);
}

void tst_StoreInspection::leavesTheLockOfAKilledProcessAlone()
{
    const StoreFolder folder;
    makeKilledStore(folder, "PRAGMA user_version = 9");
    const QString lock = folder.directory + u"/Vum.lock"_s;
    QVERIFY(QFile::exists(lock));
    QVERIFY(!openIn(folder));
    QVERIFY(QFile::exists(lock));
}

QTEST_GUILESS_MAIN(tst_StoreInspection)
#include "tst_StoreInspection.moc"
