#include "Store/Schema/ObjectUri.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {
const QString uuid = u"0f8fad5b-d9cb-469f-a165-70867728950e"_s;
}

class tst_ObjectUri : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsBackWhatItWrote_data();
    void readsBackWhatItWrote();
    void refusesEverythingElse_data();
    void refusesEverythingElse();
};

void tst_ObjectUri::readsBackWhatItWrote_data()
{
    QTest::addColumn<QByteArray>("entity");
    QTest::addColumn<qint64>("key");
    QTest::addColumn<QString>("uri");
    QTest::newRow("first") << QByteArray("Session") << qint64(1)
                           << u"tembra-store://%1/Session/p1"_s.arg(uuid);
    QTest::newRow("largest") << QByteArray("Tag") << std::numeric_limits<qint64>::max()
                             << u"tembra-store://%1/Tag/p9223372036854775807"_s.arg(uuid);
}

void tst_ObjectUri::readsBackWhatItWrote()
{
    QFETCH(QByteArray, entity);
    QFETCH(qint64, key);
    QFETCH(QString, uri);
    QCOMPARE(objectUri(uuid, entity, key), uri);
    const auto parts = parseObjectUri(uri);
    QVERIFY(parts.has_value());
    QCOMPARE(parts->storeUuid, uuid);
    QCOMPARE(parts->entityName, QString::fromUtf8(entity));
    QCOMPARE(parts->key, key);
}

void tst_ObjectUri::refusesEverythingElse_data()
{
    QTest::addColumn<QString>("uri");
    const auto row = [](const char *name, const char *form) {
        QTest::newRow(name) << QString::fromUtf8(form).replace(u"UUID"_s, uuid);
    };
    row("nothing", "");
    row("other scheme", "x-store://UUID/Session/p1");
    row("scheme in capitals", "TEMBRA-STORE://UUID/Session/p1");
    row("no store", "tembra-store:///Session/p1");
    row("store cut short", "tembra-store://0f8fad5b/Session/p1");
    row("no entity", "tembra-store://UUID//p1");
    row("no key", "tembra-store://UUID/Session");
    row("no number", "tembra-store://UUID/Session/p");
    row("no p", "tembra-store://UUID/Session/1");
    row("key zero", "tembra-store://UUID/Session/p0");
    row("leading zero", "tembra-store://UUID/Session/p01");
    row("negative key", "tembra-store://UUID/Session/p-1");
    row("key with sign", "tembra-store://UUID/Session/p+1");
    row("key too large", "tembra-store://UUID/Session/p9223372036854775808");
    row("letters in the key", "tembra-store://UUID/Session/p1a");
    row("other digits", "tembra-store://UUID/Session/p١");
    row("blank before", " tembra-store://UUID/Session/p1");
    row("line end after", "tembra-store://UUID/Session/p1\n");
    row("more after", "tembra-store://UUID/Session/p1/p2");
    row("query", "tembra-store://UUID/Session/p1?x");
}

void tst_ObjectUri::refusesEverythingElse()
{
    QFETCH(QString, uri);
    QVERIFY(!parseObjectUri(uri));
}

QTEST_GUILESS_MAIN(tst_ObjectUri)
#include "tst_ObjectUri.moc"
