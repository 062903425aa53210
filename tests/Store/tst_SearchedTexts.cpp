#include "Store/Query/SearchedTexts.h"

#include "Store/File/Connection.h"
#include "Store/Query/SearchFunction.h"

#include <QTemporaryDir>
#include <QTest>

#include <random>

using namespace tembra;
using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

/// What a connection remembers of the texts that were searched is what they are now.
class tst_SearchedTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_connection = open(Connection::Mode::Create);
        QVERIFY(m_connection);
        QVERIFY(m_connection->execute("CREATE TABLE t (id INTEGER PRIMARY KEY, text TEXT);"
                                      "INSERT INTO t VALUES (1, 'Café'), (2, 'zebra'), (3, NULL),"
                                      " (4, ''), (5, 'CAFETERIA')"));
    }
    void cleanup() { m_connection.reset(); }

    void aSearchRemembersWhatItRead()
    {
        QCOMPARE(known(1, u"cafe"_s), Value());
        QCOMPARE(search(u"CAFÉ"_s), (QList<qint64>{1, 5}));
        QCOMPARE(known(1, u"cafe"_s), Value(qint64(1)));
        QCOMPARE(known(1, u"afé"_s), Value(qint64(1)));
        QCOMPARE(known(2, u"cafe"_s), Value(qint64(0)));
        QCOMPARE(search(u"caf"_s), (QList<qint64>{1, 5}));
        QCOMPARE(search(u"zeb"_s), QList<qint64>{2});
    }
    void noTextIsNotAnEmptyText()
    {
        QCOMPARE(search(u"a"_s), (QList<qint64>{1, 2, 5}));
        QCOMPARE(known(3, u"a"_s), Value());
        QCOMPARE(known(4, u"a"_s), Value(qint64(0)));
    }
    void columnsAreNotMistakenForEachOther()
    {
        QCOMPARE(search(u"cafe"_s), (QList<qint64>{1, 5}));
        QCOMPARE(valueOf("SELECT known_text_contains(8, 1, 'cafe')"), Value());
    }

    void whatChangesIsForgotten_data()
    {
        QTest::addColumn<QByteArray>("change");
        QTest::addColumn<QList<qint64>>("foundAfterwards");
        QTest::newRow("another text")
            << QByteArray("UPDATE t SET text = 'tea' WHERE id = 1") << QList<qint64>{5};
        QTest::newRow("no text") << QByteArray("UPDATE t SET text = NULL WHERE id = 1")
                                 << QList<qint64>{5};
        QTest::newRow("deleted") << QByteArray("DELETE FROM t WHERE id = 1") << QList<qint64>{5};
        QTest::newRow("another one in its place")
            << QByteArray("DELETE FROM t WHERE id = 2; INSERT INTO t VALUES (2, 'cafe')")
            << QList<qint64>{1, 2, 5};
    }
    void whatChangesIsForgotten()
    {
        QFETCH(QByteArray, change);
        QFETCH(QList<qint64>, foundAfterwards);
        (void)search(u"cafe"_s);
        QVERIFY(m_connection->execute(change));
        QCOMPARE(search(u"cafe"_s), foundAfterwards);
        // The others were not read again.
        QCOMPARE(known(5, u"cafe"_s), Value(qint64(1)));
    }
    void whatAnotherConnectionChangesIsForgotten()
    {
        (void)search(u"cafe"_s);
        const auto other = open(Connection::Mode::ReadWrite);
        QVERIFY(other->execute("UPDATE t SET text = 'tea' WHERE id = 1"));
        QCOMPARE(search(u"cafe"_s), QList<qint64>{5});
    }
    void whatIsRolledBackIsForgotten()
    {
        QVERIFY(m_connection->execute("BEGIN; UPDATE t SET text = 'tea' WHERE id = 1"));
        QCOMPARE(search(u"tea"_s), QList<qint64>{1});
        QVERIFY(m_connection->execute("ROLLBACK"));
        QCOMPARE(search(u"tea"_s), QList<qint64>());
        QCOMPARE(search(u"cafe"_s), (QList<qint64>{1, 5}));
    }
    void aRowThatFailsToChangeStaysAsItWas()
    {
        QVERIFY(m_connection->execute("CREATE UNIQUE INDEX once ON t(text)"));
        (void)search(u"cafe"_s);
        QVERIFY(!m_connection->execute("UPDATE t SET text = 'same' WHERE id IN (1, 2)"));
        QCOMPARE(search(u"cafe"_s), (QList<qint64>{1, 5}));
        QCOMPARE(search(u"same"_s), QList<qint64>());
    }

    void findsWhatAPlainSearchFinds()
    {
        std::mt19937 random(7);
        const auto below = [&](int bound) { return int(random() % unsigned(bound)); };
        const QStringList words{u"Größe"_s, u"ÉTÉ"_s, u"zebra"_s, u"встреча"_s, u"東京"_s, u"ﬁn"_s};
        const auto other = open(Connection::Mode::ReadWrite);
        for (int round = 0; round < 500; ++round) {
            Connection &writer = below(8) == 0 ? *other : *m_connection;
            const auto write = writer.prepare("INSERT OR REPLACE INTO t VALUES (?, ?)");
            QVERIFY(write);
            (*write)->bind(1, qint64(1 + below(40)));
            (*write)->bind(2, QString(words[below(6)] + u' ' + words[below(6)]));
            QVERIFY((*write)->run());
            const QString needle = words[below(6)].mid(below(2), 1 + below(4));
            QCOMPARE(search(needle), plainSearch(needle));
        }
    }

    void keepsWhatItHasOnceItIsFull()
    {
        SearchedTexts texts;
        const auto connection = open(Connection::Mode::ReadWrite);
        texts.follow(connection->handle());
        const std::string half(SearchedTexts::capacity / 2 - 1000, 'x');
        texts.beginSearch();
        texts.remember(0, 1, half);
        texts.remember(0, 2, "short");
        texts.remember(0, 3, half);
        texts.remember(0, 4, half);
        QCOMPARE(texts.find(0, 2).value(), "short"sv);
        QVERIFY(texts.find(0, 1) == half && texts.find(0, 3) == half && !texts.find(0, 4));
        texts.beginSearch();
        QVERIFY(texts.find(0, 1) && texts.find(0, 2) && !texts.find(0, 4));
        texts.beginSearch();
        QVERIFY(texts.find(0, 1));
    }
    void makesRoomWhenOtherTextsAreSearched()
    {
        SearchedTexts texts;
        const auto connection = open(Connection::Mode::ReadWrite);
        texts.follow(connection->handle());
        texts.beginSearch();
        texts.remember(0, 1, std::string(SearchedTexts::capacity - 1000, 'x'));
        texts.remember(0, 2, std::string(2000, 'x'));
        texts.beginSearch();
        QVERIFY(!texts.find(0, 5) && !texts.find(0, 6) && texts.find(0, 1));
        texts.beginSearch();
        QVERIFY(!texts.find(0, 1));
        texts.remember(0, 5, "five");
        QCOMPARE(texts.find(0, 5).value(), "five"sv);
    }
    void holdsNoTextThatIsLargerThanItself()
    {
        SearchedTexts texts;
        texts.remember(0, 1, std::string(SearchedTexts::capacity, 'x'));
        QVERIFY(!texts.find(0, 1));
        texts.remember(0, 2, "");
        QCOMPARE(texts.find(0, 2).value(), ""sv);
    }

private:
    std::unique_ptr<Connection> open(Connection::Mode mode)
    {
        auto opened = Connection::open(m_folder->filePath(u"texts.sqlite"_s), mode);
        return opened ? std::move(*opened) : nullptr;
    }
    QList<qint64> keys(const QByteArray &test, const QString &needle, int bindings)
    {
        const auto statement = m_connection->prepare("SELECT id FROM t WHERE " + test
                                                     + " ORDER BY id");
        if (!statement)
            return {-1};
        for (int index = 1; index <= bindings; ++index)
            (*statement)->bind(index, needle);
        QList<qint64> found;
        for (Result<bool> row = (*statement)->step(); row && *row; row = (*statement)->step())
            found.append((*statement)->key(0));
        return found;
    }
    QList<qint64> search(const QString &needle)
    {
        return keys(SearchFunction::testOfRecord("text", 7, "id"), needle, 2);
    }
    QList<qint64> plainSearch(const QString &needle)
    {
        return keys("text_contains(text, ?)", needle, 1);
    }
    Value valueOf(const QByteArray &sql, const QString &needle = {})
    {
        const auto statement = m_connection->prepare(sql);
        if (!statement)
            return u"cannot be prepared"_s;
        if (!needle.isNull())
            (*statement)->bind(1, needle);
        const auto row = (*statement)->step();
        const Value value = row && *row ? (*statement)->value(0) : Value(u"no row"_s);
        (*statement)->reset();
        return value;
    }
    Value known(qint64 record, const QString &needle)
    {
        return valueOf("SELECT known_text_contains(7, " + QByteArray::number(record) + ", ?)",
                       needle);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Connection> m_connection;
};

QTEST_GUILESS_MAIN(tst_SearchedTexts)

#include "tst_SearchedTexts.moc"
