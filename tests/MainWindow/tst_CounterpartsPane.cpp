#include "TwoPanes.h"

#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/UndoManager.h"
#include "Toolkit/EmptyState.h"
#include "support/FaultVfs.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QToolTip>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_CounterpartsPane : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_journal = std::make_unique<JournalFixture>(); }

    void cleanup()
    {
        m_panes.reset();
        m_journal.reset();
    }

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

    void equallyNeglectedStandByNameInCodePointOrder()
    {
        for (const QString &name : {u"b"_s, u"Ä"_s, u"B"_s, u"a"_s})
            m_journal->addCounterpart(name);
        show();
        QCOMPARE(m_panes->names(), (QStringList{u"B"_s, u"a"_s, u"b"_s, u"Ä"_s}));
    }

    void theListIsAProperModel()
    {
        addThree();
        show();
        const QAbstractItemModelTester tester(&m_panes->controller(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
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

    // Adding and naming.

    void addingStartsTypingTheName()
    {
        addThree();
        show();
        QTest::mouseClick(m_panes->button(u"addTeammateButton"_s), Qt::LeftButton);
        QCOMPARE(m_panes->controller().rowCount(), 4);
        QCOMPARE(m_panes->controller().selectionIndexes(), QList<int>{3});
        QVERIFY(m_panes->detail->selectedCounterpart());
        QVERIFY(!m_panes->nameEditor());
        QTRY_VERIFY(m_panes->nameEditor());
        QCOMPARE(m_panes->nameEditor()->placeholderText(), u"New teammate"_s);
        QVERIFY(m_panes->nameEditor()->hasFocus());
        QTest::keyClicks(m_panes->nameEditor(), u"Dana"_s);
        QTest::keyClick(m_panes->nameEditor(), Qt::Key_Return);
        QTRY_VERIFY(!m_panes->nameEditor());
        QCOMPARE(m_panes->names().last(), u"Dana"_s);
        QCOMPARE(m_journal->counterparts().last()->name(), u"Dana"_s);
        QVERIFY(m_panes->view->hasFocus());
    }

    void aTeammateWithoutNameSaysSo()
    {
        m_journal->addCounterpart({});
        show();
        const QString text = m_panes->controller().index(0, 0).data(Qt::AccessibleTextRole).toString();
        QCOMPARE(text, u"New teammate, No sessions"_s);
        QVERIFY(m_journal->counterparts().first()->name().isNull());
    }

    void waysToRename_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"F2", "double click", "context menu"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void waysToRename()
    {
        QFETCH(const QString, way);
        addThree();
        show();
        m_panes->clickRow(1);
        if (way == u"F2")
            QTest::keyClick(m_panes->view, Qt::Key_F2);
        else if (way == u"double click")
            QTest::mouseDClick(m_panes->view->viewport(), Qt::LeftButton, {}, m_panes->middleOf(1));
        else
            m_panes->list->findChild<QAction *>(u"renameAction"_s)->trigger();
        QVERIFY(m_panes->nameEditor());
        QCOMPARE(m_panes->nameEditor()->selectedText(), u"Ben"_s);
        QTest::keyClicks(m_panes->nameEditor(), u"Bea"_s);
        QTest::keyClick(m_panes->nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(m_panes->names().at(1), u"Bea"_s);
        QVERIFY(!m_panes->sheet());
    }

    void escapeLeavesTheName()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        QTest::keyClick(editor, Qt::Key_Escape);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
    }

    void escapePutsBackTheNameThoughASaveTookTheNewOne()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        m_panes->list->commitEditing();
        QCOMPARE(m_panes->names().at(1), u"Bea"_s);
        QTest::keyClick(editor, Qt::Key_Escape);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
    }

    void tabEndsTheTypingAndKeepsTheName_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("Tab") << Qt::Key_Tab;
        QTest::newRow("Shift+Tab") << Qt::Key_Backtab;
    }

    void tabEndsTheTypingAndKeepsTheName()
    {
        QFETCH(const Qt::Key, key);
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        QTest::keyClick(editor, key);
        QCOMPARE(m_panes->names().at(1), u"Bea"_s);
        QTRY_VERIFY(!m_panes->nameEditor());
        QVERIFY(m_panes->view->hasFocus());
    }

    void anEmptiedNameIsMissing()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(0);
        QTest::keyClick(editor, Qt::Key_Delete);
        QTest::keyClick(editor, Qt::Key_Return);
        const auto ana = m_panes->list->counterparts().first();
        QTRY_VERIFY(ana->name().isNull());
        QVERIFY(!m_panes->sheet());
    }

    void leavingTheFieldKeepsTheName()
    {
        addThree();
        show();
        QTest::keyClicks(startRenaming(1), u"Bea"_s);
        m_panes->clickRow(0);
        QCOMPARE(m_panes->names().at(1), u"Bea"_s);
        QTRY_VERIFY(!m_panes->nameEditor());
    }

    void oddNamesAreStoredAsTyped_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("markup") << u"<b>Bo</b> &amp; co"_s;
        QTest::newRow("right to left") << u"אנה כהן"_s;
        QTest::newRow("combining") << u"Zoe\u0308"_s;
        QTest::newRow("emoji") << u"Ana 👩‍🚀⚡️"_s;
        QTest::newRow("sixty characters") << u"Wolfeschlegelsteinhausenbergerdorff-Donaudampfschifffahrt, K"_s;
    }

    void oddNamesAreStoredAsTyped()
    {
        QFETCH(const QString, name);
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        editor->insert(name);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(m_panes->names().at(1), name);
        m_panes->view->grab();
    }

    // Half-typed names.

    void aSaveTakesAHalfTypedNameAndLetsTheTypingGoOn()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Beatric"_s);
        editor->setCursorPosition(3);
        QVERIFY(m_panes->list->commitEditing());
        QCOMPARE(m_panes->names().at(1), u"Beatric"_s);
        QCOMPARE(m_panes->nameEditor(), editor);
        QVERIFY(editor->hasFocus());
        QCOMPARE(editor->cursorPosition(), 3);
        QTest::keyClicks(editor, u"x"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(m_panes->names().at(1), u"Beaxtric"_s);
    }

    void nothingIsTakenWhileAnInputMethodIsComposing()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Be"_s);
        QInputMethodEvent composing(u"あ"_s, {});
        QApplication::sendEvent(editor, &composing);
        QVERIFY(m_panes->list->commitEditing());
        QTest::qWait(700);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
        QCOMPARE(editor->text(), u"Be"_s);

        QInputMethodEvent composed;
        composed.setCommitString(u"亜"_s);
        QApplication::sendEvent(editor, &composed);
        m_panes->list->commitEditing();
        QCOMPARE(m_panes->names().at(1), u"Be亜"_s);
    }

    void whatIsTypedIsHandedOnWithinASecond()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_panes->names().at(1), u"Bea"_s, 900);
        QCOMPARE(m_panes->nameEditor(), editor);
    }

    void aChangeFromElsewhereShowsInAnUntouchedField()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        m_panes->list->counterparts().at(1)->setName(u"Benedict"_s);
        QCOMPARE(editor->text(), u"Benedict"_s);
        QTest::keyClicks(editor, u"!"_s);
        m_panes->list->counterparts().at(1)->setName(u"Other"_s);
        QCOMPARE(editor->text(), u"Benedict!"_s);
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
        QCOMPARE(m_panes->sheetText(u"messageText"_s), u"Do you really want to delete these teammates?"_s);
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
        QTest::qWait(10);
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(m_panes->names(), (QStringList{u"Ten"_s, u"Five"_s, u"One"_s}));
        m_journal->context().undoManager()->redo();
        QTRY_COMPARE(m_panes->names(), QStringList{u"One"_s});
    }

    void undoTakesAnAdditionAway()
    {
        addThree();
        m_journal->settle();
        show();
        m_panes->list->handleTeammateAddDelete(0);
        QTest::qWait(10);
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

    // What a row says.

    void overdueRowsAreMarked()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 15);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ben"_s), 14);
        show();
        QVERIFY(rowText(0).startsWith(u"Ana, ⚠️ "_s));
        QVERIFY(rowText(1).startsWith(u"Ben, Nov 6, 2026"_s));
    }

    void aChangedIntervalShowsAtOnce()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 10);
        show();
        QVERIFY(!rowText(0).contains(u"⚠️"_s));
        const PaintCounter painted(m_panes->view->viewport());
        m_journal->defaults.setCounterpartStalenessInterval(7);
        QVERIFY(rowText(0).contains(u"⚠️"_s));
        QTRY_VERIFY(painted.count > 0);
    }

    void aChangedEmojiShowsAtOnce()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        session->setPersonalSentiment(1);
        show();
        const PaintCounter painted(m_panes->view->viewport());
        m_journal->defaults.setEmojiOverride(DefaultsManager::personalOverrideKey(1), u"🦄"_s);
        m_journal->defaults.emojiChanged();
        QVERIFY(rowText(0).contains(u"🦄"_s));
        QTRY_VERIFY(painted.count > 0);
    }

    void aChangedMeetingShowsInItsRow()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 3);
        show();
        const PaintCounter painted(m_panes->view->viewport());
        m_journal->addTag(session, u"Goal"_s, u"🎯"_s);
        session->setDate(utc(2026, 11, 2));
        QTRY_VERIFY(painted.count > 0);
        QVERIFY(rowText(0).contains(u"Nov 2, 2026"_s));
        QCOMPARE(m_panes->list->counterparts().first()->recentSessionTagSummary(), u"🎯"_s);
    }

    void aRowTurnsOverdueAtTheHourOfTheMeeting()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->addSession(ana, m_journal->clock.now().adding(-15 * secondsPerDay + 3600));
        show();
        QVERIFY(!rowText(0).contains(u"⚠️"_s));
        const PaintCounter painted(m_panes->view->viewport());
        m_journal->clock.advance(3600);
        m_journal->derivedTexts.checkClock();
        QVERIFY(rowText(0).contains(u"⚠️"_s));
        QTRY_VERIFY(painted.count > 0);
    }

    void theWholeRowCanBeHeard()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        show();
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(m_panes->view);
        QVERIFY(list);
        QCOMPARE(list->text(QAccessible::Name), u"Teammates"_s);
        QVERIFY(list->child(0)->text(QAccessible::Name).startsWith(u"Ana, Yesterday"_s));
    }

    void controlsWithoutTextHaveNames()
    {
        show();
        for (const QString &name : {u"addTeammateButton"_s, u"deleteTeammatesButton"_s}) {
            QVERIFY(!m_panes->button(name)->accessibleName().isEmpty());
            QVERIFY(!m_panes->button(name)->toolTip().isEmpty());
        }
    }

    void aNameCutShortIsToldInTheTooltip()
    {
        m_journal->addCounterpart(u"<i>Wolfeschlegelsteinhausenbergerdorff</i> von und zu Donaudampfschifffahrt"_s);
        m_journal->addCounterpart(u"Zoe"_s);
        show();
        QCOMPARE(tooltipOfRow(1), QString());
        QVERIFY(tooltipOfRow(0).contains(u"&lt;i&gt;Wolfeschlegelsteinhausenbergerdorff"_s));
    }

    // Nothing yet.

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

private:
    void addThree()
    {
        for (const QString &name : {u"Chidi"_s, u"Ana"_s, u"Ben"_s})
            m_journal->addCounterpart(name);
    }

    void show()
    {
        m_journal->context().processPendingChanges();
        m_panes = std::make_unique<TwoPanes>(*m_journal);
        m_panes->show();
    }

    QLineEdit *startRenaming(int row)
    {
        m_panes->clickRow(row);
        QTest::keyClick(m_panes->view, Qt::Key_F2);
        return m_panes->nameEditor();
    }

    void deleteSelected()
    {
        m_panes->list->handleDeleteFromMenu();
        QTest::mouseClick(m_panes->sheet()->buttons().first(), Qt::LeftButton);
    }

    QString rowText(int row) const
    {
        return m_panes->controller().index(row, 0).data(Qt::AccessibleTextRole).toString();
    }

    QString tooltipOfRow(int row) const
    {
        const QPoint place = m_panes->middleOf(row);
        QHelpEvent event(QEvent::ToolTip, place, m_panes->view->viewport()->mapToGlobal(place));
        QApplication::sendEvent(m_panes->view->viewport(), &event);
        return QToolTip::text();
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<TwoPanes> m_panes; // Goes before the journal.
};

QTEST_MAIN(tst_CounterpartsPane)
#include "tst_CounterpartsPane.moc"
