#include "Backup/ImportQueue.h"

#include "ImportTest.h"

#include <QDir>
#include <QFile>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_ImportQueue : public ImportTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        start();
        m_queue = std::make_unique<ImportQueue>(*m_import, m_journal->dates, m_window.get());
    }
    void cleanup()
    {
        m_queue.reset();
        stop();
    }

    void asksBeforeItImports()
    {
        const QString path = package(u"Mine"_s, manySessions(2));
        m_queue->enqueue({path});
        QTRY_VERIFY(sheet());
        QCOMPARE(textOf(*sheet(), "messageText"), u"Do you want to import this backup file?"_s);
        QCOMPARE(sheet()->buttons().at(0)->text(), u"Import"_s);
        QCOMPARE(sheet()->buttons().at(1)->text(), u"Cancel"_s);
        QCOMPARE(sessionCount(), 0);
        QSignalSpy finished(m_import.get(), &Import::finished);
        QTest::mouseClick(sheet()->buttons().at(0), Qt::LeftButton);
        QVERIFY(finished.wait());
        QCOMPARE(sessionCount(), 2);
    }

    void tellsWhatItIsAskedAbout()
    {
        const QString path = package(u"Mine"_s, "[]");
        QFile file(path + u"/teammates.json"_s);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(
            file.setFileTime(QDateTime({2026, 11, 3}, {15, 4}), QFileDevice::FileModificationTime));
        m_queue->enqueue({path});
        QTRY_VERIFY(sheet());
        const QStringList lines = textOf(*sheet(), "informativeText").split(u'\n');
        QCOMPARE(lines.size(), 2);
        QVERIFY2(lines.first().startsWith(u"Last modified: Nov 3, 2026, "_s),
                 qPrintable(lines.first()));
        QVERIFY2(lines.first().contains(u":04"_s), qPrintable(lines.first()));
        QCOMPARE(lines.at(1), u"Mine.tembrabackup, 2 bytes"_s);
    }

    void cancelChangesNothing()
    {
        m_queue->enqueue({package(u"Mine"_s, manySessions(2))});
        QTRY_VERIFY(sheet());
        QTest::keyClick(sheet(), Qt::Key_Escape);
        QTRY_VERIFY(!sheet());
        QVERIFY(!m_import->isRunning());
        QCOMPARE(sessionCount(), 0);
    }

    void severalComeOneAfterTheOther()
    {
        m_queue->enqueue({package(u"First"_s, manySessions(500)),
                          package(u"Second"_s, manySessions(1)),
                          package(u"Third"_s, manySessions(3))});
        QTRY_VERIFY(sheet());
        QVERIFY(textOf(*sheet(), "informativeText").contains(u"First"_s));
        QTest::keyClick(sheet(), Qt::Key_Return);
        // While one comes in, nothing is asked.
        QVERIFY(!m_import->isRunning() || !sheet());
        QTRY_VERIFY(sheet());
        QCOMPARE(sessionCount(), 500);
        QVERIFY(textOf(*sheet(), "informativeText").contains(u"Second"_s));
        QTest::keyClick(sheet(), Qt::Key_Escape);
        QTRY_VERIFY(sheet() && textOf(*sheet(), "informativeText").contains(u"Third"_s));
        QTest::keyClick(sheet(), Qt::Key_Return);
        QTRY_COMPARE(sessionCount(), 503);
        QTRY_VERIFY(!m_import->isRunning());
        QVERIFY(!sheet());
    }

    void oneThatFailsLetsTheNextCome()
    {
        m_queue->enqueue({package(u"Broken"_s, "x"), package(u"Good"_s, manySessions(1))});
        QTRY_VERIFY(sheet());
        QTest::keyClick(sheet(), Qt::Key_Return);
        QTRY_VERIFY(sheet() && textOf(*sheet(), "informativeText").contains(u"Good"_s));
        QCOMPARE(m_alerts.size(), 1);
        QTest::keyClick(sheet(), Qt::Key_Return);
        QTRY_COMPARE(sessionCount(), 1);
        QTRY_VERIFY(!m_import->isRunning());
    }

    void whatIsNoPackageIsToldWithoutAQuestion()
    {
        m_queue->enqueue({m_journal->filePath(u"No.tembrabackup"_s), package(u"Good"_s, "[]")});
        QTRY_COMPARE(m_alerts.size(), 1);
        QVERIFY(m_alerts.first().startsWith(u"Could not load backup file|Could not load file: "_s));
        QTRY_VERIFY(sheet());
        QTest::keyClick(sheet(), Qt::Key_Escape);
    }

    void aPackageWithoutDataIsToldWithoutAQuestion()
    {
        const QString path = m_journal->filePath(u"Empty.tembrabackup"_s);
        QVERIFY(QDir().mkdir(path));
        m_queue->enqueue({path});
        QTRY_COMPARE(m_alerts,
                     QStringList(u"Could not load backup file|No teammate data found.|Okay"_s));
    }

private:
    std::unique_ptr<ImportQueue> m_queue;
};

QTEST_MAIN(tst_ImportQueue)

#include "tst_ImportQueue.moc"
