#include "Store/Rows/RecordArchive.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_RecordArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        auto opened = Connection::open(m_folder.filePath(u"a.sqlite"_s), Connection::Mode::Create);
        QVERIFY(opened);
        m_connection = std::move(*opened);
        QVERIFY(m_connection->execute("DROP TABLE IF EXISTS t;"
                                      "CREATE TABLE t (id INTEGER PRIMARY KEY, v)"));
    }

    void givesValuesBackByteForByte_data()
    {
        QTest::addColumn<QByteArray>("sql");
        QTest::newRow("missing") << QByteArray("NULL");
        QTest::newRow("integer") << QByteArray("-9223372036854775808");
        QTest::newRow("number") << QByteArray("0.1");
        QTest::newRow("empty text") << QByteArray("''");
        QTest::newRow("text") << QByteArray("'Grüße 😀'");
        QTest::newRow("text with U+0000") << QByteArray("'a' || char(0) || 'b'");
        QTest::newRow("text with a byte order mark") << QByteArray("char(0xFEFF) || 'a'");
        QTest::newRow("text that is no UTF-8") << QByteArray("CAST(x'61ff62' AS TEXT)");
    }
    void givesValuesBackByteForByte()
    {
        QFETCH(QByteArray, sql);
        QVERIFY(m_connection->execute("INSERT INTO t VALUES (7, " + sql + ')'));
        RecordArchive archive(3);
        const auto select = m_connection->prepare("SELECT id, v FROM t");
        QVERIFY(*(*select)->step());
        archive.addRow({2, (*select)->key(0)}, **select, 1);
        (*select)->reset();
        archive.finish();
        const auto insert = m_connection->prepare("INSERT INTO t VALUES (8, ?)");
        int rows = 0;
        archive.forEachRow([&](ObjectID id, std::vector<StoredValue> &row) {
            ++rows;
            (*insert)->bindStored(1, row.at(0));
            return (*insert)->run() && id == ObjectID{2, 7};
        });
        QCOMPARE(rows, 1);
        const auto same = m_connection->prepare(
            "SELECT count(*), count(DISTINCT typeof(v)), count(DISTINCT hex(v)) FROM t");
        QVERIFY(*(*same)->step());
        QCOMPARE((*same)->key(0), 2);
        QCOMPARE((*same)->key(1), 1);
        QCOMPARE((*same)->key(2), 1);
        (*same)->reset();
    }

    void keepsEachLinkOnce()
    {
        RecordArchive archive(1);
        QVERIFY(archive.isEmpty());
        for (const qint64 owner : {4, 2, 4})
            archive.addLink({0, 1, owner, 9});
        archive.finish();
        QVERIFY(!archive.isEmpty());
        QVERIFY(archive.links() == (std::vector<LinkKey>{{0, 1, 2, 9}, {0, 1, 4, 9}}));
    }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<Connection> m_connection;
};

QTEST_GUILESS_MAIN(tst_RecordArchive)

#include "tst_RecordArchive.moc"
