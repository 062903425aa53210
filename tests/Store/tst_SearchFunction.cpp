#include "Store/Query/SearchFunction.h"

#include "Foundation/Text/TextFolding.h"
#include "Store/File/Connection.h"
#include "Store/File/Statement.h"

#include <QTemporaryDir>
#include <QTest>

#include <random>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_SearchFunction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void finds_data();
    void finds();
    void findsNothingInNothing();
    void takesEachRowsOwnNeedle();
    void takesTheNeedleOfEachRun();
    void findsWhatWasChangedAndRolledBack();
    void findsWhatAPlainSearchFinds();
    void isNotForSchemas();

private:
    QList<qint64> found(const QByteArray &sql, const std::vector<Value> &bindings);

    QTemporaryDir m_folder;
    std::unique_ptr<Connection> m_connection;
};

void tst_SearchFunction::initTestCase()
{
    auto opened = Connection::open(m_folder.filePath(u"texts.sqlite"_s), Connection::Mode::Create);
    QVERIFY(opened);
    m_connection = std::move(*opened);
    QVERIFY(m_connection->execute(
        "CREATE TABLE t (id INTEGER PRIMARY KEY, text TEXT, needle TEXT);"
        "INSERT INTO t VALUES (1, 'Café', 'CAFE'), (2, 'zebra', 'x'), (3, NULL, 'a'),"
        " (4, '', ''), (5, 'ZEBRA', NULL), (6, 'x', 'X')"));
}

QList<qint64> tst_SearchFunction::found(const QByteArray &sql, const std::vector<Value> &bindings)
{
    QList<qint64> keys;
    const auto statement = m_connection->prepare(sql);
    if (!statement)
        return {-1};
    for (size_t i = 0; i < bindings.size(); ++i)
        (*statement)->bind(int(i) + 1, bindings[i]);
    for (Result<bool> row = (*statement)->step(); row && *row; row = (*statement)->step())
        keys.append((*statement)->key(0));
    return keys;
}

void tst_SearchFunction::finds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<bool>("isFound");

    QTest::newRow("itself") << u"zebra"_s << u"zebra"_s << true;
    QTest::newRow("part") << u"A zebra crosses"_s << u"ZEBRA"_s << true;
    QTest::newRow("longer") << u"zeb"_s << u"zebra"_s << false;
    QTest::newRow("accents in the text") << u"Un café, s'il vous plaît"_s << u"cafe"_s << true;
    QTest::newRow("accents in the needle") << u"CAFE"_s << u"é"_s << true;
    QTest::newRow("combining accent") << u"cafe\u0301"_s << u"é"_s << true;
    QTest::newRow("sharp s") << u"Straße"_s << u"STRASSE"_s << true;
    QTest::newRow("Cyrillic case") << u"Встреча"_s << u"ВСТРЕЧА"_s << true;
    QTest::newRow("not ASCII in ASCII") << u"plain text"_s << u"ж"_s << false;
    QTest::newRow("empty needle") << u"plain"_s << u""_s << true;
    QTest::newRow("empty needle in an empty text") << u""_s << u""_s << true;
    QTest::newRow("needle that folds to nothing") << u"plain"_s << u"\u0301"_s << true;
    QTest::newRow("needle in an empty text") << u""_s << u"a"_s << false;
    QTest::newRow("wildcards mean themselves") << u"100 percent"_s << u"1%t"_s << false;
    QTest::newRow("beyond U+0000") << QString(u"a"_s + QChar(0) + u"Zebra"_s) << u"zebra"_s << true;
    QTest::newRow("U+0000 itself")
        << QString(u"a"_s + QChar(0) + u"b"_s) << QString(QChar(0) + u"B"_s) << true;
    QTest::newRow("emoji") << u"done ✅ today"_s << u"✅ TODAY"_s << true;
    QTest::newRow("a megabyte") << QString(QString(1 << 20, u'é') + u"End"_s) << u"eeEND"_s << true;
}

void tst_SearchFunction::finds()
{
    QFETCH(QString, text);
    QFETCH(QString, needle);
    QFETCH(bool, isFound);
    QCOMPARE(found("SELECT text_contains(?, ?)", {text, needle}), QList<qint64>{isFound});
}

void tst_SearchFunction::findsNothingInNothing()
{
    QCOMPARE(found("SELECT text_contains(NULL, ?)", {u""_s}), QList<qint64>{0});
    QCOMPARE(found("SELECT text_contains(?, NULL)", {u"text"_s}), QList<qint64>{0});
}

void tst_SearchFunction::takesEachRowsOwnNeedle()
{
    QCOMPARE(found("SELECT id FROM t WHERE text_contains(text, needle) ORDER BY id", {}),
             (QList<qint64>{1, 4, 6}));
}

void tst_SearchFunction::takesTheNeedleOfEachRun()
{
    const QByteArray sql = "SELECT id FROM t WHERE text_contains(text, ?) ORDER BY id";
    QCOMPARE(found(sql, {u"ZÉBRA"_s}), (QList<qint64>{2, 5}));
    QCOMPARE(found(sql, {u"cafe"_s}), QList<qint64>{1});
    QCOMPARE(found(sql, {u""_s}), (QList<qint64>{1, 2, 4, 5, 6}));
}

void tst_SearchFunction::findsWhatWasChangedAndRolledBack()
{
    const QByteArray sql = "SELECT id FROM t WHERE text_contains(text, ?) ORDER BY id";
    QVERIFY(m_connection->execute("BEGIN; UPDATE t SET text = 'tea' WHERE id = 1"));
    QCOMPARE(found(sql, {u"cafe"_s}), QList<qint64>());
    QCOMPARE(found(sql, {u"TEA"_s}), QList<qint64>{1});
    QVERIFY(m_connection->execute("ROLLBACK"));
    QCOMPARE(found(sql, {u"cafe"_s}), QList<qint64>{1});
    QCOMPARE(found(sql, {u"TEA"_s}), QList<qint64>());
}

/// Many texts in one run of a statement, as the needle is folded once for all of them.
void tst_SearchFunction::findsWhatAPlainSearchFinds()
{
    const QStringList words{u"Größe"_s, u"ÉTÉ"_s, u"zebra"_s, u"встреча"_s, u"東京"_s, u"ﬁn"_s};
    std::mt19937 random(7);
    const auto below = [&](int bound) { return int(random() % unsigned(bound)); };
    QVERIFY(m_connection->execute("CREATE TABLE words (id INTEGER PRIMARY KEY, text TEXT)"));
    QStringList texts;
    const auto insert = m_connection->prepare("INSERT INTO words VALUES (?, ?)");
    QVERIFY(insert);
    for (int key = 1; key <= 300; ++key) {
        texts.append(words[below(6)] + u' ' + words[below(6)]);
        (*insert)->bindKey(1, key);
        (*insert)->bind(2, texts.last());
        QVERIFY((*insert)->run());
    }
    for (int round = 0; round < 100; ++round) {
        const QString needle = words[below(6)].mid(below(2), 1 + below(4));
        const std::string folded = foldForSearch(needle.toStdString());
        QList<qint64> expected;
        for (int key = 1; key <= 300; ++key) {
            if (foldForSearch(texts[key - 1].toStdString()).find(folded) != std::string::npos)
                expected.append(key);
        }
        QCOMPARE(found("SELECT id FROM words WHERE text_contains(text, ?) ORDER BY id", {needle}),
                 expected);
    }
}

void tst_SearchFunction::isNotForSchemas()
{
    QVERIFY(m_connection->execute("CREATE VIEW sly AS SELECT text_contains(text, 'x') FROM t"));
    QVERIFY(!m_connection->execute("SELECT * FROM sly"));
}

QTEST_GUILESS_MAIN(tst_SearchFunction)
#include "tst_SearchFunction.moc"
