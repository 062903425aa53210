#include "TestJournal.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTest>

#include <functional>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

using Change = std::function<void(const QString &file)>;
Q_DECLARE_METATYPE(Change)

/// The store's files are removed or replaced while they are in use.
class tst_ReplacedStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void isNoticedBySaving_data();
    void isNoticedBySaving();
    void isSavedOnceItIsPutBack();
    void isNotTouchedWhenItIsClosed();

private:
    std::unique_ptr<TestStore> m_store;
    std::shared_ptr<Owner> m_owner;
};

void tst_ReplacedStore::init()
{
    QLoggingCategory::setFilterRules(u"tembra.store.warning=false"_s);
    m_owner.reset();
    m_store = std::make_unique<TestStore>();
    QVERIFY(m_store->open());
    m_owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(m_store->context().save());
}

void tst_ReplacedStore::isNoticedBySaving_data()
{
    QTest::addColumn<Change>("change");
    QTest::newRow("removed") << Change([](const QString &file) { QFile::remove(file); });
    QTest::newRow("replaced by a copy") << Change([](const QString &file) {
        QFile::rename(file, file + u"-old"_s);
        QFile::copy(file + u"-old"_s, file);
    });
    QTest::newRow("log removed") << Change(
        [](const QString &file) { QFile::remove(file + u"-wal"_s); });
    QTest::newRow("log replaced") << Change([](const QString &file) {
        QFile::rename(file + u"-wal"_s, file + u"-old"_s);
        writeFile(file + u"-wal"_s, {});
    });
    QTest::newRow("folder removed")
        << Change([](const QString &file) { QDir(QFileInfo(file).path()).removeRecursively(); });
    QTest::newRow("folder replaced") << Change([](const QString &file) {
        const QString folder = QFileInfo(file).path();
        QDir().rename(folder, folder + u"-old"_s);
        QDir().mkpath(folder);
        QFile::copy(folder + u"-old/"_s + QFileInfo(file).fileName(), file);
    });
}

void tst_ReplacedStore::isNoticedBySaving()
{
    QFETCH(Change, change);
    ManagedObjectContext &context = m_store->context();
    change(m_store->container->storeFile());
    m_owner->setName(u"Bea"_s);
    QVERIFY(context.writeDrafts());
    for (int tries = 0; tries < 2; ++tries) {
        const auto saved = context.save();
        QVERIFY(!saved);
        QVERIFY2(saved.error().message.contains(u"File > Create Backup"_s),
                 qPrintable(saved.error().message));
        QVERIFY(context.hasChanges());
    }
    // A backup reads everything, but nothing can be written that way.
    const auto background = m_store->container->newBackgroundContext();
    QVERIFY2(background, background ? "" : qPrintable(background.error().description()));
    const auto found = (*background)->fetch<Owner>({"Owner"});
    QVERIFY(found && found->size() == 1);
    QCOMPARE(found->first()->name(), u"Bea"_s);
    (void)(*background)->insert<Owner>();
    QVERIFY(!(*background)->save());
}

void tst_ReplacedStore::isSavedOnceItIsPutBack()
{
    const QString file = m_store->container->storeFile();
    QVERIFY(QFile::rename(file, file + u"-old"_s));
    m_owner->setName(u"Bea"_s);
    QVERIFY(!m_store->context().save());
    QVERIFY(QFile::rename(file + u"-old"_s, file));
    QVERIFY(m_store->context().save());
    QVERIFY(!m_store->context().hasChanges());
    QVERIFY(m_store->open());
    QVERIFY(m_store->stored("SELECT name FROM owner") == Value(u"Bea"_s));
}

void tst_ReplacedStore::isNotTouchedWhenItIsClosed()
{
    const QString file = m_store->container->storeFile();
    const QString folder = QFileInfo(file).path();
    QVERIFY(QDir().rename(folder, folder + u"-old"_s));
    QVERIFY(QDir().mkpath(folder));
    for (const auto *suffix : {"", "-wal", "-shm"})
        writeFile(file + QLatin1String(suffix), "of somebody else");
    writeFile(folder + u"/Test.lock"_s, {});
    const auto before = snapshot(folder);
    m_owner.reset();
    m_store->close();
    QCOMPARE(snapshot(folder), before);
}

QTEST_GUILESS_MAIN(tst_ReplacedStore)
#include "tst_ReplacedStore.moc"
