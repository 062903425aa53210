#include "StoreFixture.h"

#include <QElapsedTimer>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

using Prepare = std::function<void(const StoreFolder &)>;
Q_DECLARE_METATYPE(Prepare)

namespace {

int permissionsOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 07777)
                                                                      : -1;
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
