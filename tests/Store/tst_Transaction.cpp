#include "StoreFixture.h"

#include "Store/File/SchemaMigrator.h"
#include "support/FaultVfs.h"

#include <QTest>

#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;
using Durability = Transaction::Durability;

Q_DECLARE_METATYPE(tembra::FaultVfs::Fault)
Q_DECLARE_METATYPE(tembra::FaultVfs::Lasting)

namespace {

constexpr int itemsToConfirm = 6;

/// A text that fills some pages, so that a transaction makes several writes.
QString longText(int number)
{
    return QString(6000, QChar(u'a' + number % 26));
}

qint64 itemCount(Connection &connection)
{
    const Value count = queryValue(connection, "SELECT count(*) FROM item");
    const auto *number = std::get_if<qint64>(&count);
    return number ? *number : -1;
}

} // namespace

class tst_Transaction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<StoreFolder>();
        m_vfs = std::make_unique<FaultVfs>();
        QDir().mkpath(m_folder->directory);
        QVERIFY(createStore(m_folder->file(), itemModel(1), m_vfs->name()));
        m_connection = open();
    }
    void cleanup()
    {
        m_connection.reset();
        m_vfs.reset();
    }

    void keepsWhatIsCommitted();
    void undoesWhatIsNot();
    void canBeMovedWithoutEndingTwice();
    void goesOnAfterABrokenRule();
    void refusesToCommitHalf();
    void everyDurableCommitReachesTheDisk();
    void aDraftDoesNotWaitForTheDisk();
    void aFailedBeginLeavesDraftsFast();
    void nothingIsCommittedByItself_data();
    void nothingIsCommittedByItself();
    void losesNothingConfirmed_data();
    void losesNothingConfirmed();
    void trustsNoLogThatFailedToSync();

private:
    std::unique_ptr<Connection> open()
    {
        auto opened = Connection::open(m_folder->file(), Connection::Mode::ReadWrite,
                                       m_vfs->name());
        return opened ? std::move(*opened) : nullptr;
    }
    void addFaultRows();
    void addItemsAndConfirm(const QString &confirmedFile);

    std::unique_ptr<StoreFolder> m_folder;
    std::unique_ptr<FaultVfs> m_vfs;
    std::unique_ptr<Connection> m_connection;
};

void tst_Transaction::addFaultRows()
{
    QTest::addColumn<FaultVfs::Fault>("fault");
    QTest::addColumn<FaultVfs::Lasting>("lasting");
    using Fault = FaultVfs::Fault;
    using Lasting = FaultVfs::Lasting;
    QTest::newRow("disk full once") << Fault::DiskFull << Lasting::Once;
    QTest::newRow("disk full for good") << Fault::DiskFull << Lasting::ForGood;
    QTest::newRow("disk full within a write") << Fault::DiskFull << Lasting::Torn;
    QTest::newRow("disk error once") << Fault::InputOutput << Lasting::Once;
    QTest::newRow("disk error for good") << Fault::InputOutput << Lasting::ForGood;
    QTest::newRow("disk error within a write") << Fault::InputOutput << Lasting::Torn;
}

void tst_Transaction::keepsWhatIsCommitted()
{
    QVERIFY(addItem(*m_connection, 1, u"draft"_s, Durability::Draft));
    QVERIFY(addItem(*m_connection, 2, u"durable"_s, Durability::Durable));
    QVERIFY(!m_connection->inTransaction());
    QCOMPARE(itemCount(*m_connection), 2);
    QVERIFY(queryValue(*m_connection, "SELECT saves FROM store_meta") == Value(qint64(2)));
}

void tst_Transaction::undoesWhatIsNot()
{
    {
        auto transaction = Transaction::begin(*m_connection, Durability::Durable);
        QVERIFY(transaction.has_value());
        QVERIFY(transaction->execute("INSERT INTO item VALUES (1, 'gone')"));
        QVERIFY(m_connection->inTransaction());
    }
    QVERIFY(!m_connection->inTransaction());
    QCOMPARE(itemCount(*m_connection), 0);
    QVERIFY(queryValue(*m_connection, "PRAGMA synchronous") == Value(qint64(1)));
}

void tst_Transaction::canBeMovedWithoutEndingTwice()
{
    auto begun = Transaction::begin(*m_connection, Durability::Draft);
    QVERIFY(begun.has_value());
    Transaction moved = std::move(*begun);
    QVERIFY(!begun->execute("INSERT INTO item VALUES (1, 'through the shell')"));
    begun = failure(u"dropped"_s);
    QVERIFY(m_connection->inTransaction());
    QVERIFY(moved.execute("INSERT INTO item VALUES (2, 'kept')"));
    QVERIFY(moved.commit());
    QCOMPARE(itemCount(*m_connection), 1);
}

void tst_Transaction::goesOnAfterABrokenRule()
{
    auto transaction = Transaction::begin(*m_connection, Durability::Draft);
    QVERIFY(transaction->execute("INSERT INTO item VALUES (1, 'kept')"));
    QVERIFY(!transaction->execute("INSERT INTO item VALUES (1, 'twice')"));
    QCOMPARE(m_connection->lastFault(), StoreFault::Constraint);
    QVERIFY(transaction->commit());
    QCOMPARE(itemCount(*m_connection), 1);
}

void tst_Transaction::refusesToCommitHalf()
{
    auto transaction = Transaction::begin(*m_connection, Durability::Draft);
    QVERIFY(transaction->execute("INSERT INTO item VALUES (1, 'half')"));
    QVERIFY(!transaction->execute("INSERT INTO nowhere VALUES (1)"));
    QVERIFY(!transaction->execute("INSERT INTO item VALUES (2, 'other half')"));
    QVERIFY(!transaction->commit());
    QVERIFY(!m_connection->inTransaction());
    QCOMPARE(itemCount(*m_connection), 0);
}

void tst_Transaction::everyDurableCommitReachesTheDisk()
{
    QVERIFY(addItem(*m_connection, 1, u"draft"_s, Durability::Draft));
    m_vfs->failNothing(FaultVfs::Sync);
    auto empty = Transaction::begin(*m_connection, Durability::Durable);
    QVERIFY(empty->commit());
    QVERIFY2(m_vfs->count() > 0,
             "a durable commit without changes must still wait for the drafts before it");
    QVERIFY(queryValue(*m_connection, "PRAGMA synchronous") == Value(qint64(1)));
}

void tst_Transaction::aDraftDoesNotWaitForTheDisk()
{
    QVERIFY(addItem(*m_connection, 1, u"first, which starts the log"_s, Durability::Draft));
    m_vfs->failNothing(FaultVfs::Sync);
    QVERIFY(addItem(*m_connection, 2, u"second"_s, Durability::Draft));
    QCOMPARE(m_vfs->count(), 0);
}

void tst_Transaction::aFailedBeginLeavesDraftsFast()
{
    const auto other = open();
    auto writing = Transaction::begin(*other, Durability::Draft);
    QVERIFY(!Transaction::begin(*m_connection, Durability::Durable));
    QCOMPARE(m_connection->lastFault(), StoreFault::Busy);
    QVERIFY(queryValue(*m_connection, "PRAGMA synchronous") == Value(qint64(1)));
}

void tst_Transaction::nothingIsCommittedByItself_data()
{
    addFaultRows();
}

/// A caller that goes on after an error, as a loop over many objects may: none of its statements
/// may be committed on its own, before, at or after the point where SQLite gave the transaction up.
void tst_Transaction::nothingIsCommittedByItself()
{
    QFETCH(FaultVfs::Fault, fault);
    QFETCH(FaultVfs::Lasting, lasting);
    // A small cache and spilling make statements write before the commit, where they can fail.
    QVERIFY(m_connection->execute("PRAGMA cache_size=1; PRAGMA cache_spill=1;"));
    bool failed = true;
    int tried = 0;
    for (int number = 1; failed; ++number) {
        m_vfs->failAt(number, fault, lasting);
        bool committed = false;
        {
            auto transaction = Transaction::begin(*m_connection, Durability::Durable);
            for (int item = 0; transaction && item < 12; ++item) {
                Statement *insert = *m_connection->prepare("INSERT INTO item (title) VALUES (?)");
                insert->bind(1, longText(item));
                (void)transaction->run(*insert);
            }
            committed = transaction && transaction->commit();
        }
        failed = m_vfs->failures() > 0;
        m_vfs->failNothing();
        QVERIFY(!m_connection->inTransaction());
        QCOMPARE(itemCount(*m_connection), committed ? 12 : 0);
        QVERIFY(failed || committed);
        QVERIFY(m_connection->execute("DELETE FROM item"));
        tried = number;
    }
    QVERIFY2(tried > 10, qPrintable(QString::number(tried)));
}

void tst_Transaction::losesNothingConfirmed_data()
{
    addFaultRows();
    QTest::newRow("killed") << FaultVfs::Fault::ProcessEnds << FaultVfs::Lasting::Once;
}

/// Every k-th operation fails while items are added one by one; then the process dies, and another
/// one must find every item whose commit was confirmed, and a whole database.
void tst_Transaction::losesNothingConfirmed()
{
    QFETCH(FaultVfs::Fault, fault);
    QFETCH(FaultVfs::Lasting, lasting);
    m_connection.reset();
    const QByteArray store = readFile(m_folder->file());
    const QString confirmedFile = m_folder->root.filePath(u"confirmed"_s);
    const QString endFile = m_folder->root.filePath(u"end"_s);
    bool failed = true;
    for (int number = 1; failed; ++number) {
        for (const char *suffix : {"-wal", "-shm"})
            QFile::remove(m_folder->beside(suffix));
        writeFile(m_folder->file(), store);
        writeFile(confirmedFile, {});
        writeFile(endFile, "died");
        QCOMPARE(runAndDie([&] {
                     m_vfs->failAt(number, fault, lasting);
                     addItemsAndConfirm(confirmedFile);
                     writeFile(endFile, m_vfs->failures() > 0 ? "failed" : "undisturbed");
                     ::_exit(0); // Without closing anything.
                     return true;
                 }),
                 0);
        failed = readFile(endFile) != "undisturbed";
        const auto connection = open();
        QVERIFY(connection != nullptr);
        QVERIFY(queryValue(*connection, "PRAGMA integrity_check") == Value(u"ok"_s));
        const QByteArray confirmed = readFile(confirmedFile);
        for (const char item : confirmed) {
            const Value title = queryValue(*connection, "SELECT title FROM item WHERE id = "
                                                            + QByteArray::number(item));
            QVERIFY2(title == Value(longText(item)),
                     qPrintable(u"item %1, fault %2"_s.arg(int(item)).arg(number)));
        }
        QVERIFY(failed || confirmed.size() == itemsToConfirm);
    }
}

void tst_Transaction::addItemsAndConfirm(const QString &confirmedFile)
{
    const auto connection = open();
    QByteArray confirmed;
    for (int item = 1; connection && item <= itemsToConfirm; ++item) {
        if (!addItem(*connection, item, longText(item),
                     item % 2 ? Durability::Draft : Durability::Durable))
            continue;
        confirmed += char(item);
        writeFile(confirmedFile, confirmed);
    }
}

/// After a failed sync the system may have dropped what it could not write, and a later sync says
/// nothing of it. So the next durable commit has to bring everything into the file itself.
void tst_Transaction::trustsNoLogThatFailedToSync()
{
    QVERIFY(addItem(*m_connection, 1, u"draft"_s, Durability::Draft));
    m_vfs->failAt(1, FaultVfs::Fault::InputOutput, FaultVfs::Lasting::Once, FaultVfs::Sync);
    QVERIFY(!addItem(*m_connection, 2, u"save that fails"_s));
    QCOMPARE(m_vfs->failures(), 1);
    m_vfs->failNothing();
    {
        auto save = Transaction::begin(*m_connection, Durability::Durable);
        QVERIFY(save.has_value());
        QCOMPARE(QFileInfo(m_folder->beside("-wal")).size(), 0);
        QVERIFY(save->execute("INSERT INTO item VALUES (3, 'save')"));
        QVERIFY(save->commit());
    }
    const qint64 logSize = QFileInfo(m_folder->beside("-wal")).size();
    QVERIFY(addItem(*m_connection, 4, u"the next is an ordinary one"_s));
    QVERIFY(QFileInfo(m_folder->beside("-wal")).size() > logSize);
    QCOMPARE(itemCount(*m_connection), 3);
}

QTEST_GUILESS_MAIN(tst_Transaction)
#include "tst_Transaction.moc"
