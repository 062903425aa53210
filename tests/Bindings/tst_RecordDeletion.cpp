#include "Bindings/RecordDeletion.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Undo/UndoManager.h"
#include "support/FaultVfs.h"
#include "support/GuiTest.h"
#include "support/JournalFixture.h"
#include "Toolkit/Alert.h"

#include <QLabel>
#include <QRegularExpression>
#include <QTest>
#include <QWidget>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_RecordDeletion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { open({}); }

    void cleanup()
    {
        m_ana.reset();
        m_ben.reset();
        m_window.reset();
        m_journal.reset();
        m_completions = 0;
    }

    void nothingIsDeletedBeforeTheAnswer()
    {
        ask({m_ana});
        QCOMPARE(text(u"messageText"_s), u"Really?"_s);
        QCOMPARE(text(u"informativeText"_s), u"Somebody goes."_s);
        QCOMPARE(m_journal->counterparts().size(), 2);
        press(1);
        QCOMPARE(m_journal->counterparts().size(), 2);
        QCOMPARE(m_completions, 0);
    }

    void deleteDeletesAllInOneStepOfUndo()
    {
        ask({m_ana, m_ben});
        press(0);
        QCOMPARE(m_journal->counterparts().size(), 0);
        QCOMPARE(m_completions, 1);
        m_journal->context().undoManager()->undo();
        QCOMPARE(m_journal->counterparts().size(), 2);
    }

    void theCursorSaysToWaitWhileRecordsAreDeleted()
    {
        ask({m_ana});
        int waits = 0;
        connect(&m_journal->context(), &ManagedObjectContext::objectsDidChange, this, [&waits] {
            const QCursor *cursor = QGuiApplication::overrideCursor();
            waits += cursor && cursor->shape() == Qt::WaitCursor ? 1 : 0;
        });
        press(0);
        QCOMPARE(waits, 1);
        QVERIFY(!QGuiApplication::overrideCursor());
        disconnect(&m_journal->context(), nullptr, this, nullptr);
    }

    void whatIsDeletedElsewhereMeanwhileIsPassedOver()
    {
        ask({m_ana, m_ben});
        QVERIFY(m_journal->context().deleteObject(m_ana).has_value());
        press(0);
        QCOMPARE(m_journal->counterparts().size(), 0);
        QCOMPARE(m_completions, 1);
        QVERIFY(!sheet());
    }

    void aFailureIsToldAndDeletesNothing()
    {
        cleanup();
        FaultVfs disk;
        open(disk.name());
        ask({m_ana, m_ben});
        disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Could not delete records: ."_s));
        press(0);
        QCOMPARE(m_completions, 0);
        QCOMPARE(text(u"messageText"_s), u"It failed."_s);
        QVERIFY(!text(u"informativeText"_s).isEmpty());
        QVERIFY(!m_ana->isDeleted() && !m_ben->isDeleted());
        disk.failNothing();
        QCOMPARE(m_journal->counterparts().size(), 2);
        cleanup();
    }

private:
    void open(const QByteArray &vfs)
    {
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), vfs);
        m_ana = m_journal->addCounterpart(u"Ana"_s);
        m_ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->settle();
        m_window = std::make_unique<QWidget>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void ask(const QList<std::shared_ptr<ManagedObject>> &records)
    {
        confirmDeletion(*m_window, m_journal->context(), records,
                        {u"Really?"_s, u"Somebody goes."_s, u"It failed."_s},
                        [this] { ++m_completions; });
        QVERIFY(sheet());
    }

    Alert *sheet() const { return gui::sheetOf(*m_window); }

    QString text(const QString &label) const { return sheet()->findChild<QLabel *>(label)->text(); }

    void press(int button) const { gui::pressAlertButton(*sheet(), button); }

    std::unique_ptr<JournalFixture> m_journal;
    std::shared_ptr<Counterpart> m_ana;
    std::shared_ptr<Counterpart> m_ben;
    std::unique_ptr<QWidget> m_window;
    int m_completions = 0;
};

QTEST_MAIN(tst_RecordDeletion)
#include "tst_RecordDeletion.moc"
