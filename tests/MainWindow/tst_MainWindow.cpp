#include "MainWindow/MainWindow.h"

#include "MainWindow/Counterparts/CounterpartListView.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/SaveFailureBanner.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "Preferences/InputControls/AutoEditArrayController.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Undo/UndoManager.h"
#include "support/FaultVfs.h"
#include "support/GuiTest.h"
#include "support/JournalFixture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QScreen>
#include <QSplitter>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_MainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_quits = 0;
        m_journal = std::make_unique<JournalFixture>();
    }

    void cleanup()
    {
        m_window.reset();
        m_journal.reset();
    }

    // The window.

    void itHasItsTitleAndSize()
    {
        open();
        QCOMPARE(m_window->windowTitle(), u"Tembra"_s);
        QCOMPARE(m_window->size(), QSize(1100, 720).boundedTo(m_window->screen()->availableSize()));
        QCOMPARE(m_window->minimumSize(), QSize(900, 560));
    }

    void sizeAndSplitAreRemembered()
    {
        open();
        m_window->resize(950, 600);
        auto *splitter = m_window->findChild<QSplitter *>(u"splitter"_s);
        splitter->setSizes({400, 550});
        QTest::qWait(50);
        const QList<int> sizes = splitter->sizes();
        m_window.reset();
        open();
        QCOMPARE(m_window->size(), QSize(950, 600));
        QCOMPARE(m_window->findChild<QSplitter *>(u"splitter"_s)->sizes(), sizes);
    }

    void theListHasTheKeyboardAtTheStart()
    {
        m_journal->addCounterpart(u"Ana"_s);
        open();
        QVERIFY(view()->hasFocus());
    }

    void withoutTeammatesTheButtonThatAddsOneHasTheKeyboard()
    {
        open();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QCOMPARE(m_journal->counterparts().size(), 1);
    }

    void closingAsksToQuitAndLeavesTheWindow()
    {
        open();
        QVERIFY(!m_window->close());
        QCOMPARE(m_quits, 1);
        QVERIFY(m_window->isVisible());
    }

    void quitInTheMenuIsTheSame()
    {
        open();
        QTest::keyClick(m_window.get(), Qt::Key_Q, Qt::ControlModifier);
        QCOMPARE(m_quits, 1);
    }

    void theCoordinatorKnowsBothPanes()
    {
        open();
        QCOMPARE(m_window->viewCoordinator().masterViewController,
                 &m_window->counterpartsViewController());
        QCOMPARE(m_window->viewCoordinator().detailPaneViewController,
                 &m_window->detailPaneViewController());
        QCOMPARE(m_window->viewCoordinator().counterpartsArrayController,
                 &m_window->counterpartsViewController().counterpartsArrayController());
    }

    // The menus.

    void everyMenuAndCommandHasAMnemonicOfItsOwn()
    {
        open();
        verifyMnemonics(m_window->menuBar()->actions());
        for (const QAction *menu : m_window->menuBar()->actions())
            verifyMnemonics(menu->menu()->actions());
    }

    void noTwoCommandsShareAShortcut()
    {
        open();
        QSet<QKeySequence> shortcuts;
        for (const QAction *menu : m_window->menuBar()->actions()) {
            for (const QAction *command : menu->menu()->actions()) {
                for (const QKeySequence &shortcut : command->shortcuts()) {
                    QVERIFY2(!shortcuts.contains(shortcut), qPrintable(command->text()));
                    shortcuts.insert(shortcut);
                }
            }
        }
    }

    void theDebugMenuIsHiddenButWorks()
    {
        m_journal->addCounterpart(u"Ana"_s);
        open();
        QVERIFY(!m_window->debugMenu()->menuAction()->isVisible());
        select(0);
        command(u"stuffSessionsAction"_s)->trigger();
        QCOMPARE(m_journal->counterparts().first()->sessions().size(), 5000);
    }

    void theMainJobByKeysAlone()
    {
        open();
        QTest::keyClick(m_window.get(), Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_VERIFY(nameEditor());
        QTest::keyClicks(nameEditor(), u"Ana Silva"_s);
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        QTest::keyClick(view(), Qt::Key_N, Qt::ControlModifier);
        QVERIFY(noteField()->hasFocus());
        QTest::keyClicks(noteField(), u"Ask about the offer"_s);
        QTest::keyClick(noteField(), Qt::Key_PageDown, Qt::ControlModifier);
        QTest::keyClick(m_window.get(), Qt::Key_3, Qt::ControlModifier);
        QTest::keyClicks(noteField(), u"No blockers"_s);
        QTest::keyClick(noteField(), Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!m_journal->context().hasChanges());

        m_window.reset();
        m_journal->reopen();
        const auto teammates = m_journal->counterparts();
        QCOMPARE(teammates.size(), 1);
        QCOMPARE(teammates.first()->name(), u"Ana Silva"_s);
        const auto notes = teammates.first()->sessions().first()->sortedNotes();
        QCOMPARE(notes.at(0)->contentString(), u"Ask about the offer"_s);
        QCOMPARE(notes.at(1)->contentString(), u"No blockers"_s);
    }

    void commandsAreEnabledWhenTheyCanDoSomething()
    {
        m_journal->addCounterpart(u"Ana"_s);
        open();
        QVERIFY(!command(u"newMeetingAction"_s)->isEnabled());
        QVERIFY(!command(u"findInNotesAction"_s)->isEnabled());
        QVERIFY(!command(u"goToMeetingsAction"_s)->isEnabled());
        QVERIFY(!command(u"renameTeammateAction"_s)->isEnabled());
        QVERIFY(!command(u"deleteMeetingAction"_s)->isEnabled());
        QVERIFY(!command(u"nextNoteFieldAction"_s)->isEnabled());
        select(0);
        QVERIFY(command(u"newMeetingAction"_s)->isEnabled());
        QVERIFY(command(u"findInNotesAction"_s)->isEnabled());
        QVERIFY(command(u"renameTeammateAction"_s)->isEnabled());
        QVERIFY(!command(u"deleteMeetingAction"_s)->isEnabled());
        command(u"newMeetingAction"_s)->trigger();
        QVERIFY(command(u"deleteMeetingAction"_s)->isEnabled());
        QVERIFY(command(u"nextNoteFieldAction"_s)->isEnabled());
    }

    void keysMoveBetweenListMeetingsNotesAndSearch()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        open();
        select(0);
        QTest::keyClick(m_window.get(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(qobject_cast<QLineEdit *>(QApplication::focusWidget()));
        QTest::keyClick(m_window.get(), Qt::Key_2, Qt::ControlModifier);
        QVERIFY(detail().isAncestorOf(QApplication::focusWidget()));
        QVERIFY(!noteField()->hasFocus());
        QTest::keyClick(m_window.get(), Qt::Key_3, Qt::ControlModifier);
        QVERIFY(noteField()->hasFocus());
        QTest::keyClick(m_window.get(), Qt::Key_1, Qt::ControlModifier);
        QVERIFY(view()->hasFocus());
    }

    // Editing commands.

    void clipboardCommandsWorkOnTheFocusedText()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        open();
        select(0);
        command(u"goToNotesAction"_s)->trigger();
        QTest::keyClicks(noteField(), u"hello"_s);
        command(u"selectAllAction"_s)->trigger();
        command(u"cutAction"_s)->trigger();
        QCOMPARE(noteField()->text(), QString());
        QCOMPARE(QApplication::clipboard()->text(), u"hello"_s);
        command(u"pasteAction"_s)->trigger();
        command(u"pasteAction"_s)->trigger();
        QCOMPARE(noteField()->text(), u"hellohello"_s);
    }

    void theOpenMenuTellsWhichClipboardCommandsApply()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        open();
        select(0);
        QMenu *menu = editMenu();
        menu->popup(m_window->pos());
        QVERIFY(!command(u"cutAction"_s)->isEnabled());
        QVERIFY(!command(u"pasteAction"_s)->isEnabled());
        QVERIFY(command(u"selectAllAction"_s)->isEnabled());
        menu->close();
        QTRY_VERIFY(command(u"cutAction"_s)->isEnabled());

        command(u"goToNotesAction"_s)->trigger();
        QTest::keyClicks(noteField(), u"hello"_s);
        QTest::keyClick(noteField(), Qt::Key_A, Qt::ControlModifier);
        menu->popup(m_window->pos());
        QVERIFY(command(u"cutAction"_s)->isEnabled());
        QVERIFY(command(u"copyAction"_s)->isEnabled());
        menu->close();
    }

    void undoTakesBackTypingInAOneLineFieldFirst()
    {
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        m_journal->settle();
        open();
        select(0);
        QVERIFY(!command(u"undoAction"_s)->isEnabled());
        command(u"findInNotesAction"_s)->trigger();
        auto *search = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        QTest::keyClicks(search, u"abc"_s);
        QVERIFY(command(u"undoAction"_s)->isEnabled());
        command(u"undoAction"_s)->trigger();
        QCOMPARE(search->text(), QString());
        QVERIFY(!command(u"undoAction"_s)->isEnabled());
        QVERIFY(command(u"redoAction"_s)->isEnabled());
    }

    void undoByKeyReachesTheJournalFromAnUntouchedOneLineField()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->addSessionDaysAgo(ana, 1);
        m_journal->settle();
        open();
        select(0);
        ana->setName(u"Bea"_s);
        gui::handlePendingEvents();
        command(u"findInNotesAction"_s)->trigger();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(ana->name(), u"Ana"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z,
                        Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(ana->name(), u"Bea"_s);
    }

    void undoTakesBackAHalfTypedNameByItself()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->addCounterpart(u"Ben"_s);
        m_journal->settle();
        open();
        ana->setName(u"Anna"_s);
        gui::handlePendingEvents();
        select(0);
        m_window->counterpartsViewController().renameSelected();
        QTest::keyClicks(nameEditor(), u"Zoe"_s);
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        gui::handlePendingEvents();
        command(u"undoAction"_s)->trigger();
        QCOMPARE(ana->name(), u"Anna"_s);
        command(u"undoAction"_s)->trigger();
        QCOMPARE(ana->name(), u"Ana"_s);
    }

    void undoShowsTheNoteItChanges()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->addSessionDaysAgo(ana, 1);
        const auto old = m_journal->addSessionDaysAgo(ana, 8);
        m_journal->addSessionDaysAgo(ben, 2);
        m_journal->settle();
        open();
        m_journal->write(old, NoteIdentifier::wins, u"shipped"_s);
        gui::handlePendingEvents();
        select(rowOf(ben));
        QCOMPARE(detail().selectedCounterpart(), ben);
        command(u"undoAction"_s)->trigger();
        QCOMPARE(detail().selectedCounterpart(), ana);
        QCOMPARE(detail().selectedSession(), old);
        QCOMPARE(noteField()->boundObject(), m_journal->note(old, NoteIdentifier::wins).get());
        QCOMPARE(noteField()->text(), QString());
        command(u"redoAction"_s)->trigger();
        QCOMPARE(noteField()->text(), u"shipped"_s);
    }

    void theCursorSaysToWaitWhileUndoAndRedoWork()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->settle();
        open();
        QVERIFY(m_journal->context().deleteObject(ana).has_value());
        gui::handlePendingEvents();
        int waits = 0;
        connect(m_journal->context().undoManager(), &UndoManager::willChangeObject, m_window.get(),
                [&waits] {
                    const QCursor *cursor = QGuiApplication::overrideCursor();
                    waits += cursor && cursor->shape() == Qt::WaitCursor ? 1 : 0;
                });
        command(u"undoAction"_s)->trigger();
        QCOMPARE(waits, 1);
        command(u"redoAction"_s)->trigger();
        QCOMPARE(waits, 2);
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    void anUndoThatFailsSaysSoAndCanBeTriedAgain()
    {
        FaultVfs disk;
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), disk.name());
        const auto closeBeforeItGoes = qScopeGuard([this] { cleanup(); });
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->settle();
        open();
        QVERIFY(m_journal->context().deleteObject(ana).has_value());
        gui::handlePendingEvents();
        disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        command(u"undoAction"_s)->trigger();
        Alert *sheet = gui::sheetOf(*m_window);
        QVERIFY(sheet);
        QCOMPARE(sheet->findChild<QLabel *>(u"messageText"_s)->text(),
                 u"This could not be undone."_s);
        gui::pressAlertButton(*sheet, 0);
        QCOMPARE(m_journal->counterparts().size(), 0);
        disk.failNothing();
        command(u"undoAction"_s)->trigger();
        QCOMPARE(m_journal->counterparts().size(), 1);
    }

    void undoOfADeletionShowsWhatCameBack()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->addSessionDaysAgo(ana, 3);
        m_journal->addCounterpart(u"Ben"_s);
        m_journal->settle();
        open();
        QVERIFY(m_journal->context().deleteObject(ana).has_value());
        QTRY_COMPARE(m_window->counterpartsViewController().counterparts().size(), 1);
        command(u"undoAction"_s)->trigger();
        QTRY_VERIFY(detail().selectedCounterpart());
        QCOMPARE(detail().selectedCounterpart()->name(), u"Ana"_s);
        QTRY_VERIFY(detail().selectedSession());
    }

    void revealingLeavesASelectionOfSeveralThatBeginsWithTheTeammate()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->addCounterpart(u"Ben"_s);
        open();
        auto &controller = m_window->counterpartsViewController().counterpartsArrayController();
        controller.setSelectedObjects({controller.objectAt(0), controller.objectAt(1)});
        m_window->reveal(ana->objectID());
        QCOMPARE(controller.selectedObjects().size(), 2);
    }

    // Saving.

    void aFailedSaveIsShownUntilOneSucceeds()
    {
        FaultVfs disk;
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), disk.name());
        int alerts = 0;
        m_journal->coreData().setPresentError([&alerts](const Error &) { ++alerts; });
        open();
        auto *banner = m_window->findChild<SaveFailureBanner *>();
        QVERIFY(!banner->isVisible());
        m_journal->addCounterpart(u"Ana"_s);
        disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        command(u"saveAction"_s)->trigger();
        QCOMPARE(alerts, 1);
        QVERIFY(banner->isVisible());
        QCOMPARE(banner->findChild<QLabel *>(u"saveFailureLabel"_s)->text(),
                 u"Changes could not be saved"_s);
        m_journal->coreData().handleTimer();
        QVERIFY(banner->isVisible());

        auto *saveAgain = banner->findChild<QPushButton *>(u"saveAgainButton"_s);
        QCOMPARE(saveAgain->text(), u"Save again"_s);
        disk.failNothing();
        QTest::mouseClick(saveAgain, Qt::LeftButton);
        QVERIFY(!banner->isVisible());
        QVERIFY(!m_journal->context().hasChanges());
        QCOMPARE(m_journal->counterparts().size(), 1);
        cleanup();
    }

    void aWindowOpenedWhileSavingFailsShowsIt()
    {
        FaultVfs disk;
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), disk.name());
        m_journal->addCounterpart(u"Ana"_s);
        disk.failAt(1, FaultVfs::Fault::InputOutput, FaultVfs::Lasting::ForGood);
        m_journal->coreData().save();
        disk.failNothing();
        open();
        QVERIFY(m_window->findChild<SaveFailureBanner *>()->isVisible());
        cleanup();
    }

    void committingReachesBothPanes()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        open();
        select(0);
        m_window->counterpartsViewController().renameSelected();
        QTest::keyClicks(nameEditor(), u"Zoe"_s);
        QVERIFY(m_window->commitEditing());
        QCOMPARE(ana->name(), u"Zoe"_s);
        QVERIFY(nameEditor());
    }

private:
    void open()
    {
        m_window = std::make_unique<MainWindow>(m_journal->coreData(), m_journal->services,
                                                m_journal->notifications,
                                                m_journal->filePath(u"window-state.ini"_s),
                                                [this] { ++m_quits; });
        m_journal->coreData().setCommitEditing(
            [this] { return !m_window || m_window->commitEditing(); });
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    CounterpartListView *view() const { return m_window->findChild<CounterpartListView *>(); }
    QLineEdit *nameEditor() const { return m_window->findChild<QLineEdit *>(u"nameEditor"_s); }
    DetailPaneViewController &detail() const { return m_window->detailPaneViewController(); }
    QAction *command(const QString &name) const { return m_window->findChild<QAction *>(name); }
    BindablePlaceholderTextField *noteField() const
    {
        return m_window->findChild<BindablePlaceholderTextField *>();
    }

    QMenu *editMenu() const
    {
        for (QMenu *menu : m_window->menuBar()->findChildren<QMenu *>()) {
            if (menu->title() == u"&Edit")
                return menu;
        }
        return nullptr;
    }

    void select(int row) const
    {
        m_window->counterpartsViewController().counterpartsArrayController().setSelectionIndex(row);
    }

    int rowOf(const std::shared_ptr<Counterpart> &counterpart) const
    {
        return m_window->counterpartsViewController().counterpartsArrayController().rowOf(
            counterpart.get());
    }

    static void verifyMnemonics(const QList<QAction *> &actions)
    {
        QSet<QChar> taken;
        for (const QAction *action : actions) {
            if (action->isSeparator())
                continue;
            const qsizetype mark = action->text().indexOf(u'&');
            QVERIFY2(mark >= 0, qPrintable(action->text()));
            const QChar mnemonic = action->text().at(mark + 1).toLower();
            QVERIFY2(!taken.contains(mnemonic), qPrintable(action->text()));
            taken.insert(mnemonic);
        }
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<MainWindow> m_window;
    int m_quits = 0;
};

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
