#include "StoreFixture.h"

#include <QTest>

#include <sys/stat.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

StoreResult<OpenStore> openWith(const StoreFolder &folder, const ObjectModel &model)
{
    return openStore({folder.directory, u"Vum"_s}, model, {});
}

void makeOldStore(const StoreFolder &folder)
{
    const auto store = openWith(folder, itemModel(1));
    if (!store || !addItem(*store->connection, 7, u"from before"_s))
        qFatal("no old store");
}

QString copyOf(const StoreFolder &folder, int version)
{
    return folder.directory + u"/Vum-before-version-%1.sqlite"_s.arg(version);
}

/// The model of a version, whose last migration does something more.
ObjectModel itemModelWith(int version, const QByteArray &statement)
{
    const ObjectModel model = itemModel(version);
    QList<SchemaMigration> migrations = model.migrations();
    migrations.last().statements.append(statement);
    return {model.entities(), migrations};
}

/// Version 2, whose last statement fails.
ObjectModel brokenModel()
{
    return itemModelWith(2, "UPDATE nowhere SET x = 1");
}

qint64 number(Connection &connection, const QByteArray &sql)
{
    const Value value = queryValue(connection, sql);
    const auto *result = std::get_if<qint64>(&value);
    return result ? *result : -1;
}

} // namespace

class tst_SchemaMigrator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsAnOldStoreUpToDate_data();
    void bringsAnOldStoreUpToDate();
    void setsACopyAside();
    void theCopyHoldsWhatWasOnlyInTheLog();
    void theCopyOpensAgainInThePlaceOfTheStore();
    void aNewStoreNeedsNoCopy();
    void noCopyNoMigration();
    void aFailedMigrationChangesNothing();
    void aFailedMigrationBesideALogChangesNothing();
    void aLaterFailureKeepsEarlierVersions();
    void refusesToLoseReferences();
    void replacesTheCopyOfAnEarlierTry();
};

void tst_SchemaMigrator::bringsAnOldStoreUpToDate_data()
{
    QTest::addColumn<int>("version");
    QTest::newRow("by one version") << 2;
    QTest::newRow("by two versions, with a table rebuilt") << 3;
}

void tst_SchemaMigrator::bringsAnOldStoreUpToDate()
{
    QFETCH(int, version);
    const StoreFolder folder;
    makeOldStore(folder);
    const auto store = openWith(folder, itemModel(version));
    QVERIFY2(store, qPrintable(store ? QString() : store.error().description()));
    QCOMPARE(number(*store->connection, "PRAGMA user_version"), version);
    QCOMPARE(number(*store->connection, "SELECT rating FROM item WHERE id = 7"), 11);
    QCOMPARE(number(*store->connection, "PRAGMA foreign_keys"), 1);
    if (version == 3)
        QCOMPARE(number(*store->connection, "SELECT item FROM part WHERE id = 1007"), 7);
}

void tst_SchemaMigrator::setsACopyAside()
{
    const StoreFolder folder;
    makeOldStore(folder);
    const mode_t before = ::umask(0);
    const bool opened = openWith(folder, itemModel(2)).has_value();
    ::umask(before);
    QVERIFY(opened);
    QCOMPARE(QDir(folder.directory).entryList(QDir::Files),
             QStringList({u"Vum-before-version-2.sqlite"_s, u"Vum.sqlite"_s}));
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(copyOf(folder, 2)).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 07777), 0600);
    const auto copy = Connection::open(copyOf(folder, 2), Connection::Mode::ReadOnly);
    QCOMPARE(number(**copy, "PRAGMA user_version"), 1);
    QVERIFY(queryValue(**copy, "SELECT title FROM item WHERE id = 7") == Value(u"from before"_s));
}

void tst_SchemaMigrator::theCopyHoldsWhatWasOnlyInTheLog()
{
    const StoreFolder folder;
    makeOldStore(folder);
    QCOMPARE(runAndDie([&] {
                 const auto store = openWith(folder, itemModel(1));
                 ::_exit(store && addItem(*store->connection, 8, u"late"_s) ? 0 : 1);
                 return true;
             }),
             0);
    QVERIFY(openWith(folder, itemModel(2)).has_value());
    const auto copy = Connection::open(copyOf(folder, 2), Connection::Mode::ReadOnly);
    QCOMPARE(number(**copy, "SELECT count(*) FROM item"), 2);
}

void tst_SchemaMigrator::theCopyOpensAgainInThePlaceOfTheStore()
{
    const StoreFolder folder;
    makeOldStore(folder);
    QVERIFY(openWith(folder, itemModel(2)).has_value());
    QVERIFY(QFile::remove(folder.file()));
    QVERIFY(QFile::rename(copyOf(folder, 2), folder.file()));
    const auto store = openWith(folder, itemModel(1));
    QVERIFY(store.has_value());
    QVERIFY(addItem(*store->connection, 9, u"goes on"_s));
}

void tst_SchemaMigrator::aNewStoreNeedsNoCopy()
{
    const StoreFolder folder;
    QVERIFY(openWith(folder, itemModel(3)).has_value());
    QCOMPARE(QDir(folder.directory).entryList(QDir::Files), QStringList(u"Vum.sqlite"_s));
}

void tst_SchemaMigrator::noCopyNoMigration()
{
    const StoreFolder folder;
    makeOldStore(folder);
    QVERIFY(QDir().mkpath(copyOf(folder, 2) + u"/in the way"_s));
    const auto before = snapshot(folder.root.path());
    const auto store = openWith(folder, itemModel(2));
    QVERIFY(!store);
    QVERIFY2(store.error().message.contains(u"no safe copy"_s), qPrintable(store.error().message));
    QVERIFY(snapshot(folder.root.path()) == before);
}

void tst_SchemaMigrator::aFailedMigrationChangesNothing()
{
    const StoreFolder folder;
    makeOldStore(folder);
    auto before = snapshot(folder.directory);
    const auto store = openWith(folder, brokenModel());
    QVERIFY(!store);
    QVERIFY(store.error().detail.contains(u"nowhere"_s));
    auto after = snapshot(folder.directory);
    QVERIFY(after.remove(u"Vum-before-version-2.sqlite"_s) == 1);
    QVERIFY(after == before);
    QVERIFY(openWith(folder, itemModel(2)).has_value());
}

void tst_SchemaMigrator::aFailedMigrationBesideALogChangesNothing()
{
    const StoreFolder folder;
    makeOldStore(folder);
    QCOMPARE(runAndDie([&] {
                 const auto store = openWith(folder, itemModel(1));
                 ::_exit(store && addItem(*store->connection, 8, u"late"_s) ? 0 : 1);
                 return true;
             }),
             0);
    auto before = snapshot(folder.directory);
    QVERIFY(!openWith(folder, brokenModel()));
    auto after = snapshot(folder.directory);
    QVERIFY(after.remove(u"Vum-before-version-2.sqlite"_s) == 1);
    QCOMPARE(after.keys(), before.keys());
    QVERIFY(after == before);
    const auto store = openWith(folder, itemModel(2));
    QCOMPARE(number(*store->connection, "SELECT count(*) FROM item"), 2);
}

void tst_SchemaMigrator::aLaterFailureKeepsEarlierVersions()
{
    const StoreFolder folder;
    makeOldStore(folder);
    QVERIFY(!openWith(folder, itemModelWith(3, "UPDATE nowhere SET x = 1")));
    const auto store = openWith(folder, itemModel(2));
    QVERIFY(store.has_value());
    QCOMPARE(number(*store->connection, "SELECT rating FROM item WHERE id = 7"), 11);
}

void tst_SchemaMigrator::refusesToLoseReferences()
{
    const StoreFolder folder;
    makeOldStore(folder);
    const auto store = openWith(folder, itemModelWith(3, "DELETE FROM item"));
    QVERIFY(!store);
    QVERIFY(store.error().detail.contains(u"refers to another"_s));
}

void tst_SchemaMigrator::replacesTheCopyOfAnEarlierTry()
{
    const StoreFolder folder;
    makeOldStore(folder);
    QVERIFY(!openWith(folder, brokenModel()));
    {
        const auto store = openWith(folder, itemModel(1));
        QVERIFY(addItem(*store->connection, 8, u"after the first try"_s));
    }
    QVERIFY(openWith(folder, itemModel(2)).has_value());
    const auto copy = Connection::open(copyOf(folder, 2), Connection::Mode::ReadOnly);
    QCOMPARE(number(**copy, "SELECT count(*) FROM item"), 2);
}

QTEST_GUILESS_MAIN(tst_SchemaMigrator)
#include "tst_SchemaMigrator.moc"
