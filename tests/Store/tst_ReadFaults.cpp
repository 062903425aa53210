#include "TestJournal.h"

#include "support/FaultVfs.h"

#include <QLoggingCategory>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

using Lasting = FaultVfs::Lasting;
Q_DECLARE_METATYPE(Lasting)

namespace {

constexpr int owners = 12;

/// What a user of the store sees of it, or the first error on the way.
Result<QByteArray> look(PersistentContainer &container)
{
    if (const auto loaded = container.loadPersistentStores(); !loaded)
        return failure(loaded.error());
    ManagedObjectContext &context = container.viewContext();
    QByteArray seen;
    const auto items = context.fetchKeys({"Item"});
    if (!items)
        return failure(items.error());
    seen += QByteArray::number(qsizetype(items->size())) + '\n';
    const auto found = context.fetch<Owner>({"Owner"});
    if (!found)
        return failure(found.error());
    for (const auto &owner : *found)
        seen += owner->name().toUtf8() + '\n';
    const auto parts = context.fetch<Part>({"Part"});
    if (!parts)
        return failure(parts.error());
    for (const auto &part : *parts)
        seen += part->content().toUtf8() + '\n';
    return seen;
}

} // namespace

/// Every k-th read fails, from opening a store to its queries.
class tst_ReadFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areErrorsAndNoEmptyAnswers_data();
    void areErrorsAndNoEmptyAnswers();

private:
    static void fill(TestStore &store);
};

void tst_ReadFaults::fill(TestStore &store)
{
    for (int i = 0; i < owners; ++i) {
        const auto item = store.addItem(store.addOwner(QString(900, QChar(u'a' + i))));
        item->parts().at(0)->setContent(QString(700, QChar(u'A' + i)));
    }
    QVERIFY(store.context().save());
}

void tst_ReadFaults::areErrorsAndNoEmptyAnswers_data()
{
    QTest::addColumn<bool>("isKilled");
    QTest::addColumn<Lasting>("lasting");
    for (const bool isKilled : {false, true}) {
        QTest::addRow("once%s", isKilled ? ", with a log" : "") << isKilled << Lasting::Once;
        QTest::addRow("for good%s", isKilled ? ", with a log" : "") << isKilled << Lasting::ForGood;
    }
}

void tst_ReadFaults::areErrorsAndNoEmptyAnswers()
{
    QFETCH(bool, isKilled);
    QFETCH(Lasting, lasting);
    QLoggingCategory::setFilterRules(u"tembra.store.warning=false"_s);
    TestStore original;
    QVERIFY(original.open());
    fill(original);
    const QString file = original.container->storeFile();
    if (!isKilled)
        original.close();
    const QByteArray store = readFile(file);
    const QByteArray log = readFile(file + u"-wal"_s);
    QCOMPARE(log.isEmpty(), !isKilled);

    QByteArray expected;
    int errors = 0;
    bool failed = true;
    for (int number = 0; failed || number < 2; ++number) {
        const QTemporaryDir folder(temporaryTemplate());
        writeFile(folder.filePath(u"Test.sqlite"_s), store);
        if (isKilled)
            writeFile(folder.filePath(u"Test.sqlite-wal"_s), log);
        FaultVfs vfs;
        PersistentContainer container(u"Test"_s, testModel(), {folder.path(), nullptr, vfs.name()});
        // Number 0 fails nothing.
        vfs.failAt(number, FaultVfs::Fault::InputOutput, lasting, FaultVfs::Read);
        const auto seen = look(container);
        failed = vfs.failures() > 0;
        vfs.failNothing();
        const QByteArray where = "read " + QByteArray::number(number);
        QVERIFY2(seen || failed, where.constData());
        QVERIFY2(seen || !seen.error().message.isEmpty(), where.constData());
        if (number == 0)
            expected = *seen;
        // SQLite may do without what it could not read; then it has everything all the same.
        if (seen)
            QVERIFY2(*seen == expected, where.constData());
        else
            ++errors;
    }
    QVERIFY(expected.size() > owners * 1600);
    QVERIFY2(errors > 10, qPrintable(QString::number(errors)));
}

QTEST_GUILESS_MAIN(tst_ReadFaults)
#include "tst_ReadFaults.moc"
