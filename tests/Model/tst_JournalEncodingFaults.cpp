#include "BackupFixture.h"
#include "Model/JournalEncoding.h"
#include "Store/File/Connection.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "support/FaultVfs.h"

#include <QLoggingCategory>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Some of everything, so that each kind of record must be read.
void fill(const JournalFixture &journal, int meetings)
{
    const auto ana = journal.addCounterpart(u"Ana"_s);
    for (int i = 0; i < meetings; ++i) {
        const auto meeting = journal.addSession(ana, Date{double(i)});
        journal.write(meeting, NoteIdentifier(i % 9), u"words "_s.repeated(50));
        journal.addTag(meeting, QString::number(i % 5), u"🚀"_s);
    }
    journal.addCounterpart(u"Ben"_s);
}

Result<void> executeElsewhere(const JournalFixture &journal, const QByteArray &sql)
{
    auto other = Connection::open(journal.coreData().persistentContainer().storeFile(),
                                  Connection::Mode::ReadWrite);
    if (!other)
        return failure(other.error());
    return (*other)->execute(sql);
}

} // namespace

class tst_JournalEncodingFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void editsThatCannotBeWritten();
    void recordsThatCannotBeRead_data();
    void recordsThatCannotBeRead();
    void readsThatFail();
    void aLinkToATagThatIsGone();
    void editsMeanwhileAreWhollyInItOrNotAtAll();
    void dateThatIsNone();
};

void tst_JournalEncodingFaults::initTestCase()
{
    QLoggingCategory::setFilterRules(u"tembra.store.warning=false"_s);
}

void tst_JournalEncodingFaults::editsThatCannotBeWritten()
{
    FaultVfs vfs;
    JournalFixture journal(utc(2026, 11, 20), vfs.name());
    fill(journal, 3);
    journal.settle();
    const auto all = journal.counterparts();
    const QByteArray before = encodeJournal(journal.context(), all).value();

    vfs.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood, FaultVfs::Write);
    all.first()->setName(u"Anna"_s);
    const auto refused = encodeJournal(journal.context(), all);
    QVERIFY(!refused);
    QVERIFY(!refused.error().message.isEmpty());
    QCOMPARE_GT(vfs.failures(), 0);

    vfs.failNothing();
    QCOMPARE(encodeJournal(journal.context(), all),
             QByteArray(before).replace("\"Ana\"", "\"Anna\""));
}

void tst_JournalEncodingFaults::recordsThatCannotBeRead_data()
{
    QTest::addColumn<QByteArray>("table");
    for (const char *table : {"counterpart", "session", "note", "tag", "session_tag"})
        QTest::newRow(table) << QByteArray(table);
}

void tst_JournalEncodingFaults::recordsThatCannotBeRead()
{
    QFETCH(QByteArray, table);
    JournalFixture journal;
    fill(journal, 3);
    journal.settle();
    const QByteArray before = writeBackup(journal).value();
    journal.reopen();
    // Nothing of them is read yet but their keys.
    const auto all = journal.counterparts();
    QCOMPARE(all.size(), 2);

    const QByteArray away = "ALTER TABLE " + table + " RENAME TO away";
    const QByteArray back = "ALTER TABLE away RENAME TO " + table;
    QVERIFY(executeElsewhere(journal, away));
    const auto refused = encodeJournal(journal.context(), all);
    QVERIFY2(!refused, refused.value_or(QByteArray()).constData());
    QVERIFY(!refused.error().message.isEmpty());

    QVERIFY(executeElsewhere(journal, back));
    QCOMPARE(encodeJournal(journal.context(), all), before);
}

void tst_JournalEncodingFaults::readsThatFail()
{
    FaultVfs vfs;
    JournalFixture journal(utc(2026, 11, 20), vfs.name());
    fill(journal, 300);
    journal.settle();
    const QByteArray before = writeBackup(journal).value();
    int refusals = 0;
    bool met = true;
    for (int number = 1; met; ++number) {
        journal.reopen(); // With nothing in memory.
        const auto all = journal.counterparts();
        vfs.failAt(number, FaultVfs::Fault::InputOutput, FaultVfs::Lasting::Once, FaultVfs::Read);
        const auto written = encodeJournal(journal.context(), all);
        met = vfs.failures() > 0;
        vfs.failNothing();
        // All or nothing.
        QVERIFY2(written ? *written == before : !written.error().message.isEmpty(),
                 QByteArray::number(number).constData());
        refusals += !written;
    }
    QVERIFY2(refusals > 20, QByteArray::number(refusals).constData());
}

void tst_JournalEncodingFaults::aLinkToATagThatIsGone()
{
    JournalFixture journal;
    fill(journal, 3);
    journal.settle();
    const auto all = journal.counterparts();
    QVERIFY(executeElsewhere(journal, "PRAGMA foreign_keys=OFF; DELETE FROM tag WHERE name = '1'"));
    const auto refused = encodeJournal(journal.context(), all);
    QVERIFY2(!refused, refused.value_or(QByteArray()).constData());
    QVERIFY(refused.error().message.contains(u"damaged"_s));
}

void tst_JournalEncodingFaults::editsMeanwhileAreWhollyInItOrNotAtAll()
{
    FaultVfs vfs;
    JournalFixture journal(utc(2026, 11, 20), vfs.name());
    fill(journal, 150);
    journal.settle();
    const auto all = journal.counterparts();
    const auto moved = all.first()->sessions().last();
    const auto tagged = all.first()->sessions().first();
    const auto tag = journal.addTag(tagged, u"new"_s, u"🆕"_s);
    const auto write = [&](bool isEdited) {
        moved->setCounterpart(isEdited ? all.last() : all.first());
        isEdited ? tagged->addTag(*tag) : tagged->removeTag(*tag);
        return journal.context().writeDrafts().has_value();
    };
    QVERIFY(write(true));
    const QByteArray after = writeBackup(journal).value();
    QVERIFY(write(false));
    const QByteArray before = writeBackup(journal).value();

    int oldMoments = 0;
    int newMoments = 0;
    bool isEdited = true;
    for (int number = 1; isEdited; ++number) {
        isEdited = false;
        const auto context = newImportContext(journal);
        vfs.callAt(
            number, [&] { isEdited = write(true); }, FaultVfs::Read);
        const auto written = encodeJournal(*context, {});
        vfs.failNothing();
        const bool isOld = written == before;
        QVERIFY2(isOld || written == after, QByteArray::number(number).constData());
        (isOld ? oldMoments : newMoments) += isEdited;
        QVERIFY(write(false));
    }
    // Only the first few reads come before the moment is fixed.
    QVERIFY2(oldMoments > 10, QByteArray::number(oldMoments).constData());
    QVERIFY2(newMoments < 5, QByteArray::number(newMoments).constData());
}

void tst_JournalEncodingFaults::dateThatIsNone()
{
    JournalFixture journal;
    fill(journal, 1);
    journal.settle();
    journal.reopen();
    QVERIFY(executeElsewhere(journal, "UPDATE session SET date = 9e999"));
    const auto refused = writeBackup(journal);
    QVERIFY(!refused);
    QCOMPARE(refused.error().message,
             u"A number is infinite or undefined, so it cannot be written."_s);
}

QTEST_GUILESS_MAIN(tst_JournalEncodingFaults)
#include "tst_JournalEncodingFaults.moc"
