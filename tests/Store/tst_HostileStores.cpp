#include "TestJournal.h"

#include <QLoggingCategory>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype pageSize = 4096;

/// Opens a store, lists everything in it, changes something, saves and closes.
void use(const QString &folder)
{
    PersistentContainer container(u"Test"_s, testModel(), {folder, nullptr, {}});
    if (!container.loadPersistentStores())
        return;
    ManagedObjectContext &context = container.viewContext();
    if (const auto found = context.fetch<Owner>({"Owner"})) {
        for (const auto &owner : *found) {
            (void)owner->name();
            (void)owner->itemIDs();
        }
    }
    if (const auto found = context.fetch<Item>({"Item"})) {
        for (const auto &item : *found) {
            for (const auto &part : item->parts())
                (void)(part ? part->content() : QString());
            (void)item->labels();
        }
        if (!found->isEmpty())
            (void)context.deleteObject(found->first());
    }
    context.insert<Owner>()->setName(u"new"_s);
    (void)context.save();
}

/// The signal that a process using this content ended with; 0 when none did.
int signalFrom(const QByteArray &content)
{
    const QTemporaryDir folder(temporaryTemplate());
    writeFile(folder.filePath(u"Test.sqlite"_s), content);
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(20); // Nothing hangs, either.
        use(folder.path());
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

QByteArray overwritten(QByteArray content, qsizetype offset, const QByteArray &bytes)
{
    return content.replace(offset, bytes.size(), bytes);
}

} // namespace

/// Nothing that is found in a file stops the program with a signal.
class tst_HostileStores : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyPageOverwritten_data();
    void everyPageOverwritten();
    void everyPageInThePlaceOfAnother();
    void cutAtEveryPage();
    void everyByteOfTheHeaderChanged();
    void valuesOfOtherTypes();

private:
    QByteArray m_store;
};

void tst_HostileStores::initTestCase()
{
    QLoggingCategory::setFilterRules(u"tembra.store.warning=false"_s);
    TestStore store;
    QVERIFY(store.open());
    const auto label = store.addLabel(u"red"_s);
    for (int i = 0; i < 12; ++i) {
        const auto item = store.addItem(store.addOwner(QString(500, QChar(u'a' + i))));
        item->parts().at(0)->setContent(QString(i == 5 ? 9000 : 700, QChar(u'A' + i)));
        label->addRelated(Label::itemsProperty, *item);
    }
    QVERIFY(store.context().save());
    const QString file = store.container->storeFile();
    store.close();
    m_store = readFile(file);
    QVERIFY(m_store.size() > 15 * pageSize);
    QCOMPARE(signalFrom(m_store), 0);
}

void tst_HostileStores::everyPageOverwritten_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("zeros") << QByteArray(pageSize, '\0');
    QTest::newRow("ones") << QByteArray(pageSize, '\xff');
    QTest::newRow("end of the page") << QByteArray(pageSize / 2, '\xa5');
    QTest::newRow("head of the page") << QByteArray(12, '\x7f');
}

void tst_HostileStores::everyPageOverwritten()
{
    QFETCH(QByteArray, bytes);
    for (qsizetype page = 0; page < m_store.size(); page += pageSize) {
        const qsizetype offset = bytes.size() == pageSize / 2 ? page + pageSize / 2 : page;
        QVERIFY2(signalFrom(overwritten(m_store, offset, bytes)) == 0,
                 QByteArray::number(page / pageSize + 1).constData());
    }
}

void tst_HostileStores::everyPageInThePlaceOfAnother()
{
    const qsizetype pages = m_store.size() / pageSize;
    for (qsizetype page = 0; page < pages; ++page) {
        for (const qsizetype step : {qsizetype(1), qsizetype(2), pages / 2}) {
            const QByteArray other = m_store.mid((page + step) % pages * pageSize, pageSize);
            QVERIFY2(signalFrom(overwritten(m_store, page * pageSize, other)) == 0,
                     QByteArray::number(page + 1).constData());
        }
    }
}

void tst_HostileStores::cutAtEveryPage()
{
    for (qsizetype size = 0; size < m_store.size(); size += pageSize) {
        for (const qsizetype cut : {size, size + 1, size + pageSize / 2})
            QVERIFY2(signalFrom(m_store.first(cut)) == 0, QByteArray::number(cut).constData());
    }
}

void tst_HostileStores::everyByteOfTheHeaderChanged()
{
    for (qsizetype offset = 0; offset < 108; ++offset) {
        for (const char byte : {'\0', '\x01', '\x7f', '\xff'})
            QVERIFY2(signalFrom(overwritten(m_store, offset, QByteArray(1, byte))) == 0,
                     QByteArray::number(offset).constData());
    }
}

void tst_HostileStores::valuesOfOtherTypes()
{
    for (const char *value : {"'text'", "x'00ff00'", "1e300", "-9223372036854775808", "NULL"}) {
        TestStore store;
        QVERIFY(store.open());
        (void)store.addItem(store.addOwner(u"Ann"_s));
        QVERIFY(store.context().save());
        const QString file = store.container->storeFile();
        const QByteArray set = QByteArray(" SET ") + "#=" + value;
        for (const char *column : {"owner.name", "item.date", "item.flag", "item.owner",
                                   "part.item", "part.number", "part.content"}) {
            const auto names = QByteArray(column).split('.');
            QVERIFY(store.executeElsewhere("PRAGMA foreign_keys=OFF; UPDATE " + names[0]
                                           + QByteArray(set).replace("#", names[1])));
        }
        store.close();
        QVERIFY2(signalFrom(readFile(file)) == 0, value);
    }
}

QTEST_GUILESS_MAIN(tst_HostileStores)
#include "tst_HostileStores.moc"
