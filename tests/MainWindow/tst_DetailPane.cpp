#include "TwoPanes.h"

#include "MainWindow/SessionDetailViewController.h"
#include "MainWindow/SessionTimelineModel.h"
#include "MainWindow/SummaryCollectionView.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "Store/ManagedObjectContext.h"
#include "Store/UndoManager.h"
#include "Toolkit/EmptyState.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSignalSpy>
#include <QToolButton>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The pane of a teammate's meetings, beside the list of teammates, used as a user does.
class tst_DetailPane : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "UTC"); }

    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_ana = m_journal->addCounterpart(u"Ana"_s);
    }

    void cleanup()
    {
        m_panes.reset();
        m_sessions.clear();
        m_ana.reset();
        m_journal.reset();
    }

    // A teammate comes.

    void withoutATeammateThereIsAnExplanation()
    {
        show();
        QVERIFY(state(u"noCounterpartState"_s)->isVisible());
        QVERIFY(!addButton()->isEnabled());
        QVERIFY(!addButton()->isVisible());
        QVERIFY(!editorContainer()->isVisible());
        QVERIFY(!pane()->controlsEnabled());
        pane()->addSession();
        pane()->addSessionFileMenu();
        pane()->handleDelete();
        QVERIFY(!m_panes->sheet());
        QVERIFY(!m_journal->context().hasChanges());
    }

    void theNewestMeetingIsSelectedOnArrival()
    {
        addSessions(3);
        showAna();
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
        QCOMPARE(strip()->model()->rowCount(), 3);
        QCOMPARE(strip()->selectedRow(), 0);
        QVERIFY(editorContainer()->isVisible());
        QVERIFY(pane()->controlsEnabled());
        QVERIFY(editor()->isEnabled());
        QCOMPARE(editor()->session(), m_sessions.at(0));
        QVERIFY(addButton()->isEnabled());
    }

    void aTeammateWithoutMeetingsOffersToAddOne()
    {
        showAna();
        QVERIFY(!pane()->selectedSession());
        QVERIFY(!strip()->isVisible());
        QVERIFY(!editorContainer()->isVisible());
        QVERIFY(addButton()->isEnabled());
        QCOMPARE(stateTitle(u"noTilesState"_s), u"No meetings yet"_s);
        QTest::mouseClick(state(u"noTilesState"_s)->button(), Qt::LeftButton);
        QCOMPARE(m_ana->sessions().size(), 1);
        QVERIFY(strip()->isVisible());
        QVERIFY(editorContainer()->isVisible());
    }

    void anotherTeammateShowsItsNewest()
    {
        addSessions(3);
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        const auto bens = m_journal->addSessionDaysAgo(ben, 40);
        showAna();
        strip()->setFocus();
        QTest::keyClick(strip(), Qt::Key_Right);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(1));
        pane()->setProperty("selectedCounterpart", QVariant::fromValue(ben));
        QCOMPARE(pane()->selectedSession(), bens);
        QCOMPARE(strip()->model()->rowCount(), 1);
        pane()->setSelectedCounterpart({});
        QVERIFY(!pane()->selectedSession());
        QCOMPARE(strip()->model()->rowCount(), 0);
        QVERIFY(state(u"noCounterpartState"_s)->isVisible());
    }

    void theSameTeammateAgainKeepsTheMeeting()
    {
        addSessions(3);
        showAna();
        clickTile(2);
        pane()->setSelectedCounterpart(m_ana);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(2));
    }

    // Labels.

    void theDaysSinceTheLastMeetingAreTold()
    {
        addSessions(2, 6);
        showAna();
        QCOMPARE(daysLabel(), u"Days since last meeting with Ana: 6"_s);
    }

    void theDaysAreToldAnewWhenTheyChange()
    {
        addSessions(1, 6);
        showAna();
        m_journal->clock.advance(secondsPerDay);
        m_journal->derivedTexts.checkClock();
        QCOMPARE(daysLabel(), u"Days since last meeting with Ana: 7"_s);
    }

    void withoutMeetingsTheDaysLabelIsEmpty()
    {
        showAna();
        QCOMPARE(daysLabel(), QString());
    }

    void aMeetingWithoutADateCountsAsNone()
    {
        addSessions(1);
        m_sessions.at(0)->setDate({});
        showAna();
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
        QCOMPARE(daysLabel(), u"Days since last meeting with Ana: -1"_s);
    }

    void aRenameChangesTheLabels()
    {
        addSessions(1, 2);
        showAna();
        QCOMPARE(searchField()->placeholderText(), u"Search notes for Ana"_s);
        m_ana->setName(u"Ana Silva"_s);
        QCOMPARE(searchField()->placeholderText(), u"Search notes for Ana Silva"_s);
        QCOMPARE(daysLabel(), u"Days since last meeting with Ana Silva: 2"_s);
        QCOMPARE(pane()->findChild<QLabel *>(u"counterpartNameLabel"_s)->text(), u"Ana Silva"_s);
        m_ana->setName({});
        QCOMPARE(searchField()->placeholderText(), u"Search notes for "_s);
    }

    void theNameOfAFormerTeammateIsNoLongerFollowed()
    {
        addSessions(1, 2);
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        showAna();
        pane()->setSelectedCounterpart(ben);
        m_ana->setName(u"Ana Silva"_s);
        QCOMPARE(searchField()->placeholderText(), u"Search notes for Ben"_s);
    }

    // Choosing a meeting.

    void aClickOpensTheMeeting()
    {
        addSessions(4);
        showAna();
        const QSignalSpy told(pane(), &DetailPaneViewController::selectedSessionChanged);
        clickTile(2);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(2));
        QCOMPARE(editor()->session(), m_sessions.at(2));
        QCOMPARE(told.count(), 1);
    }

    void keysOpenMeetingsAndReturnGoesToTheNotes()
    {
        addSessions(4);
        showAna();
        pane()->setFocus();
        QVERIFY(strip()->hasFocus());
        QTest::keyClick(strip(), Qt::Key_End);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(3));
        QTest::keyClick(strip(), Qt::Key_Return);
        QVERIFY(noteField()->hasFocus());
    }

    void withoutASelectedTileTheEditorIsCleared()
    {
        addSessions(4);
        showAna();
        QTest::mouseClick(strip()->viewport(), Qt::LeftButton, Qt::ControlModifier, tile(0).center());
        QVERIFY(!pane()->selectedSession());
        QVERIFY(!editor()->session());
        QVERIFY(!editorContainer()->isVisible());
        QVERIFY(!pane()->controlsEnabled());
        QVERIFY(state(u"noSelectionState"_s)->isVisible());
        clickTile(1);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(1));
        QVERIFY(!state(u"noSelectionState"_s)->isVisible());
    }

    void aMeetingSetFromOutsideIsSelectedAndShown()
    {
        addSessions(200);
        showAna();
        pane()->setProperty("selectedSession", QVariant::fromValue(m_sessions.at(150)));
        QCOMPARE(strip()->selectedRow(), 150);
        QVERIFY(strip()->viewport()->rect().contains(tile(150)));
    }

    // Searching.

    void searchingFiltersAtEachKey()
    {
        addSessions(3);
        m_journal->write(m_sessions.at(1), NoteIdentifier::wins, u"Met in the Café"_s);
        m_journal->write(m_sessions.at(2), NoteIdentifier::wins, u"Cars"_s);
        showAna();
        searchField()->setFocus();
        QTest::keyClicks(searchField(), u"ca"_s);
        QCOMPARE(strip()->model()->rowCount(), 2);
        QTest::keyClicks(searchField(), u"fe"_s);
        QCOMPARE(shown(), QList<std::shared_ptr<Session>>{m_sessions.at(1)});
        QVERIFY(searchField()->hasFocus());
        // The editor is left alone, though its meeting is not among the tiles.
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
        QCOMPARE(strip()->selectedRow(), -1);
        QTest::keyClick(searchField(), Qt::Key_Escape);
        QCOMPARE(searchField()->text(), QString());
        QCOMPARE(strip()->model()->rowCount(), 3);
        QCOMPARE(strip()->selectedRow(), 0);
    }

    void searchTextIsNoPattern_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("percent") << u"%"_s;
        QTest::newRow("placeholder") << u"%@"_s;
        QTest::newRow("quote") << u"' OR 1"_s;
    }

    void searchTextIsNoPattern()
    {
        QFETCH(QString, text);
        addSessions(2);
        m_journal->write(m_sessions.at(0), NoteIdentifier::wins, u"Plain"_s);
        m_journal->write(m_sessions.at(1), NoteIdentifier::wins, QString(u"before "_s + text + u" after"_s));
        showAna();
        QTest::keyClicks(searchField(), text);
        QCOMPARE(shown(), QList<std::shared_ptr<Session>>{m_sessions.at(1)});
    }

    void aSearchWithoutHitsSaysSo()
    {
        addSessions(3);
        showAna();
        QTest::keyClicks(searchField(), u"xyz"_s);
        QVERIFY(!strip()->isVisible());
        QCOMPARE(stateTitle(u"noTilesState"_s), u"No meetings match “xyz”"_s);
        QVERIFY(editorContainer()->isVisible());
        QTest::mouseClick(state(u"noTilesState"_s)->button(), Qt::LeftButton);
        QVERIFY(searchField()->text().isEmpty());
        QCOMPARE(strip()->model()->rowCount(), 3);
        QVERIFY(strip()->isVisible());
    }

    void theSearchHoldsForTheNextTeammate()
    {
        addSessions(2);
        m_journal->write(m_sessions.at(1), NoteIdentifier::wins, u"Launch"_s);
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->addSessionDaysAgo(ben, 1);
        const auto launch = m_journal->addSessionDaysAgo(ben, 2);
        m_journal->write(launch, NoteIdentifier::goals, u"launch it"_s);
        showAna();
        QTest::keyClicks(searchField(), u"launch"_s);
        pane()->setSelectedCounterpart(ben);
        QCOMPARE(shown(), QList<std::shared_ptr<Session>>{launch});
        QCOMPARE(pane()->selectedSession(), launch);
    }

    void whatIsTypedComesIntoTheResults()
    {
        addSessions(2);
        showAna();
        QTest::keyClicks(searchField(), u"new"_s);
        QCOMPARE(strip()->model()->rowCount(), 0);
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"Brand new"_s);
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(), QList<std::shared_ptr<Session>>{m_sessions.at(0)});
        QVERIFY(noteField()->hasFocus());
        QCOMPARE(noteField()->text(), u"Brand new"_s);
        QCOMPARE(strip()->selectedRow(), 0);
    }

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
        QTest::qWait(1);
        QCOMPARE(strip()->model()->rowCount(), 4);
        QCOMPARE(pane()->selectedSession(), added);
    }

    void addingSavesNothing()
    {
        showAna();
        const QSignalSpy saved(&m_journal->context(), &ManagedObjectContext::didSave);
        pane()->addSessionFileMenu();
        QTest::qWait(1);
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
        addSessions(2);
        showAna();
        QTest::mouseClick(addButton(), Qt::LeftButton);
        QTest::qWait(1);
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
        QCOMPARE(m_panes->sheetText(u"messageText"_s), u"Do you really want to delete this session?"_s);
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
        const QAbstractItemModelTester tester(strip()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QTest::mouseClick(addButton(), Qt::LeftButton);
        QTest::qWait(1);
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
        QCOMPARE(m_journal->note(m_sessions.at(0), NoteIdentifier::actionItemsReceived)->contentString(), u"half a"_s);
    }

    // Many meetings.

    void stuffingAddsManyMeetingsAsOneStep()
    {
        addSessions(2, 9000);
        showAna();
        QElapsedTimer timer;
        timer.start();
        pane()->stuffSessions();
        QTest::qWait(1);
        const qint64 milliseconds = timer.elapsed();
        qInfo("5000 meetings in %lld ms", milliseconds);
        QCOMPARE(strip()->model()->rowCount(), 5002);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
        QCOMPARE(shown(3).at(0)->notes().size(), 9);
        QCOMPARE(shown(3).at(0)->counterpart(), m_ana);
        m_journal->context().undoManager()->undo();
        QTRY_COMPARE(strip()->model()->rowCount(), 2);
        QVERIFY(!m_journal->context().undoManager()->canUndo());
    }

private:
    void addSessions(int count, double firstDaysAgo = 0)
    {
        for (int day = 0; day < count; ++day)
            m_sessions.append(m_journal->addSessionDaysAgo(m_ana, firstDaysAgo + day));
    }

    void show()
    {
        m_journal->settle();
        m_panes = std::make_unique<TwoPanes>(*m_journal);
        m_panes->show();
    }

    void showAna()
    {
        show();
        m_panes->clickRow(int(m_panes->names().indexOf(u"Ana"_s)));
        QCOMPARE(pane()->selectedCounterpart(), m_ana);
    }

    void confirmDeletion() const
    {
        QTest::mouseClick(deleteButton(), Qt::LeftButton);
        QVERIFY(m_panes->sheet());
        QTest::mouseClick(m_panes->sheet()->buttons().at(0), Qt::LeftButton);
        QTRY_VERIFY(!m_panes->sheet());
    }

    DetailPaneViewController *pane() const { return m_panes->detail; }
    SessionDetailViewController *editor() const { return &pane()->sessionDetailViewController(); }
    SummaryCollectionView *strip() const { return pane()->findChild<SummaryCollectionView *>(); }
    QPushButton *addButton() const { return pane()->findChild<QPushButton *>(u"addButton"_s); }
    QToolButton *deleteButton() const { return pane()->findChild<QToolButton *>(u"deleteButton"_s); }
    QLineEdit *searchField() const { return pane()->findChild<QLineEdit *>(u"searchField"_s); }
    QWidget *editorContainer() const { return pane()->findChild<QWidget *>(u"detailContainerView"_s); }
    BindablePlaceholderTextField *noteField() const { return pane()->findChild<BindablePlaceholderTextField *>(); }
    EmptyState *state(const QString &name) const { return pane()->findChild<EmptyState *>(name); }
    QString stateTitle(const QString &name) const { return state(name)->findChild<QLabel *>(u"emptyStateTitle"_s)->text(); }
    QString daysLabel() const { return pane()->findChild<QLabel *>(u"daysSinceLastMeetingLabel"_s)->text(); }

    QRect tile(int row) const { return strip()->visualRect(strip()->model()->index(row, 0)); }
    void clickTile(int row) const { QTest::mouseClick(strip()->viewport(), Qt::LeftButton, {}, tile(row).center()); }

    QList<std::shared_ptr<Session>> shown(int most = 1000) const
    {
        const auto *model = static_cast<const SessionTimelineModel *>(strip()->model());
        QList<std::shared_ptr<Session>> sessions;
        for (int row = 0; row < std::min(most, model->rowCount()); ++row)
            sessions.append(model->sessionAt(row));
        return sessions;
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::shared_ptr<Counterpart> m_ana;
    QList<std::shared_ptr<Session>> m_sessions; ///< Of Ana; the newest first.
    std::unique_ptr<TwoPanes> m_panes;
};

QTEST_MAIN(tst_DetailPane)
#include "tst_DetailPane.moc"
