#include "TestJournal.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "support/DiskRecorder.h"
#include "support/FaultVfs.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

namespace {

/// A state of the journal that was written, and by which operation of the disk that was done.
struct State
{
    QByteArray dump;
    int operations;
    bool isSaved;
};

/// What else reached the disk, of what nobody had waited for.
const std::pair<const char *, DiskRecorder::Survives> survivors[] = {
    {"nothing", [](int) { return false; }},
    {"everything", [](int) { return true; }},
    {"every second write", [](int number) { return number % 2 == 0; }},
    {"the other half", [](int number) { return number % 2 == 1; }},
    {"every third write", [](int number) { return number % 3 == 0; }},
    {"most writes", [](int number) { return number % 5 != 0; }},
};

bool isWhole(const QString &folder, const QString &file)
{
    PersistentContainer container(u"Test"_s, testModel(), {folder, nullptr, {}});
    if (const auto loaded = container.loadPersistentStores(); !loaded) {
        qWarning("%s", qPrintable(loaded.error().description()));
        return false;
    }
    if (!container.logSetAside().isEmpty()) {
        qWarning("the log was set aside");
        return false;
    }
    const auto connection = Connection::open(file, Connection::Mode::ReadWrite);
    const auto check = connection ? (*connection)->prepare("PRAGMA integrity_check")
                                  : Result<Statement *>(failure(connection.error()));
    const auto row = check ? (*check)->step() : Result<bool>(failure(check.error()));
    return row && *row && (*check)->value(0) == Value(u"ok"_s);
}

} // namespace

/// The power fails after each operation of the disk, and of what was not synced any part is lost.
class tst_PowerLoss : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void keepsWhatWasSaved_data();
    void keepsWhatWasSaved();

private:
    void written(bool isSaved);

    FaultVfs m_vfs;
    DiskRecorder m_disk;
    std::unique_ptr<TestStore> m_store;
    QMap<QByteArray, QByteArray> m_before;
    QList<State> m_states;
};

void tst_PowerLoss::written(bool isSaved)
{
    // Of a copy: a second connection would write to the disk, too.
    const QTemporaryDir copy(temporaryTemplate());
    const QString file = m_store->container->storeFile();
    const QString name = copy.filePath(QFileInfo(file).fileName());
    for (const auto &[path, content] :
         m_disk.afterPowerLoss(m_before, m_disk.count(), [](int) { return true; }).toStdMap())
        writeFile(name + QString::fromUtf8(path).mid(file.size()), content);
    m_states.append({dumpStore(name), m_disk.count(), isSaved});
}

/// Someone at work with drafts, saves and checkpoints.
void tst_PowerLoss::initTestCase()
{
    QLoggingCategory::setFilterRules(u"tembra.store.warning=false"_s);
    m_store = std::make_unique<TestStore>(m_vfs.name());
    QVERIFY(m_store->open());
    ManagedObjectContext &context = m_store->context();
    const auto owner = m_store->addOwner(u"Ann"_s);
    QVERIFY(context.save());
    QVERIFY(m_store->open());
    const QString file = m_store->container->storeFile();
    m_before.insert(file.toUtf8(), QByteArray());
    // Closing this file of the process would take away the locks that SQLite holds on it.
    QVERIFY(runAndDie([&] { return QFile::copy(file, file + u"-before"_s); }) == 0);
    m_before[file.toUtf8()] = readFile(file + u"-before"_s);

    m_vfs.record(&m_disk);
    written(true);
    for (int round = 0; round < 4; ++round) {
        ManagedObjectContext &now = m_store->context();
        const auto item = m_store->addItem(m_store->addOwner(QString(700, QChar(u'a' + round))));
        QVERIFY(now.writeDrafts());
        written(false);
        item->parts().at(0)->setContent(QString(6000, QChar(u'A' + round)));
        QVERIFY(now.writeDrafts());
        written(false);
        QVERIFY(now.save());
        written(true);
        item->setFlag(qint16(round));
        QVERIFY(now.writeDrafts());
        written(false);
        if (round % 2 == 0) {
            auto other = Connection::open(file, Connection::Mode::ReadWrite, m_vfs.name());
            QVERIFY(other && (*other)->checkpoint());
            (*other)->setCheckpointsOnClose(false);
        }
    }
    m_vfs.record(nullptr);
    QVERIFY(m_disk.count() > 60);
}

void tst_PowerLoss::keepsWhatWasSaved_data()
{
    QTest::addColumn<int>("kind");
    for (int kind = 0; kind < int(std::size(survivors)); ++kind)
        QTest::newRow(survivors[kind].first) << kind;
}

void tst_PowerLoss::keepsWhatWasSaved()
{
    QFETCH(int, kind);
    const QString store = m_store->container->storeFile();
    bool someDraftWasLost = false;
    for (int number = 0; number <= m_disk.count(); ++number) {
        const QTemporaryDir folder(temporaryTemplate());
        const QString file = folder.filePath(u"Test.sqlite"_s);
        const auto found = m_disk.afterPowerLoss(m_before, number, survivors[kind].second);
        for (auto it = found.cbegin(); it != found.cend(); ++it)
            writeFile(file + QString::fromUtf8(it.key()).mid(store.size()), it.value());
        const QByteArray where = "operation " + QByteArray::number(number);
        QVERIFY2(isWhole(folder.path(), file), where.constData());
        const QByteArray dump = dumpStore(file);
        qsizetype saved = 0;
        qsizetype last = 0;
        for (qsizetype i = 0; i < m_states.size() && m_states[i].operations <= number; ++i) {
            last = i;
            if (m_states[i].isSaved)
                saved = i;
        }
        // Of a commit in progress, everything may be there already.
        qsizetype state = saved;
        while (state < m_states.size() && m_states[state].dump != dump)
            ++state;
        QVERIFY2(state <= last + 1 && state < m_states.size(),
                 QByteArray(where + ": something saved was lost").constData());
        someDraftWasLost = someDraftWasLost || state < last;
    }
    // Otherwise the disk forgot nothing, and nothing of the above was put to the test.
    QCOMPARE(someDraftWasLost, QByteArray(survivors[kind].first) != "everything");
}

QTEST_GUILESS_MAIN(tst_PowerLoss)
#include "tst_PowerLoss.moc"
