#include "ImportTest.h"

#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"

#include "support/FaultVfs.h"

#include <QDir>
#include <QLineEdit>

#include <atomic>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

const QString failed = u"Could not load backup file|"_s;

std::atomic<bool> folderHangs = false;

} // namespace

Q_DECLARE_METATYPE(std::function<void(tembra::ProgressSheet &)>)

/// Stands in for the system's: reading from a folder that does not answer never returns.
extern "C" ssize_t pread(int file, void *bytes, size_t size, off_t offset)
{
    // The store reads with another call.
    while (folderHangs)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return ssize_t(::syscall(SYS_pread64, file, bytes, size, offset));
}

class tst_Import : public ImportTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start(); }
    void cleanup() { stop(); }

    void bringsABackupIn()
    {
        QSignalSpy imported(m_import.get(), &Import::imported);
        QVERIFY(importAndWait(package(u"Mine"_s, manySessions(3))));
        QCOMPARE(imported.size(), 1);
        QCOMPARE(m_journal->counterparts().size(), 1);
        QCOMPARE(sessionCount(), 3);
        QVERIFY(m_alerts.isEmpty());
        QVERIFY(!m_journal->context().hasChanges());
        QVERIFY(!m_journal->context().undoManager()->canUndo());
    }

    void whatCannotBeImportedIsToldInAnAlert_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("informativeText");
        QTest::newRow("a wrong value") << QByteArray(R"([{"sessions":[{"date":"x"}]}])")
                                       << u"teammate 1, session 1, date: expected a number"_s;
        QTest::newRow("no JSON") << QByteArray("Hello") << QString();
        QTest::newRow("nothing") << QByteArray() << QString();
    }
    void whatCannotBeImportedIsToldInAnAlert()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, informativeText);
        QVERIFY(importAndWait(package(u"Mine"_s, json)));
        QCOMPARE(m_alerts.size(), 1);
        QVERIFY(m_alerts.first().startsWith(failed + informativeText));
        QVERIFY(m_alerts.first().size() > failed.size() + 10);
        QVERIFY(m_alerts.first().endsWith(u"|Okay"_s));
        QVERIFY(m_journal->counterparts().isEmpty());
    }

    void aPackageWithoutTheFileHasNoData()
    {
        const QString path = m_journal->filePath(u"Empty.tembrabackup"_s);
        QVERIFY(QDir().mkdir(path));
        QVERIFY(importAndWait(path));
        QCOMPARE(m_alerts, QStringList(failed + u"No teammate data found.|Okay"_s));
    }

    void aMissingPackageCouldNotBeLoaded()
    {
        QVERIFY(importAndWait(m_journal->filePath(u"No.tembrabackup"_s)));
        QCOMPARE(m_alerts.size(), 1);
        QVERIFY(m_alerts.first().startsWith(failed + u"Could not load file: "_s));
    }

    void anEmptyListRaisesNoAlert()
    {
        QSignalSpy imported(m_import.get(), &Import::imported);
        QVERIFY(importAndWait(package(u"Mine"_s, "[]")));
        QCOMPARE(imported.size(), 1);
        QVERIFY(m_alerts.isEmpty());
        QVERIFY(m_journal->counterparts().isEmpty());
    }

    void aCancelledOneChangesNothing_data()
    {
        QTest::addColumn<std::function<void(ProgressSheet &)>>("cancel");
        const auto row = [](const char *name, std::function<void(ProgressSheet &)> cancel) {
            QTest::newRow(name) << std::move(cancel);
        };
        row("button", [](ProgressSheet &sheet) {
            QTest::mouseClick(sheet.findChild<QPushButton *>(u"progressCancelButton"_s),
                              Qt::LeftButton);
        });
        row("Space",
            [](ProgressSheet &sheet) { QTest::keyClick(sheet.focusWidget(), Qt::Key_Space); });
        row("Escape",
            [](ProgressSheet &sheet) { QTest::keyClick(sheet.focusWidget(), Qt::Key_Escape); });
        row("closing the sheet", [](ProgressSheet &sheet) { sheet.close(); });
    }
    void aCancelledOneChangesNothing()
    {
        QFETCH(std::function<void(ProgressSheet &)>, cancel);
        QSignalSpy cancelled(m_import.get(), &Import::cancelled);
        m_import->importPackage(endlessPackage());
        QVERIFY(m_import->isRunning());
        QVERIFY(!progressSheet()); // Not yet.
        QTRY_VERIFY(progressSheet() && progressSheet()->isActiveWindow());
        QCOMPARE(progressSheet()->accessibleName(), u"Importing “Long” …"_s);
        cancel(*progressSheet());
        QVERIFY(cancelled.wait());
        QVERIFY(!m_import->isRunning());
        QVERIFY(!progressSheet());
        QTRY_VERIFY(m_window->isActiveWindow());
        QCOMPARE(sessionCount(), 0);
        QVERIFY(m_alerts.isEmpty());
    }

    void cancellingWaitsUntilItIsOver()
    {
        m_import->importPackage(endlessPackage());
        m_import->cancelAndWait();
        QVERIFY(!m_import->isRunning());
        QCOMPARE(sessionCount(), 0);
        m_journal->addCounterpart(u"Ben"_s);
        QVERIFY(m_journal->context().save());
    }

    void noWindowTakesInputUntilItEnds()
    {
        QLineEdit field(m_window.get());
        field.show();
        QWidget other;
        QLineEdit otherField(&other);
        other.show();
        m_import->importPackage(package(u"Mine"_s, manySessions(2000)));
        QTest::keyClicks(&field, u"typed"_s);
        QTest::keyClicks(&otherField, u"typed"_s);
        QVERIFY(m_import->isRunning());
        QTRY_VERIFY_WITH_TIMEOUT(!m_import->isRunning(), 60'000);
        QCOMPARE(field.text(), QString());
        QCOMPARE(otherField.text(), QString());
        QTest::keyClicks(&otherField, u"typed"_s);
        QCOMPARE(otherField.text(), u"typed"_s);
    }

    void onlyOneRunsAtATime()
    {
        QSignalSpy imported(m_import.get(), &Import::imported);
        const QString other = package(u"Other"_s, manySessions(1));
        m_import->importPackage(package(u"Mine"_s, manySessions(2000)));
        m_import->importPackage(other);
        QTRY_VERIFY_WITH_TIMEOUT(!m_import->isRunning(), 60'000);
        QCOMPARE(imported.size(), 1);
        QCOMPARE(sessionCount(), 2000);
    }

    void savesAndEndsEditingFirst()
    {
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->settle();
        m_journal->coreData().setEndEditing([&] { ben->setName(u"Benjamin"_s); });
        m_import->importPackage(endlessPackage());
        QCOMPARE(ben->name(), u"Benjamin"_s);
        QVERIFY(!m_journal->context().hasChanges());
        m_import->cancelAndWait();
        m_journal->coreData().setEndEditing([] {});
    }

    void theAutosaveWaitsUntilItEnds()
    {
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->settle();
        QSignalSpy failing(&m_journal->coreData(), &CoreDataInterface::saveFailingChanged);
        m_import->importPackage(endlessPackage());
        QTRY_VERIFY(progressSheet()); // By then it holds the store's place for writing.
        ben->setName(u"Benjamin"_s);
        m_journal->coreData().handleTimer();
        QVERIFY(m_journal->context().hasChanges());
        m_import->cancelAndWait();
        QVERIFY(!m_journal->context().hasChanges());
        QCOMPARE(failing.size(), 0);
        QVERIFY(m_alerts.isEmpty());
    }

    void oneThatCannotBeSavedBeforeDoesNotBegin()
    {
        FaultVfs disk;
        m_import.reset();
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), disk.name());
        m_import = std::make_unique<Import>(m_journal->coreData(), m_window.get());
        m_journal->addCounterpart(u"Ben"_s);
        const QString path = package(u"Mine"_s, manySessions(1));
        disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        m_import->importPackage(path);
        disk.failNothing();
        QVERIFY(!m_import->isRunning());
        QCOMPARE(m_alerts.size(), 1);
        QVERIFY2(m_alerts.first().startsWith(failed + u"The disk is full"),
                 qPrintable(m_alerts.first()));
        QVERIFY(m_journal->context().hasChanges());
        QCOMPARE(sessionCount(), 0);
        m_import.reset();
        m_journal.reset();
    }

    void aFolderThatDoesNotAnswerCanBeLeft()
    {
        const QString path = package(u"Mine"_s, manySessions(1));
        folderHangs = true;
        QSignalSpy cancelled(m_import.get(), &Import::cancelled);
        m_import->importPackage(path);
        QTRY_VERIFY(progressSheet());
        QTest::keyClick(progressSheet(), Qt::Key_Escape);
        QVERIFY(cancelled.wait());
        m_import->importPackage(path);
        m_import->cancelAndWait(); // As quitting does.
        folderHangs = false;
        QCOMPARE(sessionCount(), 0);
    }

    void tagsTypedAMomentAgoMerge()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ben"_s), 1);
        const auto tag = m_journal->addTag(session, u"launch"_s, u"🚀"_s);
        QVERIFY(importAndWait(
            package(u"Mine"_s, R"([{"sessions":[{"tags":[{"emoji":"🚀","name":"launch"}]}]}])")));
        QCOMPARE(tag->sessions().size(), 2);
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Tag"}), 1);
    }
};

QTEST_MAIN(tst_Import)

#include "tst_Import.moc"
