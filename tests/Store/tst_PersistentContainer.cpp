#include "TestJournal.h"

#include "Store/File/Connection.h"
#include "support/FaultVfs.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

class tst_PersistentContainer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_store = std::make_unique<TestStore>();
        QVERIFY(m_store->open());
    }
    void cleanup() { m_store.reset(); }

    void liesInItsFolder();
    void keepsASecondContainerOut();
    void tellsWhyItDoesNotLoad();
    void writesTheLastEditsWhenItGoes();
    void givesNoIdTwiceEvenAfterDeletionAndAKill();
    void namesRecordsByUri();
    void knowsNoOtherStoresRecords();
    void tellsOfSavesOfTheViewContext();
    void tellsOfBackgroundSavesOnItsOwnThread();
    void aBackgroundContextLeavesNothingUnlessSaved();
    void aBackgroundContextDoesNotGatherPagesInMemory();
    void editsWaitForAnImportAndAreThenWritten();

private:
    std::unique_ptr<TestStore> m_store;
};

void tst_PersistentContainer::liesInItsFolder()
{
    const QString folder = m_store->folder.filePath(u"data"_s);
    QCOMPARE(m_store->container->storeFile(), QString(folder + u"/Test.sqlite"_s));
    QVERIFY(QFile::exists(m_store->container->storeFile()));
    QVERIFY(QFile::exists(folder + u"/Test.lock"_s));
    m_store->close();
    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList(u"Test.sqlite"_s));
}

void tst_PersistentContainer::keepsASecondContainerOut()
{
    PersistentContainer second(u"Test"_s, testModel(), {m_store->folder.filePath(u"data"_s)});
    const auto loaded = second.loadPersistentStores();
    QVERIFY(!loaded);
    QVERIFY(loaded.error().message.contains(u"already running"_s));
    QVERIFY(QFile::exists(m_store->folder.filePath(u"data/Test.lock"_s)));
}

void tst_PersistentContainer::tellsWhyItDoesNotLoad()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"Test.sqlite"_s);
    QVERIFY(QDir().mkdir(file));
    PersistentContainer container(u"Test"_s, testModel(), {folder.path()});
    const auto loaded = container.loadPersistentStores();
    QVERIFY(!loaded);
    QVERIFY(loaded.error().message.contains(file));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(u"Test.sqlite"_s));
}

void tst_PersistentContainer::writesTheLastEditsWhenItGoes()
{
    const ObjectID id = m_store->addOwner(u"typed just now"_s)->objectID();
    QVERIFY(m_store->open());
    const auto owner = m_store->context().object<Owner>(id);
    QVERIFY(owner);
    QCOMPARE(owner->name(), u"typed just now"_s);
}

void tst_PersistentContainer::givesNoIdTwiceEvenAfterDeletionAndAKill()
{
    const auto file = m_store->folder.filePath(u"highest"_s);
    m_store->close();
    const pid_t child = ::fork();
    if (child == 0) {
        if (!m_store->open())
            ::_exit(1);
        const auto owner = m_store->addOwner(u"short-lived"_s, 20);
        QFile highest(file);
        const qint64 key = m_store->addLabel(u"last"_s)->objectID().key;
        const bool done = m_store->context().writeDrafts() && m_store->context().deleteObject(owner)
                          && highest.open(QIODevice::WriteOnly)
                          && highest.write(QByteArray::number(key)) > 0;
        highest.close();
        ::raise(done ? SIGKILL : SIGABRT);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    QFile highest(file);
    QVERIFY(highest.open(QIODevice::ReadOnly));
    const qint64 lastKey = highest.readAll().toLongLong();
    QVERIFY(lastKey > 20);
    QVERIFY(m_store->open());
    QVERIFY(m_store->addOwner(u"new"_s)->objectID().key > lastKey);
}

void tst_PersistentContainer::namesRecordsByUri()
{
    const ObjectID id = m_store->addOwner(u"Ann"_s)->objectID();
    const QString uri = m_store->container->uriRepresentation(id);
    QVERIFY2(uri.startsWith(u"tembra-store://"_s) && uri.endsWith(u"/Owner/p%1"_s.arg(id.key)),
             qPrintable(uri));
    QVERIFY(m_store->open());
    QCOMPARE(m_store->container->uriRepresentation(id), uri);
    const auto found = m_store->container->objectIDForURI(uri);
    QVERIFY(found == id);
    QCOMPARE(m_store->context().object<Owner>(*found)->name(), u"Ann"_s);

    QVERIFY(m_store->context().deleteObject(m_store->context().object(id)));
    const auto stillNamed = m_store->container->objectIDForURI(uri);
    QVERIFY(stillNamed == id);
    QVERIFY(!m_store->context().object(*stillNamed));
}

void tst_PersistentContainer::knowsNoOtherStoresRecords()
{
    const ObjectID id = m_store->addOwner(u"Ann"_s)->objectID();
    const QString uri = m_store->container->uriRepresentation(id);
    TestStore other;
    QVERIFY(other.open());
    QVERIFY(!other.container->objectIDForURI(uri));
    QVERIFY(!m_store->container->objectIDForURI(QString(uri).replace(u"Owner"_s, u"Stranger"_s)));
    QVERIFY(!m_store->container->objectIDForURI(QString(uri).replace(u"/Owner/p"_s, u"/Owner/"_s)));
    QVERIFY(!m_store->container->objectIDForURI(u"file:///etc/passwd"));
    QVERIFY(!m_store->container->objectIDForURI({}));
}

void tst_PersistentContainer::tellsOfSavesOfTheViewContext()
{
    QSignalSpy saves(m_store->container.get(), &PersistentContainer::contextDidSave);
    const ObjectID id = m_store->addOwner(u"Ann"_s)->objectID();
    QVERIFY(m_store->context().writeDrafts());
    QCOMPARE(saves.size(), 0);
    QVERIFY(m_store->context().save());
    QCOMPARE(saves.size(), 1);
    QCOMPARE(saves.first().at(0).value<ManagedObjectContext *>(), &m_store->context());
    QVERIFY(saves.first().at(1).value<ChangeSet>().inserted.front().id == id);
}

void tst_PersistentContainer::tellsOfBackgroundSavesOnItsOwnThread()
{
    auto background = m_store->container->newBackgroundContext();
    QVERIFY(background.has_value());
    QThread *toldOn = nullptr;
    ChangeSet told;
    connect(m_store->container.get(), &PersistentContainer::contextDidSave, this,
            [&](ManagedObjectContext *, const ChangeSet &changes) {
                toldOn = QThread::currentThread();
                told = changes;
            });
    bool saved = false;
    std::unique_ptr<ManagedObjectContext> context = std::move(*background);
    std::unique_ptr<QThread> worker(QThread::create([&] {
        context->insert<Owner>()->setName(u"imported"_s);
        saved = context->save().has_value();
        context.reset();
    }));
    context->moveToThread(worker.get());
    worker->start();
    QVERIFY(worker->wait());
    QVERIFY(saved);
    QVERIFY2(!toldOn, "told in the worker's turn");
    QTRY_VERIFY(toldOn);
    QCOMPARE(toldOn, m_store->container->thread());
    QCOMPARE(told.inserted.size(), size_t(1));
    m_store->context().mergeChanges(told);
    QCOMPARE(m_store->context().object<Owner>(told.inserted.front().id)->name(), u"imported"_s);
}

void tst_PersistentContainer::aBackgroundContextLeavesNothingUnlessSaved()
{
    {
        auto background = m_store->container->newBackgroundContext();
        for (int i = 0; i < 3000; ++i)
            (*background)->insert<Label>()->setName(u"never saved"_s);
        QVERIFY((*background)->writeDrafts());
    }
    QCOMPARE(m_store->storedCount("label"), 0);
}

void tst_PersistentContainer::aBackgroundContextDoesNotGatherPagesInMemory()
{
    auto background = m_store->container->newBackgroundContext();
    const QString text(10000, u'x');
    for (int i = 0; i < 2000; ++i)
        (*background)->insert<Label>()->setName(text);
    QVERIFY((*background)->writeDrafts());
    const qint64 logSize = QFileInfo(m_store->container->storeFile() + u"-wal"_s).size();
    QVERIFY2(logSize > 10'000'000, qPrintable(QString::number(logSize)));
    QCOMPARE(m_store->storedCount("label"), 0);
    QVERIFY((*background)->save());
    QCOMPARE(m_store->storedCount("label"), 2000);
}

void tst_PersistentContainer::editsWaitForAnImportAndAreThenWritten()
{
    auto background = m_store->container->newBackgroundContext();
    (*background)->insert<Label>()->setName(u"imported"_s);
    QVERIFY((*background)->writeDrafts());
    m_store->addOwner(u"typed meanwhile"_s);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"kept and tried again"_s));
    QVERIFY(!m_store->context().writeDrafts());
    QCOMPARE(m_store->storedCount("owner"), 0);
    QVERIFY((*background)->save());
    QTRY_COMPARE(m_store->storedCount("owner"), 1);
    QCOMPARE(m_store->storedCount("label"), 1);
}

QTEST_GUILESS_MAIN(tst_PersistentContainer)
#include "tst_PersistentContainer.moc"
