#include "MeetingPaneTest.h"

#include "Model/DefaultsManager.h"
#include "Model/Tag.h"
#include "Store/Undo/UndoManager.h"
#include "support/FaultVfs.h"
#include "Tags/TagField.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Makes the test program do, instead of its tests, what stops it.
const QString stuffNobody = u"--stuff-nobody"_s;

void stuffWithoutATeammate()
{
    JournalFixture journal;
    const TwoPanes panes(journal);
    panes.detail->stuffSessions();
}

} // namespace

/// Adding and deleting meetings in their pane, and changes from elsewhere.
class tst_DetailPaneEditing : public MeetingPaneTest
{
    Q_OBJECT

private Q_SLOTS:
    // Adding.

    void addingSelectsTheNewMeeting()
    {
        addSessions(3, 5);
        showAna();
        QTest::mouseClick(addButton(), Qt::LeftButton);
        const auto added = pane()->selectedSession();
        QVERIFY(!m_sessions.contains(added));
        QCOMPARE(added->counterpart(), m_ana);
        QCOMPARE(added->date(), OptionalDate(m_journal->clock.now()));
        QCOMPARE(added->notes().size(), 9);
        QCOMPARE(strip()->selectedRow(), 0);
        QCOMPARE(strip()->model()->rowCount(), 4);
        QCOMPARE(editor()->session(), added);
        QCOMPARE(daysLabel(), u"Days since last meeting with Ana: 0"_s);
        gui::handlePendingEvents();
        QCOMPARE(strip()->model()->rowCount(), 4);
        QCOMPARE(pane()->selectedSession(), added);
    }

    void addingPutsTheCaretIntoTheNote()
    {
        addSessions(1, 3);
        showAna();
        QTest::mouseClick(addButton(), Qt::LeftButton);
        QTest::keyClicks(QApplication::focusWidget(), u"Ask"_s);
        QCOMPARE(pane()->selectedSession()->sortedNotes().first()->contentString(), u"Ask"_s);
    }

    void addingSavesNothing()
    {
        showAna();
        const QSignalSpy saved(&m_journal->context(), &ManagedObjectContext::didSave);
        pane()->addSessionFileMenu();
        gui::handlePendingEvents();
        QCOMPARE(m_ana->sessions().size(), 1);
        QCOMPARE(saved.count(), 0);
        QVERIFY(m_journal->context().hasChanges());
    }

    void addingSortsTheListAnewAndKeepsTheTeammate()
    {
        addSessions(1, 20);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ben"_s), 10);
        showAna();
        QCOMPARE(m_panes->names(), (QStringList{u"Ana"_s, u"Ben"_s}));
        const QSignalSpy changes(pane(), &DetailPaneViewController::selectedCounterpartChanged);
        QTest::mouseClick(addButton(), Qt::LeftButton);
        QCOMPARE(m_panes->names(), (QStringList{u"Ben"_s, u"Ana"_s}));
        QCOMPARE(m_panes->selectedName(), u"Ana"_s);
        QCOMPARE(changes.count(), 0);
        QVERIFY(!m_panes->coordinator.suspendSync);
        m_panes->clickRow(0);
        QCOMPARE(m_panes->selectedName(), u"Ben"_s);
    }

    void theListIsSortedWhileTheSelectionIsSuspended()
    {
        addSessions(1, 20);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ben"_s), 10);
        showAna();
        bool suspended = false;
        connect(&m_panes->controller(), &QAbstractItemModel::layoutChanged, this,
                [&] { suspended = m_panes->coordinator.suspendSync; });
        QTest::mouseClick(addButton(), Qt::LeftButton);
        QVERIFY(suspended);
        QVERIFY(!m_panes->coordinator.suspendSync);
    }

    void aNewDateSortsTheListAnew()
    {
        addSessions(1, 20);
        m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ben"_s), 10);
        showAna();
        m_sessions.at(0)->setDate(m_journal->clock.now());
        m_journal->context().processPendingChanges();
        QCOMPARE(m_panes->names(), (QStringList{u"Ben"_s, u"Ana"_s}));
        QCOMPARE(daysLabel(), u"Days since last meeting with Ana: 0"_s);
    }

    void addingIsOneStepOfUndo()
    {
        addSessions(2, 3);
        showAna();
        QTest::mouseClick(addButton(), Qt::LeftButton);
        gui::handlePendingEvents();
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(strip()->model()->rowCount(), 2);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
        QVERIFY(!m_journal->context().undoManager()->canUndo());
    }

    // Deleting.

    void deletingAsks()
    {
        addSessions(2, 3);
        showAna();
        strip()->setFocus();
        QTest::keyClick(strip(), Qt::Key_Delete);
        QVERIFY(m_panes->sheet());
        QCOMPARE(m_panes->sheetText(u"messageText"_s),
                 u"Do you really want to delete this session?"_s);
        QCOMPARE(m_panes->sheetText(u"informativeText"_s), u"Nov 17, 2026 will be removed."_s);
        QCOMPARE(m_panes->sheet()->buttons().size(), 2);
        QCOMPARE(m_panes->sheet()->buttons().at(0)->text(), u"Delete"_s);
        QCOMPARE(m_panes->sheet()->buttons().at(1)->text(), u"Cancel"_s);
        QTest::keyClick(m_panes->sheet(), Qt::Key_Escape);
        QTRY_VERIFY(!m_panes->sheet());
        QCOMPARE(m_ana->sessions().size(), 2);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
    }

    void cancelChangesNothing()
    {
        addSessions(2);
        showAna();
        QTest::mouseClick(deleteButton(), Qt::LeftButton);
        QTest::mouseClick(m_panes->sheet()->buttons().at(1), Qt::LeftButton);
        QCOMPARE(m_ana->sessions().size(), 2);
        QVERIFY(!m_journal->context().hasChanges());
    }

    void theTileThatTakesThePlaceIsSelected_data()
    {
        QTest::addColumn<int>("deleted");
        QTest::addColumn<int>("selected");
        QTest::newRow("the newest: the next older") << 0 << 1;
        QTest::newRow("in the middle: the next older") << 2 << 3;
        QTest::newRow("the oldest: the next newer") << 4 << 3;
    }

    void theTileThatTakesThePlaceIsSelected()
    {
        QFETCH(int, deleted);
        QFETCH(int, selected);
        addSessions(5);
        showAna();
        clickTile(deleted);
        confirmDeletion();
        QVERIFY(m_sessions.at(deleted)->isDeleted());
        QCOMPARE(pane()->selectedSession(), m_sessions.at(selected));
        QCOMPARE(editor()->session(), m_sessions.at(selected));
        QCOMPARE(strip()->model()->rowCount(), 4);
        QCOMPARE(shown().at(strip()->selectedRow()), m_sessions.at(selected));
    }

    void deletingTheLastMeetingHidesTheEditor()
    {
        addSessions(1, 6);
        showAna();
        QVERIFY(!daysLabel().isEmpty());
        confirmDeletion();
        QVERIFY(!pane()->selectedSession());
        QVERIFY(!editor()->session());
        QVERIFY(!editorContainer()->isVisible());
        QCOMPARE(daysLabel(), QString());
        QCOMPARE(stateTitle(u"noTilesState"_s), u"No meetings yet"_s);
        QVERIFY(!deleteButton()->isEnabled());
    }

    void aFailedDeletionSaysSoAndKeepsTheMeeting()
    {
        FaultVfs disk;
        m_ana.reset();
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), disk.name());
        m_ana = m_journal->addCounterpart(u"Ana"_s);
        addSessions(2);
        showAna();
        disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        QTest::mouseClick(deleteButton(), Qt::LeftButton);
        const QPointer<Alert> question = m_panes->sheet();
        QTest::mouseClick(question->buttons().at(0), Qt::LeftButton);
        QTRY_VERIFY(!question);
        QVERIFY(m_panes->sheet());
        QCOMPARE(m_panes->sheetText(u"messageText"_s), u"The meeting could not be deleted."_s);
        QVERIFY(!m_panes->sheetText(u"informativeText"_s).isEmpty());
        QTest::mouseClick(m_panes->sheet()->buttons().first(), Qt::LeftButton);
        QTRY_VERIFY(!m_panes->sheet());
        QCOMPARE(shown(), m_sessions);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));

        disk.failNothing();
        confirmDeletion();
        QCOMPARE(shown(), QList<std::shared_ptr<Session>>{m_sessions.at(1)});
        cleanup(); // Before the disk goes.
    }

    void deletingAMeetingThatIsNotAmongTheTilesSelectsNone()
    {
        addSessions(3);
        m_journal->write(m_sessions.at(2), NoteIdentifier::wins, u"found"_s);
        showAna();
        QTest::keyClicks(searchField(), u"found"_s);
        confirmDeletion();
        QVERIFY(m_sessions.at(0)->isDeleted());
        QVERIFY(!pane()->selectedSession());
        QVERIFY(state(u"noSelectionState"_s)->isVisible());
        QCOMPARE(strip()->model()->rowCount(), 1);
    }

    void aDeletionCanBeUndone()
    {
        addSessions(3);
        m_journal->write(m_sessions.at(0), NoteIdentifier::wins, u"kept"_s);
        showAna();
        confirmDeletion();
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(strip()->model()->rowCount(), 3);
        QCOMPARE(m_journal->note(shown().at(0), NoteIdentifier::wins)->contentString(), u"kept"_s);
    }

    void aMeetingDeletedElsewhereLeavesTheEditor()
    {
        addSessions(3);
        showAna();
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"typed"_s);
        QVERIFY(m_journal->context().deleteObject(m_sessions.at(0)).has_value());
        QVERIFY(editor()->session() != m_sessions.at(0));
        m_journal->context().processPendingChanges();
        QCOMPARE(pane()->selectedSession(), m_sessions.at(1));
        QCOMPARE(noteField()->text(), QString());
    }

    void aMeetingDeletedWhileTheQuestionStandsIsNoneOfItsBusiness()
    {
        addSessions(3);
        showAna();
        QTest::mouseClick(deleteButton(), Qt::LeftButton);
        QVERIFY(m_journal->context().deleteObject(m_sessions.at(0)).has_value());
        m_journal->context().processPendingChanges();
        QTest::mouseClick(m_panes->sheet()->buttons().at(0), Qt::LeftButton);
        QCOMPARE(m_ana->sessions().size(), 2);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(1));
    }

    void aTeammateDeletedElsewhereLeavesThePane()
    {
        addSessions(3);
        showAna();
        QVERIFY(m_journal->context().deleteObject(m_ana).has_value());
        m_journal->context().processPendingChanges();
        QVERIFY(!pane()->selectedCounterpart());
        QVERIFY(!pane()->selectedSession());
        QVERIFY(!editor()->session());
        QVERIFY(state(u"noCounterpartState"_s)->isVisible());
    }

    void aMeetingThatMovesToAnotherTeammateLeavesTheStrip()
    {
        addSessions(3);
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        showAna();
        m_sessions.at(1)->setCounterpart(ben);
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(), (QList<std::shared_ptr<Session>>{m_sessions.at(0), m_sessions.at(2)}));
    }

    void aSelectedMeetingThatMovesMakesRoomForTheNext()
    {
        addSessions(3);
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        showAna();
        clickTile(1);
        m_sessions.at(1)->setCounterpart(ben);
        m_journal->context().processPendingChanges();
        QCOMPARE(pane()->selectedSession(), m_sessions.at(2));
        QCOMPARE(editor()->session(), m_sessions.at(2));
        QCOMPARE(strip()->selectedRow(), 1);
        QTest::keyClick(strip(), Qt::Key_Delete);
        QVERIFY(m_panes->sheetText(u"informativeText"_s).startsWith(m_sessions.at(2)->dateText()));
    }

    void aMeetingThatNoLongerMatchesTheSearchLeavesNoOtherSelected()
    {
        addSessions(3);
        for (const int found : {0, 1})
            m_journal->write(m_sessions.at(found), NoteIdentifier::wins, u"found"_s);
        showAna();
        QTest::keyClicks(searchField(), u"found"_s);
        QCOMPARE(strip()->selectedRow(), 0);
        editor()->showField(int(NoteIdentifier::wins));
        editor()->focusNoteInput();
        QTest::keyClick(noteField(), Qt::Key_Backspace);
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(), QList{m_sessions.at(1)});
        verifyNoTileIsSelectedAndTheEditorHas(m_sessions.at(0));
        QTest::keyClicks(noteField(), u"d"_s);
        m_journal->context().processPendingChanges();
        QCOMPARE(strip()->selectedRow(), 0);
    }

    void aMeetingThatLosesItsTagUnderAFilterLeavesNoOtherSelected()
    {
        addSessions(3);
        for (const int tagged : {0, 1})
            m_journal->addTag(m_sessions.at(tagged), u"Career"_s, {});
        const auto career = m_sessions.at(0)->sortedTags().first();
        showAna();
        pane()->findChild<TagField *>(u"tagFilterField"_s)->setObjectValue({career});
        QCOMPARE(strip()->selectedRow(), 0);
        m_sessions.at(0)->removeTag(*career);
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(), QList{m_sessions.at(1)});
        verifyNoTileIsSelectedAndTheEditorHas(m_sessions.at(0));
    }

    // Changes from elsewhere.

    void aMeetingAddedElsewhereKeepsTheSelection()
    {
        addSessions(3, 2);
        showAna();
        clickTile(1);
        const auto added = m_journal->addSessionDaysAgo(m_ana, 1);
        m_journal->context().processPendingChanges();
        QCOMPARE(shown().at(0), added);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(1));
        QCOMPARE(strip()->selectedRow(), 2);
        QCOMPARE(daysLabel(), u"Days since last meeting with Ana: 1"_s);
    }

    void newEmojiRepaintTheTiles()
    {
        addSessions(2);
        m_sessions.at(1)->setMeetingSentiment(1);
        showAna();
        const QImage before = strip()->viewport()->grab(tile(1)).toImage();
        m_journal->defaults.setEmojiOverride(DefaultsManager::meetingOverrideKey(1), u"🐙"_s);
        m_journal->defaults.emojiChanged();
        QTRY_VERIFY(strip()->viewport()->grab(tile(1)).toImage() != before);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
    }

    void aRatingPickedInTheEditorShowsOnTheTile()
    {
        addSessions(2);
        showAna();
        const QImage before = strip()->viewport()->grab(tile(0)).toImage();
        m_sessions.at(0)->setMeetingSentiment(1);
        QTRY_VERIFY(strip()->viewport()->grab(tile(0)).toImage() != before);
    }

    void theStripIsAProperModel()
    {
        addSessions(3);
        showAna();
        const QAbstractItemModelTester tester(
            strip()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QTest::mouseClick(addButton(), Qt::LeftButton);
        gui::handlePendingEvents();
        confirmDeletion();
        QTest::keyClicks(searchField(), u"x"_s);
        searchField()->clear();
        QCOMPARE(strip()->model()->rowCount(), 3);
    }

    void committingLeavesTheEditAlone()
    {
        addSessions(2);
        showAna();
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"half a"_s);
        noteField()->moveCursor(QTextCursor::Left);
        const int caret = noteField()->textCursor().position();
        QVERIFY(pane()->commitEditing());
        QCOMPARE(noteField()->textCursor().position(), caret);
        QVERIFY(noteField()->hasFocus());
        QCOMPARE(
            m_journal->note(m_sessions.at(0), NoteIdentifier::actionItemsReceived)->contentString(),
            u"half a"_s);
    }

    // Many meetings.

    void stuffingNobodyStopsTheProgram()
    {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {stuffNobody});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        QVERIFY(program.readAllStandardError().contains("a teammate is selected"));
    }

    void stuffingAddsManyMeetingsAsOneStep()
    {
        addSessions(2, 9000);
        showAna();
        pane()->stuffSessions();
        gui::handlePendingEvents();
        QCOMPARE(strip()->model()->rowCount(), 5002);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
        QCOMPARE(shown(3).at(0)->notes().size(), 9);
        QCOMPARE(shown(3).at(0)->counterpart(), m_ana);
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(strip()->model()->rowCount(), 2);
        QVERIFY(!m_journal->context().undoManager()->canUndo());
    }

private:
    void verifyNoTileIsSelectedAndTheEditorHas(const std::shared_ptr<Session> &session) const
    {
        QCOMPARE(strip()->selectedRow(), -1);
        QCOMPARE(pane()->selectedSession(), session);
        QCOMPARE(editor()->session(), session);
        QWidget *focused = QApplication::focusWidget();
        strip()->setFocus();
        QTest::keyClick(strip(), Qt::Key_Delete);
        QVERIFY(!m_panes->sheet());
        focused->setFocus();
        QTest::mouseClick(deleteButton(), Qt::LeftButton);
        QVERIFY(m_panes->sheetText(u"informativeText"_s).startsWith(session->dateText()));
        QTest::mouseClick(m_panes->sheet()->buttons().at(1), Qt::LeftButton);
    }
};

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (application.arguments().contains(stuffNobody)) {
        stuffWithoutATeammate();
        return 0;
    }
    tst_DetailPaneEditing test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_DetailPaneEditing.moc"
