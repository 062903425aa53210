#include "CounterpartsPaneTest.h"

#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"
#include "support/FaultVfs.h"
#include "Toolkit/EmptyState.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QScopeGuard>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_CounterpartsPane : public CounterpartsPaneTest
{
    Q_OBJECT

private Q_SLOTS:
    // The order.

    void mostNeglectedStandFirst()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Five"_s), 5);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Twenty"_s), 20);
        m_journal->addCounterpart(u"Never"_s);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ten"_s), 10);
        show();
        QCOMPARE(m_panes->names(), (QStringList{u"Twenty"_s, u"Ten"_s, u"Five"_s, u"Never"_s}));
    }

    void equallyNeglectedStandInTheOrderInWhichTheyWereAdded()
    {
        const QStringList names{u"b"_s, u"Ä"_s, u"B"_s, u"a"_s};
        for (const QString &name : names)
            m_journal->addCounterpart(name);
        show();
        QCOMPARE(m_panes->names(), names);
        // Whatever they are called later, and after a restart.
        const QStringList renamed{u"z"_s, u"Ä"_s, u"B"_s, u"a"_s};
        m_panes->list->counterparts().first()->setName(u"z"_s);
        m_journal->settle();
        m_panes->controller().rearrangeObjects();
        QCOMPARE(m_panes->names(), renamed);
        m_panes.reset();
        m_journal->reopen();
        show();
        QCOMPARE(m_panes->names(), renamed);
    }

    void theListIsAProperModel()
    {
        addThree();
        show();
        const QAbstractItemModelTester tester(
            &m_panes->controller(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_journal->addCounterpart(u"New"_s);
        QTRY_COMPARE(m_panes->controller().rowCount(), 4);
    }

    // The selection.

    void nothingIsSelectedAtTheStart()
    {
        addThree();
        show();
        QVERIFY(!m_panes->list->hasSelection());
        QVERIFY(!m_panes->detail->selectedCounterpart());
    }

    void aClickShowsTheTeammate()
    {
        addThree();
        show();
        m_panes->clickRow(1);
        QCOMPARE(m_panes->selectedName(), u"Ben"_s);
        m_panes->clickRow(2);
        QCOMPARE(m_panes->selectedName(), u"Chidi"_s);
    }

    void ofSeveralTheFirstPickedIsShown()
    {
        addThree();
        show();
        m_panes->clickRow(2);
        m_panes->clickRow(0, Qt::ControlModifier);
        QCOMPARE(m_panes->controller().selectedObjects().size(), 2);
        QCOMPARE(m_panes->selectedName(), u"Chidi"_s);
        m_panes->clickRow(2, Qt::ControlModifier);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        m_panes->clickRow(0, Qt::ControlModifier);
        QVERIFY(!m_panes->detail->selectedCounterpart());
    }

    void whileSuspendedTheSelectionDoesNotReachTheMeetings()
    {
        addThree();
        show();
        m_panes->clickRow(0);
        m_panes->coordinator.suspendSync = true;
        m_panes->clickRow(1);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        m_panes->clickRow(1, Qt::ControlModifier);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        m_panes->coordinator.suspendSync = false;
        m_panes->clickRow(2);
        QCOMPARE(m_panes->selectedName(), u"Chidi"_s);
    }

    // The keyboard.

    void theFirstArrowPicksTheFirstRow()
    {
        addThree();
        show();
        QTest::keyClick(m_panes->view, Qt::Key_Down);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        QTest::keyClick(m_panes->view, Qt::Key_Down);
        QCOMPARE(m_panes->selectedName(), u"Ben"_s);
        QTest::keyClick(m_panes->view, Qt::Key_Up);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
    }

    void homeEndAndTypingAheadMoveTheSelection()
    {
        addThree();
        show();
        QTest::keyClick(m_panes->view, Qt::Key_End);
        QCOMPARE(m_panes->selectedName(), u"Chidi"_s);
        QTest::keyClick(m_panes->view, Qt::Key_Home);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        QTest::keyClicks(m_panes->view, u"be"_s);
        QCOMPARE(m_panes->selectedName(), u"Ben"_s);
    }

    void shiftAndControlExtendTheSelection()
    {
        addThree();
        show();
        QTest::keyClick(m_panes->view, Qt::Key_Home);
        QTest::keyClick(m_panes->view, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(m_panes->controller().selectionIndexes(), (QList<int>{0, 1}));
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        QTest::keyClick(m_panes->view, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(m_panes->controller().selectedObjects().size(), 3);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
    }

    void returnMovesToTheMeetings_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("Return") << Qt::Key_Return;
        QTest::newRow("Enter") << Qt::Key_Enter;
    }

    void returnMovesToTheMeetings()
    {
        QFETCH(const Qt::Key, key);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        show();
        QTest::keyClick(m_panes->view, Qt::Key_Down);
        QTest::keyClick(m_panes->view, key);
        QVERIFY(m_panes->detail->isAncestorOf(QApplication::focusWidget()));
    }

    // Deleting.

    void deletingAsksFirst_data()
    {
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<QString>("informative");
        QTest::newRow("none selected") << QList<int>{} << u"0 will be removed."_s;
        QTest::newRow("one selected") << QList<int>{1} << u"1 will be removed."_s;
        QTest::newRow("two selected") << QList<int>{0, 2} << u"2 will be removed."_s;
        QTest::newRow("three selected") << QList<int>{0, 1, 2} << u"3 will be removed."_s;
    }

    void deletingAsksFirst()
    {
        QFETCH(const QList<int>, rows);
        QFETCH(const QString, informative);
        addThree();
        show();
        for (const int row : rows)
            m_panes->clickRow(row, Qt::ControlModifier);
        QTest::mouseClick(m_panes->button(u"deleteTeammatesButton"_s), Qt::LeftButton);
        QVERIFY(m_panes->sheet());
        QCOMPARE(m_panes->sheetText(u"messageText"_s),
                 u"Do you really want to delete these teammates?"_s);
        QCOMPARE(m_panes->sheetText(u"informativeText"_s), informative);
        QCOMPARE(m_panes->sheet()->buttons().size(), 2);
        QCOMPARE(m_panes->sheet()->buttons().at(0)->text(), u"Delete"_s);
        QCOMPARE(m_panes->sheet()->buttons().at(1)->text(), u"Cancel"_s);
        QCOMPARE(m_panes->controller().rowCount(), 3);
        QTest::mouseClick(m_panes->sheet()->buttons().at(0), Qt::LeftButton);
        QCOMPARE(m_panes->controller().rowCount(), 3 - rows.size());
        QCOMPARE(m_journal->counterparts().size(), 3 - rows.size());
        QVERIFY(!m_panes->detail->selectedCounterpart());
        QVERIFY(!m_panes->list->hasSelection());
    }

    void cancelKeepsThem_data()
    {
        QTest::addColumn<bool>("byEscape");
        QTest::newRow("button") << false;
        QTest::newRow("Escape") << true;
    }

    void cancelKeepsThem()
    {
        QFETCH(const bool, byEscape);
        addThree();
        show();
        m_panes->clickRow(0);
        m_panes->clickRow(1, Qt::ControlModifier);
        m_panes->list->handleDeleteFromMenu();
        QVERIFY(QTest::qWaitForWindowActive(m_panes->sheet()));
        if (byEscape)
            QTest::keyClick(m_panes->sheet(), Qt::Key_Escape);
        else
            QTest::mouseClick(m_panes->sheet()->buttons().at(1), Qt::LeftButton);
        QCOMPARE(m_panes->names().size(), 3);
        QCOMPARE(m_panes->controller().selectedObjects().size(), 2);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
    }

    void theDeleteKeyAsksToo()
    {
        addThree();
        show();
        m_panes->clickRow(0);
        QTest::keyClick(m_panes->view, Qt::Key_Delete);
        QVERIFY(m_panes->sheet());
        QCOMPARE(m_panes->sheetText(u"informativeText"_s), u"1 will be removed."_s);
    }

    void anySegmentButTheFirstDeletes()
    {
        addThree();
        show();
        m_panes->list->handleTeammateAddDelete(2);
        QVERIFY(m_panes->sheet());
        QCOMPARE(m_panes->controller().rowCount(), 3);
    }

    void theMeetingsGoWithTheTeammate()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        const auto session = m_journal->addSessionDaysAgo(ana, 1);
        show();
        m_panes->clickRow(0);
        deleteSelected();
        QVERIFY(session->isDeleted());
    }

    void whileSuspendedADeletionDoesNotReachTheMeetings()
    {
        addThree();
        show();
        m_panes->clickRow(0);
        m_panes->coordinator.suspendSync = true;
        m_panes->clickRow(1);
        deleteSelected();
        QCOMPARE(m_panes->names(), (QStringList{u"Ana"_s, u"Chidi"_s}));
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
    }

    void aFailedDeletionSaysSoAndKeepsThem()
    {
        FaultVfs disk;
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), disk.name());
        addThree();
        m_journal->settle();
        show();
        m_panes->clickRow(0);
        m_panes->clickRow(2, Qt::ControlModifier);
        disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        deleteSelected();
        QCOMPARE(m_panes->names(), (QStringList{u"Ana"_s, u"Ben"_s, u"Chidi"_s}));
        QCOMPARE(m_panes->controller().selectedObjects().size(), 2);
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        QVERIFY(m_panes->sheet());
        QCOMPARE(m_panes->sheetText(u"messageText"_s), u"The teammates could not be deleted."_s);
        QVERIFY(!m_panes->sheetText(u"informativeText"_s).isEmpty());
        QTest::mouseClick(m_panes->sheet()->buttons().first(), Qt::LeftButton);

        disk.failNothing();
        deleteSelected();
        QCOMPARE(m_panes->names(), QStringList{u"Ben"_s});
        cleanup();
    }

    void undoBringsADeletionBackInItsPlace()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ten"_s), 10);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Five"_s), 5);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"One"_s), 1);
        m_journal->settle();
        show();
        m_panes->clickRow(0);
        m_panes->clickRow(1, Qt::ControlModifier);
        deleteSelected();
        QCOMPARE(m_panes->names(), QStringList{u"One"_s});
        gui::handlePendingEvents();
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(m_panes->names(), (QStringList{u"Ten"_s, u"Five"_s, u"One"_s}));
        m_journal->context().undoManager()->redo();
        QTRY_COMPARE(m_panes->names(), QStringList{u"One"_s});
    }

    void whatComesBackStandsInItsPlaceAmongEquals()
    {
        m_journal->addCounterpart(u"Zoe"_s);
        addThree();
        m_journal->settle();
        show();
        m_panes->clickRow(0);
        deleteSelected();
        gui::handlePendingEvents();
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(m_panes->names(), (QStringList{u"Zoe"_s, u"Ana"_s, u"Ben"_s, u"Chidi"_s}));
    }

    void undoTakesAnAdditionAway()
    {
        addThree();
        m_journal->settle();
        show();
        m_panes->list->handleTeammateAddDelete(0);
        gui::handlePendingEvents();
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(m_panes->controller().rowCount(), 3);
        QVERIFY(!m_panes->detail->selectedCounterpart());
        // The delayed editing finds nothing to edit.
        QTest::qWait(200);
        QVERIFY(!m_panes->nameEditor());
    }

    void teammatesSavedElsewhereAppear()
    {
        addThree();
        m_journal->settle();
        show();
        auto import = m_journal->coreData().persistentContainer().newBackgroundContext();
        QVERIFY(import.has_value());
        (*import)->insert<Counterpart>()->setName(u"Imported"_s);
        QVERIFY((*import)->save().has_value());
        QTRY_COMPARE(m_panes->controller().rowCount(), 4);
        QVERIFY(m_panes->names().contains(u"Imported"_s));
    }

    // Nothing yet.

    void teammatesThatCannotBeReadAreNotMissing()
    {
        FaultVfs vfs;
        const auto closeBeforeItGoes = qScopeGuard([this] { cleanup(); });
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), vfs.name());
        addThree();
        m_journal->settle();
        m_journal->reopen();
        vfs.failAt(1, FaultVfs::Fault::InputOutput, FaultVfs::Lasting::ForGood, FaultVfs::Read);
        show();
        auto *empty = m_panes->list->findChild<EmptyState *>(u"noTeammates"_s);
        auto *unreadable = m_panes->list->findChild<EmptyState *>(u"unreadableTeammates"_s);
        QVERIFY(!empty->isVisible());
        QVERIFY(unreadable->isVisible());
        vfs.failNothing();
        QTest::mouseClick(unreadable->button(), Qt::LeftButton);
        QVERIFY(!unreadable->isVisible());
        QCOMPARE(m_panes->names(), (QStringList{u"Ana"_s, u"Ben"_s, u"Chidi"_s}));
        QVERIFY(m_panes->view->hasFocus());
    }

    void anEmptyListOffersToAddATeammate()
    {
        show();
        auto *empty = m_panes->list->findChild<EmptyState *>(u"noTeammates"_s);
        QVERIFY(empty->isVisible());
        QVERIFY(!m_panes->view->isVisible());
        QVERIFY(!empty->findChildren<QLabel *>().isEmpty());
        QCOMPARE(empty->findChildren<QLabel *>().first()->text(), u"No teammates yet"_s);
        QTest::mouseClick(empty->button(), Qt::LeftButton);
        QVERIFY(m_panes->view->isVisible());
        QTRY_VERIFY(m_panes->nameEditor());
        QTest::keyClicks(m_panes->nameEditor(), u"Ana"_s);
        QTest::keyClick(m_panes->nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(m_panes->names(), QStringList{u"Ana"_s});
        QTest::keyClick(m_panes->view, Qt::Key_Delete);
        QTest::mouseClick(m_panes->sheet()->buttons().first(), Qt::LeftButton);
        QVERIFY(empty->isVisible());
    }
};

QTEST_MAIN(tst_CounterpartsPane)
#include "tst_CounterpartsPane.moc"
