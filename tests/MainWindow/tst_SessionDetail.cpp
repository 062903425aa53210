#include "EditorTest.h"

#include "Store/Undo/UndoManager.h"
#include "Toolkit/Popover.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QInputMethodEvent>
#include <QTextBlock>
#include <QWheelEvent>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The note fields of the editor, and what its controls have in common.
class tst_SessionDetail : public EditorTest
{
    Q_OBJECT

private Q_SLOTS:
    void theWheelInPassingChangesNothing()
    {
        m_session->setMeetingSentiment(2);
        show();
        noteField()->setFocus();
        for (QWidget *control : {static_cast<QWidget *>(popup(u"meetingPopup"_s)),
                                 static_cast<QWidget *>(dateField())}) {
            const QPoint middle = control->rect().center();
            QWheelEvent wheel(middle, control->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(control, &wheel);
        }
        QCOMPARE(int(m_session->meetingSentiment()), 2);
        verifyDateUntouched();
    }

    void everyControlHasALabelWithAMnemonic_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("control");
        QTest::newRow("me") << u"Me"_s << u"mePopup"_s;
        QTest::newRow("meeting") << u"Meeting"_s << u"meetingPopup"_s;
        QTest::newRow("teammate") << u"Teammate"_s << u"teammatePopup"_s;
        QTest::newRow("date") << u"Date"_s << u"dateField"_s;
    }

    void everyControlHasALabelWithAMnemonic()
    {
        QFETCH(QString, label);
        QFETCH(QString, control);
        show();
        for (const QLabel *each : m_editor->findChildren<QLabel *>()) {
            QString text = each->text();
            const qsizetype ampersand = text.indexOf(u'&');
            if (ampersand < 0 || text.remove(u'&') != label)
                continue;
            const QChar key = each->text().at(ampersand + 1).toUpper();
            noteField()->setFocus();
            QTest::keyClick(m_editor->window(), Qt::Key(key.unicode()), Qt::AltModifier);
            QTRY_COMPARE(QApplication::focusWidget(), m_editor->findChild<QWidget *>(control));
            return;
        }
        QFAIL("There is no such label");
    }

    void theNineFieldsAreListedInOrder()
    {
        show();
        QStringList titles;
        for (int row = 0; row < table()->model()->rowCount(); ++row)
            titles.append(table()->model()->index(row, 0).data().toString());
        QCOMPARE(titles, (QStringList{u"Action items for me"_s, u"Blockers"_s, u"Feedback given"_s,
                                      u"Feedback received"_s, u"Goals discussed"_s, u"Wins"_s,
                                      u"Professional development"_s, u"Next time off"_s,
                                      u"Miscellaneous"_s}));
        QCOMPARE(m_editor->sortedNotes().size(), 9);
        QCOMPARE(m_editor->property("sortedNotes").value<QList<std::shared_ptr<Note>>>(),
                 m_editor->sortedNotes());
    }

    void theListIsAProperModel()
    {
        show();
        const QAbstractItemModelTester tester(
            table()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_editor->setSession(m_other);
        m_editor->setSession({});
        QCOMPARE(table()->model()->rowCount(), 0);
    }

    void theFirstFieldIsShownAtTheStart()
    {
        m_journal->write(m_session, NoteIdentifier::actionItemsReceived, u"Send the slides"_s);
        show();
        QCOMPARE(shownRow(), 0);
        QCOMPARE(title(), u"Action items for me"_s);
        QCOMPARE(noteField()->text(), u"Send the slides"_s);
    }

    void theShownFieldIsTold_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<bool>("explained");
        QTest::newRow("blockers")
            << 1 << u"Blockers"_s
            << u"This is what is getting in the way of my teammate's success."_s << true;
        QTest::newRow("goals") << 4 << u"Goals discussed"_s
                               << u"Examples: short-term, long-term, project-based, etc."_s << true;
        QTest::newRow("miscellaneous has no explanation")
            << 8 << u"Miscellaneous"_s << QString() << false;
    }

    void theShownFieldIsTold()
    {
        QFETCH(int, row);
        QFETCH(QString, prompt);
        QFETCH(bool, explained);
        show();
        clickRow(row);
        QTEST(title(), "title");
        QCOMPARE(noteField()->placeholderText(), prompt);
        QCOMPARE(questionButton()->isVisible(), explained);
    }

    void aDotMarksFilledFields()
    {
        m_journal->write(m_session, NoteIdentifier::wins, u"Launched"_s);
        show();
        QCOMPARE(filledRows(), QList<int>{5});
        const QImage before = rowImage(0);
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"x"_s);
        QCOMPARE(filledRows(), (QList<int>{0, 5}));
        QTRY_VERIFY(rowImage(0) != before);
        QTest::keyClick(noteField(), Qt::Key_Backspace);
        QCOMPARE(filledRows(), QList<int>{5});
        QTRY_COMPARE(rowImage(0), before);
        QCOMPARE(table()->model()->index(5, 0).data(Qt::AccessibleTextRole).toString(),
                 u"Wins, filled in"_s);
        QCOMPARE(table()->model()->index(4, 0).data(Qt::AccessibleTextRole).toString(),
                 u"Goals discussed"_s);
    }

    void typingEditsTheNoteDirectly()
    {
        show();
        clickRow(1);
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"No time"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::blockers)->contentString(),
                 u"No time"_s);
        QTest::keyClick(noteField(), Qt::Key_Return);
        QTest::keyClicks(noteField(), u"No room"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::blockers)->contentString(),
                 u"No time\nNo room"_s);
        QVERIFY(m_journal->note(m_session, NoteIdentifier::goals)->contentString().isNull());
    }

    void nextAndPreviousGoRound()
    {
        show();
        step(u"previousNoteButton"_s);
        QCOMPARE(shownRow(), 8);
        QCOMPARE(title(), u"Miscellaneous"_s);
        step(u"nextNoteButton"_s);
        QCOMPARE(shownRow(), 0);
        step(u"nextNoteButton"_s);
        QCOMPARE(shownRow(), 1);
        QCOMPARE(title(), u"Blockers"_s);
        step(u"previousNoteButton"_s);
        QCOMPARE(shownRow(), 0);
        QCOMPARE(table()->selectionModel()->selectedIndexes().size(), 1);
    }

    void steppingByClickLeavesTheKeyboardInTheText()
    {
        show();
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"a"_s);
        step(u"nextNoteButton"_s);
        QVERIFY(noteField()->hasFocus());
        QTest::keyClicks(noteField(), u"b"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(),
                 u"a"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::blockers)->contentString(), u"b"_s);
    }

    void arrowsChooseAFieldAndReturnGoesToItsText()
    {
        show();
        table()->setFocus();
        QTest::keyClick(table(), Qt::Key_Down);
        QTest::keyClick(table(), Qt::Key_Down);
        QCOMPARE(title(), u"Feedback given"_s);
        QTest::keyClick(table(), Qt::Key_Return);
        QVERIFY(noteField()->hasFocus());
    }

    void tabGoesThroughTheControls()
    {
        show();
        popup(u"mePopup"_s)->setFocus();
        const QList<QWidget *> order{popup(u"meetingPopup"_s), popup(u"teammatePopup"_s)};
        for (QWidget *control : order) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), control);
        }
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"x"_s);
        QTest::keyClick(noteField(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget()->objectName(), u"previousNoteButton"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget()->objectName(), u"nextNoteButton"_s);
        noteField()->setFocus();
        QTest::keyClick(noteField(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), questionButton());
        QTest::keyClick(questionButton(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), table());
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(),
                 u"x"_s);
    }

    void theQuestionIsAnsweredInAPopover()
    {
        show();
        clickRow(6);
        QTest::mouseClick(questionButton(), Qt::LeftButton);
        auto *popover = m_editor->findChild<Popover *>();
        QVERIFY(popover);
        QTRY_VERIFY(popover->isVisible());
        QCOMPARE(
            popover->findChild<QLabel *>(u"label"_s)->text(),
            u"Am I checking in regularly, at least every other month, on progress to short and long term professional goals?"_s);
        QTest::keyClick(popover, Qt::Key_Escape);
        QTRY_VERIFY(!m_editor->findChild<Popover *>());
    }

    void theLastNoteIsTold()
    {
        show();
        QCOMPARE(lastNote(), u"Last note: Never"_s);
        m_journal->write(m_other, NoteIdentifier::actionItemsReceived, u"Slides"_s);
        m_journal->context().processPendingChanges();
        QTRY_COMPARE(lastNote(), u"Last note: Nov 7, 2026"_s);
        m_other->setDate(utc(2026, 10, 1));
        m_journal->context().processPendingChanges();
        QTRY_COMPARE(lastNote(), u"Last note: Oct 1, 2026"_s);
        clickRow(1);
        QCOMPARE(lastNote(), u"Last note: Never"_s);
    }

    void theSameFieldIsShownInTheNextMeeting()
    {
        m_journal->write(m_session, NoteIdentifier::goals, u"Mine"_s);
        m_journal->write(m_other, NoteIdentifier::goals, u"Other"_s);
        show();
        clickRow(4);
        QCOMPARE(noteField()->text(), u"Mine"_s);
        m_editor->setSession(m_other);
        QCOMPARE(shownRow(), 4);
        QCOMPARE(title(), u"Goals discussed"_s);
        QCOMPARE(noteField()->text(), u"Other"_s);
        m_editor->setSession({});
        QCOMPARE(noteField()->text(), QString());
        m_editor->setSession(m_session);
        QCOMPARE(shownRow(), 4);
        QCOMPARE(noteField()->text(), u"Mine"_s);
    }

    void typingEndsInTheMeetingItBelongsTo()
    {
        show();
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"first"_s);
        m_editor->setSession(m_other);
        QTest::keyClicks(noteField(), u"second"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(),
                 u"first"_s);
        QCOMPARE(m_journal->note(m_other, NoteIdentifier::actionItemsReceived)->contentString(),
                 u"second"_s);
    }

    void committingBreaksNoComposition()
    {
        show();
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"ni "_s);
        QInputMethodEvent composing(u"hao"_s, {});
        QApplication::sendEvent(noteField(), &composing);
        const int caret = noteField()->textCursor().position();
        QVERIFY(m_editor->commitEditing());
        QCOMPARE(noteField()->textCursor().position(), caret);
        QCOMPARE(noteField()->textCursor().block().layout()->preeditAreaText(), u"hao"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(),
                 u"ni "_s);
        QVERIFY(noteField()->hasFocus());
    }

    void showFieldShowsIt()
    {
        show();
        m_editor->showField(7);
        QCOMPARE(title(), u"Next time off"_s);
        m_editor->showField(42);
        QCOMPARE(title(), u"Next time off"_s);
    }

    void aMeetingWithoutNotesShowsNone()
    {
        QList<std::shared_ptr<ManagedObject>> notes;
        for (const std::shared_ptr<Note> &note : m_other->sortedNotes())
            notes.append(note);
        QVERIFY(m_journal->context().deleteObjects(notes).has_value());
        show();
        clickRow(3);
        m_editor->setSession(m_other);
        QCOMPARE(table()->model()->rowCount(), 0);
        QVERIFY(!noteField()->isEnabled());
        QVERIFY(title().isEmpty());
        QVERIFY(lastNote().isEmpty());
        QVERIFY(!questionButton()->isVisible());
        m_editor->handleNextNoteButton();
        m_editor->handlePreviousNoteButton();
        m_editor->handleNoteQuestionButton();
        m_editor->setSession(m_session);
        QCOMPARE(shownRow(), 3);
        QVERIFY(noteField()->isEnabled());
    }

    void undoIsShownInTheEditor()
    {
        {
            const UndoManager::Suspension notUndoable(*m_journal->context().undoManager());
            m_session->setMeetingSentiment(1);
        }
        m_journal->settle();
        show();
        popup(u"meetingPopup"_s)->setFocus();
        QTest::keyClick(popup(u"meetingPopup"_s), Qt::Key_Down);
        m_journal->context().processPendingChanges();
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"word"_s);
        m_journal->context().processPendingChanges();
        m_journal->context().undoManager()->undo();
        QCOMPARE(noteField()->text(), QString());
        m_journal->context().undoManager()->undo();
        QCOMPARE(popup(u"meetingPopup"_s)->currentIndex(), 1);
    }
};

QTEST_MAIN(tst_SessionDetail)
#include "tst_SessionDetail.moc"
