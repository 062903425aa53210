#include "ImportTest.h"

#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"

#include <QDir>
#include <QLineEdit>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

const QString failed = u"Could not load backup file|"_s;

} // namespace

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

    void aCancelledOneChangesNothing()
    {
        const QString path = package(u"Mine"_s, manySessions(20'000));
        QSignalSpy cancelled(m_import.get(), &Import::cancelled);
        QSignalSpy progressed(m_import.get(), &Import::progressed);
        m_import->importPackage(path);
        QVERIFY(m_import->isRunning());
        QTRY_VERIFY(progressed.size() > 0);
        m_import->cancel();
        QVERIFY(cancelled.wait());
        QVERIFY(!m_import->isRunning());
        QCOMPARE(sessionCount(), 0);
        QVERIFY(m_alerts.isEmpty());
    }

    void stoppingWaitsUntilItIsOver()
    {
        m_import->importPackage(package(u"Mine"_s, manySessions(20'000)));
        m_import->stop();
        QVERIFY(!m_import->isRunning());
        QCOMPARE(sessionCount(), 0);
        m_journal->addCounterpart(u"Ben"_s);
        QVERIFY(m_journal->context().save());
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

    void theUserWritesOnMeanwhileAndTheSaveComesAfter()
    {
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->settle();
        QSignalSpy failing(&m_journal->coreData(), &CoreDataInterface::saveFailingChanged);
        QSignalSpy imported(m_import.get(), &Import::imported);
        m_import->importPackage(package(u"Mine"_s, manySessions(5000)));
        ben->setName(u"Benjamin"_s);
        m_journal->coreData().save();
        m_journal->coreData().handleTimer();
        QVERIFY(m_journal->context().hasChanges());
        QVERIFY(imported.size() == 1 || imported.wait(20'000));
        QVERIFY(!m_journal->context().hasChanges());
        QCOMPARE(failing.size(), 0);
        QCOMPARE(ben->name(), u"Benjamin"_s);
        QVERIFY(m_alerts.isEmpty());
    }

    void tagsTypedAMomentAgoMerge()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ben"_s), 1);
        const auto tag = m_journal->addTag(session, u"launch"_s, u"🚀"_s);
        QVERIFY(importAndWait(
            package(u"Mine"_s, R"([{"sessions":[{"tags":[{"emoji":"🚀","name":"launch"}]}]}])")));
        QCOMPARE(tag->sessions().size(), 2);
        QCOMPARE(*m_journal->context().count({.entityName = "Tag"}), 1);
    }
};

QTEST_MAIN(tst_Import)

#include "tst_Import.moc"
