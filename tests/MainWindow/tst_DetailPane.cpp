#include "MeetingPaneTest.h"

#include "Store/Objects/PersistentContainer.h"

#include <QRegularExpression>
#include <QSignalSpy>

#include <sqlite3.h>

using namespace tembra;
using namespace Qt::StringLiterals;

/// What the pane of a teammate's meetings shows, how a meeting is chosen and searched.
class tst_DetailPane : public MeetingPaneTest
{
    Q_OBJECT

private Q_SLOTS:
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
        QTest::mouseClick(strip()->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          tile(0).center());
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
        m_journal->write(m_sessions.at(1), NoteIdentifier::wins,
                         QString(u"before "_s + text + u" after"_s));
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

    void aFetchThatFailsLeavesTheStripEmpty()
    {
        addSessions(2);
        showAna();
        execute("ALTER TABLE note RENAME TO elsewhere");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Failed to fetch entities: ."_s));
        QTest::keyClicks(searchField(), u"x"_s);
        QCOMPARE(strip()->model()->rowCount(), 0);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(0));
        execute("ALTER TABLE elsewhere RENAME TO note");
        searchField()->clear();
        QCOMPARE(strip()->model()->rowCount(), 2);
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

private:
    /// Changes the store behind the program's back.
    void execute(const char *sql) const
    {
        const QByteArray file = m_journal->context().container().storeFile().toUtf8();
        sqlite3 *database = nullptr;
        QCOMPARE(sqlite3_open(file.constData(), &database), SQLITE_OK);
        QCOMPARE(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }
};

QTEST_MAIN(tst_DetailPane)
#include "tst_DetailPane.moc"
