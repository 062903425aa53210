#include "StoreFixture.h"

#include "support/FaultVfs.h"

#include <QTest>

#include <limits>
#include <sys/stat.h>

using namespace tembra;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(tembra::Value)

namespace {

std::unique_ptr<Connection> openNew(const QString &file)
{
    auto opened = Connection::open(file, Connection::Mode::Create);
    return opened ? std::move(*opened) : nullptr;
}

int permissionsOf(const QString &file)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(file).constData(), &status) == 0 ? int(status.st_mode & 07777)
                                                                     : -1;
}

} // namespace

class tst_Connection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_file = m_folder->filePath(u"a.sqlite"_s);
    }

    void isSetUpTheOneWay_data();
    void isSetUpTheOneWay();
    void keepsValuesAsTheyAre_data();
    void keepsValuesAsTheyAre();
    void storesALoneSurrogateAsReplacementCharacter();
    void storesTextByLength();
    void storesANotANumberAsMissing();
    void reusesStatementsWithNothingBound();
    void stepsPastTheEndFromTheStart();
    void reportsAMalformedStatement();
    void reportsAPlaceHolderThatIsNotThere();
    void tellsBusyFromOtherFaults();
    void tellsABrokenRule();
    void makesFilesForTheUserAlone();
    void refusesALink();
    void refusesAMissingFileUnlessToBeMade();
    void readOnlyChangesNothing_data();
    void readOnlyChangesNothing();
    void opensAFileAgainThatWasOpenedForReadingOnly();
    void saysThatAFileCouldBeOpenedForReadingOnly();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

void tst_Connection::isSetUpTheOneWay_data()
{
    QTest::addColumn<QByteArray>("pragma");
    QTest::addColumn<QString>("expected");
    QTest::newRow("write-ahead log") << QByteArray("journal_mode") << u"wal"_s;
    QTest::newRow("foreign keys") << QByteArray("foreign_keys") << u"1"_s;
    QTest::newRow("untrusted schema") << QByteArray("trusted_schema") << u"0"_s;
    QTest::newRow("cell sizes checked") << QByteArray("cell_size_check") << u"1"_s;
    QTest::newRow("no memory map") << QByteArray("mmap_size") << u"0"_s;
    QTest::newRow("no spilling") << QByteArray("cache_spill") << u"0"_s;
    QTest::newRow("drafts do not wait") << QByteArray("synchronous") << u"1"_s;
    QTest::newRow("no checkpoints of its own") << QByteArray("wal_autocheckpoint") << u"0"_s;
    QTest::newRow("never waits") << QByteArray("busy_timeout") << u"0"_s;
}

void tst_Connection::isSetUpTheOneWay()
{
    QFETCH(QByteArray, pragma);
    QFETCH(QString, expected);
    const auto connection = openNew(m_file);
    QVERIFY(connection);
    const Value value = queryValue(*connection, "PRAGMA " + pragma);
    const auto *number = std::get_if<qint64>(&value);
    QCOMPARE(number ? QString::number(*number) : std::get<QString>(value), expected);
}

void tst_Connection::keepsValuesAsTheyAre_data()
{
    QTest::addColumn<Value>("value");
    QTest::newRow("missing") << Value();
    QTest::newRow("zero") << Value(qint64(0));
    QTest::newRow("largest integer") << Value(std::numeric_limits<qint64>::max());
    QTest::newRow("smallest integer") << Value(std::numeric_limits<qint64>::min());
    QTest::newRow("date with fractions") << Value(651234567.123456789);
    QTest::newRow("whole date stays a date") << Value(5.0);
    QTest::newRow("smallest double") << Value(std::numeric_limits<double>::denorm_min());
    QTest::newRow("empty text") << Value(u""_s);
    QTest::newRow("ASCII") << Value(u"plain"_s);
    QTest::newRow("beyond the basic plane") << Value(u"👩‍👩‍👧 שלום e\u0301"_s);
    QTest::newRow("with U+0000") << Value(QString(u"a"_s + QChar(0) + u"b"_s + QChar(0)));
    QTest::newRow("only U+0000") << Value(QString(QChar(0)));
    QTest::newRow("byte order mark first") << Value(QString(QChar(0xfeff) + u"a"_s));
    QTest::newRow("1 MB") << Value(QString(1 << 20, QChar(u'é')));
    QTest::newRow("digits stay a text") << Value(u"0042"_s);
}

void tst_Connection::keepsValuesAsTheyAre()
{
    QFETCH(Value, value);
    const auto connection = openNew(m_file);
    QVERIFY(connection->execute("CREATE TABLE t (v)"));
    Statement *insert = *connection->prepare("INSERT INTO t VALUES (?)");
    insert->bind(1, value);
    QVERIFY(insert->run());
    const Value read = queryValue(*connection, "SELECT v FROM t");
    QCOMPARE(read.index(), value.index());
    QVERIFY(read == value);
    if (const auto *text = std::get_if<QString>(&read))
        QVERIFY(!text->isNull());
}

void tst_Connection::storesALoneSurrogateAsReplacementCharacter()
{
    const auto connection = openNew(m_file);
    Statement *echo = *connection->prepare("SELECT ?");
    const QString lone = u"x"_s + QChar(0xd83d) + u"y"_s + QChar(0xde00);
    echo->bind(1, lone);
    QVERIFY(*echo->step());
    QCOMPARE(std::get<QString>(echo->value(0)), u"x\ufffdy\ufffd"_s);
}

void tst_Connection::storesTextByLength()
{
    const auto connection = openNew(m_file);
    Statement *query = *connection->prepare("SELECT typeof(?1), length(CAST(?1 AS BLOB))");
    query->bind(1, QString(u"a"_s + QChar(0) + u"é"_s));
    QVERIFY(*query->step());
    QCOMPARE(std::get<QString>(query->value(0)), u"text"_s);
    QCOMPARE(query->key(1), 4);
}

void tst_Connection::storesANotANumberAsMissing()
{
    const auto connection = openNew(m_file);
    Statement *echo = *connection->prepare("SELECT ?");
    echo->bind(1, std::numeric_limits<double>::quiet_NaN());
    QVERIFY(*echo->step());
    QVERIFY(isMissing(echo->value(0)));
}

void tst_Connection::reusesStatementsWithNothingBound()
{
    const auto connection = openNew(m_file);
    Statement *first = *connection->prepare("SELECT ?");
    first->bind(1, u"left over"_s);
    QVERIFY(*first->step());
    Statement *second = *connection->prepare("SELECT ?");
    QCOMPARE(second, first);
    QVERIFY(*second->step());
    QVERIFY(isMissing(second->value(0)));
}

void tst_Connection::stepsPastTheEndFromTheStart()
{
    const auto connection = openNew(m_file);
    Statement *query = *connection->prepare("SELECT 7");
    QVERIFY(*query->step());
    QVERIFY(!*query->step());
    QVERIFY(*query->step());
    QCOMPARE(query->key(0), 7);
}

void tst_Connection::reportsAMalformedStatement()
{
    const auto connection = openNew(m_file);
    const auto statement = connection->prepare("SELEKT 1");
    QVERIFY(!statement);
    QVERIFY(statement.error().message.contains(m_file));
    QVERIFY2(statement.error().detail.contains(u"SELEKT"_s), qPrintable(statement.error().detail));
    QCOMPARE(connection->lastFault(), StoreFault::Other);
    QVERIFY(!connection->execute("DELETE FROM nowhere"));
}

void tst_Connection::reportsAPlaceHolderThatIsNotThere()
{
    const auto connection = openNew(m_file);
    Statement *query = *connection->prepare("SELECT 1");
    query->bindKey(1, 5);
    QVERIFY(!query->step());
    QVERIFY(*query->step());
}

void tst_Connection::tellsBusyFromOtherFaults()
{
    const auto first = openNew(m_file);
    QVERIFY(first->execute("CREATE TABLE t (v)"));
    const auto second = Connection::open(m_file, Connection::Mode::ReadWrite);
    QVERIFY(second.has_value());
    auto writing = Transaction::begin(*first, Transaction::Durability::Draft);
    QVERIFY(writing.has_value());
    QVERIFY(!Transaction::begin(**second, Transaction::Durability::Draft));
    QCOMPARE((*second)->lastFault(), StoreFault::Busy);
    QVERIFY(writing->commit());
    QVERIFY(Transaction::begin(**second, Transaction::Durability::Draft).has_value());
}

void tst_Connection::tellsABrokenRule()
{
    const auto connection = openNew(m_file);
    QVERIFY(connection->execute("CREATE TABLE t (id INTEGER PRIMARY KEY, t REFERENCES t(id))"));
    QVERIFY(!connection->execute("INSERT INTO t VALUES (1, 99)"));
    QCOMPARE(connection->lastFault(), StoreFault::Constraint);
}

void tst_Connection::makesFilesForTheUserAlone()
{
    const mode_t before = ::umask(0);
    const auto connection = openNew(m_file);
    QVERIFY(connection->execute("CREATE TABLE t (v)"));
    ::umask(before);
    for (const char *suffix : {"", "-wal", "-shm"})
        QCOMPARE(permissionsOf(m_file + QLatin1String(suffix)), 0600);
}

void tst_Connection::refusesALink()
{
    const QString target = m_folder->filePath(u"target.sqlite"_s);
    QVERIFY(openNew(target) != nullptr);
    QVERIFY(QFile::link(target, m_file));
    for (const auto mode :
         {Connection::Mode::Create, Connection::Mode::ReadWrite, Connection::Mode::ReadOnly})
        QVERIFY(!Connection::open(m_file, mode));
}

void tst_Connection::refusesAMissingFileUnlessToBeMade()
{
    for (const auto mode : {Connection::Mode::ReadWrite, Connection::Mode::ReadOnly}) {
        const auto opened = Connection::open(m_file, mode);
        // SQLite may put off looking at the file until it is read.
        QVERIFY(!opened || !(*opened)->execute("SELECT * FROM sqlite_schema"));
        QVERIFY(!QFile::exists(m_file));
    }
}

void tst_Connection::readOnlyChangesNothing_data()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("after a clean close") << false;
    QTest::newRow("with what a killed process left") << true;
}

void tst_Connection::readOnlyChangesNothing()
{
    QFETCH(bool, killed);
    const auto fill = [&] {
        static std::unique_ptr<Connection> connection;
        connection = openNew(m_file);
        const bool done = connection->execute("CREATE TABLE t (v); INSERT INTO t VALUES ('seen')")
                              .has_value();
        if (!killed)
            connection.reset();
        return done;
    };
    QCOMPARE(runAndDie(fill), 0);
    QCOMPARE(QFile::exists(m_file + u"-wal"_s), killed);
    const auto before = snapshot(m_folder->path());
    {
        const auto connection = Connection::open(m_file, Connection::Mode::ReadOnly);
        QVERIFY(connection.has_value());
        QVERIFY(queryValue(**connection, "SELECT v FROM t") == Value(u"seen"_s));
        QVERIFY(snapshot(m_folder->path()) == before);
        QVERIFY(!(*connection)->execute("INSERT INTO t VALUES (1)"));
    }
    QVERIFY(snapshot(m_folder->path()) == before);
}

void tst_Connection::opensAFileAgainThatWasOpenedForReadingOnly()
{
    const StoreFolder folder;
    makeKilledStore(folder, "DELETE FROM item");
    FaultVfs vfs;
    bool failed = true;
    for (int number = 1; failed; ++number) {
        vfs.failAt(number, FaultVfs::Fault::OpenedReadOnly, FaultVfs::Lasting::Once,
                   FaultVfs::Open);
        const auto connection = Connection::open(folder.file(), Connection::Mode::ReadWrite,
                                                 vfs.name());
        QVERIFY2(connection, connection ? "" : qPrintable(connection.error().description()));
        (*connection)->setCheckpointsOnClose(false); // So that there is a log to be opened.
        failed = vfs.failures() > 0;
        QVERIFY(addItem(**connection, number, u"written"_s));
        QVERIFY(!failed || number < 3);
    }
}

void tst_Connection::saysThatAFileCouldBeOpenedForReadingOnly()
{
    const StoreFolder folder;
    makeKilledStore(folder);
    FaultVfs vfs;
    for (const int number : {1, 2}) {
        vfs.failAt(number, FaultVfs::Fault::OpenedReadOnly, FaultVfs::Lasting::ForGood,
                   FaultVfs::Open);
        const auto connection = Connection::open(folder.file(), Connection::Mode::ReadWrite,
                                                 vfs.name());
        QVERIFY(!connection);
        QVERIFY2(connection.error().message.contains(u"for reading only"_s),
                 qPrintable(connection.error().description()));
    }
}

QTEST_GUILESS_MAIN(tst_Connection)
#include "tst_Connection.moc"
