#include "MainWindow/NotesArrayController.h"
#include "MainWindow/SessionDetailViewController.h"
#include "Model/DefaultsManager.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "Store/ManagedObjectContext.h"
#include "Store/UndoManager.h"
#include "Toolkit/EmojiComboBox.h"
#include "Toolkit/EmojiLabel.h"
#include "Toolkit/Popover.h"
#include "support/JournalFixture.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The editor of a meeting, used as a user does.
class tst_SessionDetail : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("TZ", "UTC");
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_counterpart = m_journal->addCounterpart(u"Ana"_s);
        m_session = m_journal->addSession(m_counterpart, Date{utc(2026, 11, 14, 9, 30).secondsSinceReferenceDate + 12.345678});
        m_other = m_journal->addSession(m_counterpart, utc(2026, 11, 7));
        m_journal->settle();
    }

    void cleanup()
    {
        m_editor.reset();
        m_session.reset();
        m_other.reset();
        m_counterpart.reset();
        m_journal.reset();
    }

    // Ratings.

    void menusListTheScalesInOrder_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QStringList>("emoji");
        const QStringList personal{u"—"_s, u"🙂"_s, u"😔"_s, u"🤩"_s, u"😖"_s, u"🤕"_s, u"😎"_s, u"😐"_s, u"🤔"_s};
        QTest::newRow("me") << u"mePopup"_s << personal;
        QTest::newRow("teammate") << u"teammatePopup"_s << personal;
        QTest::newRow("meeting") << u"meetingPopup"_s
                                 << QStringList{u"—"_s, u"💥"_s, u"🙌"_s, u"✅"_s, u"⚡️"_s, u"😤"_s, u"🔋"_s};
    }

    void menusListTheScalesInOrder()
    {
        QFETCH(QString, menu);
        QFETCH(QStringList, emoji);
        show();
        QStringList titles;
        for (int index = 0; index < popup(menu)->count(); ++index)
            titles.append(popup(menu)->itemText(index));
        QCOMPARE(titles, emoji);
    }

    void aRatingIsShownAndPicked_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QByteArray>("property");
        QTest::newRow("me") << u"mePopup"_s << QByteArray("personalSentiment");
        QTest::newRow("meeting") << u"meetingPopup"_s << QByteArray("meetingSentiment");
        QTest::newRow("teammate") << u"teammatePopup"_s << QByteArray("counterpartSentiment");
    }

    void aRatingIsShownAndPicked()
    {
        QFETCH(QString, menu);
        QFETCH(QByteArray, property);
        m_session->setProperty(property.constData(), QVariant::fromValue(qint16(2)));
        show();
        QCOMPARE(popup(menu)->currentIndex(), 2);
        popup(menu)->setFocus();
        QTest::keyClick(popup(menu), Qt::Key_Down);
        QCOMPARE(m_session->property(property.constData()).toInt(), 3);
        QCOMPARE(popup(menu)->currentIndex(), 3);
    }

    void aRatingIsPickedFromTheOpenMenu()
    {
        show();
        QTest::mouseClick(popup(u"meetingPopup"_s), Qt::LeftButton);
        QAbstractItemView *list = popup(u"meetingPopup"_s)->view();
        QTRY_VERIFY(list->isVisible());
        QTest::qWait(QApplication::doubleClickInterval() + 50); // So soon a click would not count.
        const QModelIndex tense = list->model()->index(4, 0);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(tense).center());
        QTRY_COMPARE(int(m_session->meetingSentiment()), 4);
    }

    void aRatingOffTheScaleShowsNothingAndStays()
    {
        m_session->setPersonalSentiment(9);
        m_session->setMeetingSentiment(-1);
        show();
        QCOMPARE(popup(u"mePopup"_s)->currentIndex(), -1);
        QCOMPARE(popup(u"meetingPopup"_s)->currentIndex(), -1);
        m_editor->setSession(m_other);
        m_editor->setSession(m_session);
        Q_EMIT m_journal->notifications.didChangeEmoji();
        QVERIFY(m_editor->commitEditing());
        QCOMPARE(int(m_session->personalSentiment()), 9);
        QCOMPARE(int(m_session->meetingSentiment()), -1);
        QCOMPARE(popup(u"mePopup"_s)->currentIndex(), -1);
    }

    void theWordForARatingIsToldBesideItsEmoji()
    {
        m_session->setPersonalSentiment(6);
        show();
        QCOMPARE(popup(u"mePopup"_s)->toolTip(), u"Proud"_s);
        QCOMPARE(popup(u"mePopup"_s)->accessibleDescription(), u"Proud"_s);
        QCOMPARE(popup(u"mePopup"_s)->itemData(3, Qt::AccessibleTextRole).toString(), u"Excited"_s);
        m_session->setPersonalSentiment(7);
        QCOMPARE(popup(u"mePopup"_s)->toolTip(), u"Disengaged"_s);
    }

    void newEmojiAreShownAndTheSelectionStays()
    {
        m_session->setPersonalSentiment(3);
        show();
        m_journal->defaults.setEmojiOverride(DefaultsManager::personalOverrideKey(3), u"🥳"_s);
        m_journal->defaults.emojiChanged();
        QCOMPARE(popup(u"mePopup"_s)->currentIndex(), 3);
        QCOMPARE(popup(u"mePopup"_s)->currentText(), u"🥳"_s);
        QCOMPARE(popup(u"teammatePopup"_s)->itemText(3), u"🥳"_s);
        QCOMPARE(int(m_session->personalSentiment()), 3);
    }

    void theWheelInPassingChangesNothing()
    {
        m_session->setMeetingSentiment(2);
        show();
        noteField()->setFocus();
        for (QWidget *control : {static_cast<QWidget *>(popup(u"meetingPopup"_s)), static_cast<QWidget *>(dateField())}) {
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

    // The date.

    void theDateIsShown()
    {
        show();
        QCOMPARE(dateField()->dateTime().date(), QDate(2026, 11, 14));
        QCOMPARE(dateField()->dateTime().time().minute(), 30);
        QVERIFY2(dateField()->text().contains(u"2026"_s), qPrintable(dateField()->text()));
    }

    void lookingAtTheDateKeepsItsFractions()
    {
        show();
        dateField()->setFocus();
        QTest::keyClick(dateField(), Qt::Key_Right);
        noteField()->setFocus();
        QTest::keyClick(dateField(), Qt::Key_Return);
        QVERIFY(m_editor->commitEditing());
        m_editor->setSession(m_other);
        m_editor->setSession(m_session);
        verifyDateUntouched();
        QVERIFY(!m_journal->context().hasChanges());
    }

    void aTypedDateCountsWhenTheFieldIsLeft()
    {
        show();
        dateField()->setFocus();
        dateField()->setSelectedSection(QDateTimeEdit::DaySection);
        QTest::keyClicks(dateField(), u"3"_s);
        verifyDateUntouched();
        noteField()->setFocus();
        QCOMPARE(m_session->date()->toUnixMilliseconds(),
                 std::floor(utc(2026, 11, 3, 9, 30).toUnixMilliseconds() + 12345.678));
    }

    void anArrowKeyCountsAtOnce()
    {
        show();
        dateField()->setFocus();
        dateField()->setCurrentSection(QDateTimeEdit::DaySection);
        QTest::keyClick(dateField(), Qt::Key_Up);
        QCOMPARE(QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
                 QDate(2026, 11, 15));
    }

    void aDateIsPickedFromTheCalendar()
    {
        show();
        QCalendarWidget *calendar = dateField()->calendarWidget();
        Q_EMIT calendar->clicked(QDate(2026, 10, 1));
        Q_EMIT calendar->activated(QDate(2026, 10, 1));
        dateField()->setDate(QDate(2026, 10, 1));
        QCOMPARE(QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
                 QDate(2026, 10, 1));
    }

    void committingKeepsTheDateInEdit()
    {
        show();
        dateField()->setFocus();
        dateField()->setSelectedSection(QDateTimeEdit::DaySection);
        QTest::keyClicks(dateField(), u"3"_s);
        auto *line = dateField()->findChild<QLineEdit *>();
        const QString text = line->text();
        const int caret = line->cursorPosition();
        QVERIFY(m_editor->commitEditing());
        QCOMPARE(QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
                 QDate(2026, 11, 3));
        QCOMPARE(line->text(), text);
        QCOMPARE(line->cursorPosition(), caret);
        QVERIFY(dateField()->hasFocus());
    }

    void aDateInEditEndsInTheMeetingItBelongsTo()
    {
        show();
        dateField()->setFocus();
        dateField()->setSelectedSection(QDateTimeEdit::DaySection);
        QTest::keyClicks(dateField(), u"3"_s);
        const OptionalDate otherDate = m_other->date();
        m_editor->setSession(m_other);
        QCOMPARE(QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
                 QDate(2026, 11, 3));
        noteField()->setFocus();
        QCOMPARE(m_other->date(), otherDate);
        QCOMPARE(dateField()->dateTime().date(), QDate(2026, 11, 7));
    }

    void aDateChangedElsewhereIsShown()
    {
        show();
        m_session->setDate(utc(2025, 1, 2, 3, 4));
        QCOMPARE(dateField()->dateTime(), QDateTime(QDate(2025, 1, 2), QTime(3, 4)));
    }

    void aMissingDateCanBeSet()
    {
        m_session->setDate({});
        show();
        auto *button = m_editor->findChild<QPushButton *>(u"setDateButton"_s);
        QVERIFY(button->isVisible());
        QVERIFY(!dateField()->isVisible());
        QVERIFY(m_editor->commitEditing());
        QVERIFY(!m_session->date());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(m_session->date(), OptionalDate(m_journal->clock.now()));
        QVERIFY(dateField()->isVisible());
        QVERIFY(!button->isVisible());
    }

    void aDateBeyondEveryCalendarIsLeftAlone()
    {
        m_session->setDate(Date{1e300});
        show();
        dateField()->setFocus();
        noteField()->setFocus();
        QVERIFY(m_editor->commitEditing());
        QCOMPARE(m_session->date()->secondsSinceReferenceDate, 1e300);
    }

    // The fields.

    void theNineFieldsAreListedInOrder()
    {
        show();
        QStringList titles;
        for (int row = 0; row < table()->model()->rowCount(); ++row)
            titles.append(table()->model()->index(row, 0).data().toString());
        QCOMPARE(titles, (QStringList{u"Action items for me"_s, u"Blockers"_s, u"Feedback given"_s,
                                      u"Feedback received"_s, u"Goals discussed"_s, u"Wins"_s,
                                      u"Professional development"_s, u"Next time off"_s, u"Miscellaneous"_s}));
        QCOMPARE(m_editor->sortedNotes().size(), 9);
        QCOMPARE(m_editor->property("sortedNotes").value<QList<std::shared_ptr<Note>>>(), m_editor->sortedNotes());
    }

    void theListIsAProperModel()
    {
        show();
        const QAbstractItemModelTester tester(table()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
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
        QTest::newRow("blockers") << 1 << u"Blockers"_s
                                  << u"This is what is getting in the way of my teammate's success."_s << true;
        QTest::newRow("goals") << 4 << u"Goals discussed"_s
                               << u"Examples: short-term, long-term, project-based, etc."_s << true;
        QTest::newRow("miscellaneous has no explanation") << 8 << u"Miscellaneous"_s << QString() << false;
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
        QCOMPARE(table()->model()->index(5, 0).data(Qt::AccessibleTextRole).toString(), u"Wins, filled in"_s);
        QCOMPARE(table()->model()->index(4, 0).data(Qt::AccessibleTextRole).toString(), u"Goals discussed"_s);
    }

    void typingEditsTheNoteDirectly()
    {
        show();
        clickRow(1);
        noteField()->setFocus();
        QTest::keyClicks(noteField(), u"No time"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::blockers)->contentString(), u"No time"_s);
        QTest::keyClick(noteField(), Qt::Key_Return);
        QTest::keyClicks(noteField(), u"No room"_s);
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::blockers)->contentString(), u"No time\nNo room"_s);
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
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(), u"a"_s);
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
        dateField()->setSelectedSection(QDateTimeEdit::NoSection);
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
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(), u"x"_s);
    }

    void theQuestionIsAnsweredInAPopover()
    {
        show();
        clickRow(6);
        QTest::mouseClick(questionButton(), Qt::LeftButton);
        auto *popover = m_editor->findChild<Popover *>();
        QVERIFY(popover);
        QTRY_VERIFY(popover->isVisible());
        QCOMPARE(popover->findChild<QLabel *>(u"label"_s)->text(),
                 u"Am I checking in regularly, at least every other month, on progress to short and long term professional goals?"_s);
        QTest::keyClick(popover, Qt::Key_Escape);
        QTRY_VERIFY(!m_editor->findChild<Popover *>());
    }

    // The last note.

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

    // Other meetings.

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
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(), u"first"_s);
        QCOMPARE(m_journal->note(m_other, NoteIdentifier::actionItemsReceived)->contentString(), u"second"_s);
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
        QCOMPARE(m_journal->note(m_session, NoteIdentifier::actionItemsReceived)->contentString(), u"ni "_s);
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
        m_session->setMeetingSentiment(1);
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

private:
    void show()
    {
        m_journal->settle();
        m_editor = std::make_unique<SessionDetailViewController>(m_journal->services, m_journal->notifications);
        m_editor->resize(680, 460);
        m_editor->setSession(m_session);
        m_editor->show();
        QVERIFY(QTest::qWaitForWindowActive(m_editor.get()));
    }

    EmojiComboBox *popup(const QString &name) const { return m_editor->findChild<EmojiComboBox *>(name); }
    QDateTimeEdit *dateField() const { return m_editor->findChild<QDateTimeEdit *>(u"dateField"_s); }
    QListView *table() const { return m_editor->findChild<QListView *>(u"noteSelectorTable"_s); }
    BindablePlaceholderTextField *noteField() const { return m_editor->findChild<BindablePlaceholderTextField *>(); }
    QToolButton *questionButton() const { return m_editor->findChild<QToolButton *>(u"noteExplainerButton"_s); }
    QString title() const { return m_editor->findChild<QLabel *>(u"noteTitleLabel"_s)->text(); }
    QString lastNote() const { return m_editor->findChild<QLabel *>(u"lastNoteLabel"_s)->text(); }
    int shownRow() const { return table()->currentIndex().row(); }

    void clickRow(int row) const
    {
        const QRect rect = table()->visualRect(table()->model()->index(row, 0));
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, rect.center());
    }

    void step(const QString &button) const
    {
        QTest::mouseClick(m_editor->findChild<QPushButton *>(button), Qt::LeftButton);
    }

    QList<int> filledRows() const
    {
        QList<int> rows;
        for (int row = 0; row < table()->model()->rowCount(); ++row) {
            if (table()->model()->index(row, 0).data(NotesArrayController::IsFilledRole).toBool())
                rows.append(row);
        }
        return rows;
    }

    QImage rowImage(int row) const
    {
        const QRect rect = table()->visualRect(table()->model()->index(row, 0));
        return table()->viewport()->grab(rect).toImage();
    }

    void verifyDateUntouched() const
    {
        QCOMPARE(m_session->date()->secondsSinceReferenceDate,
                 utc(2026, 11, 14, 9, 30).secondsSinceReferenceDate + 12.345678);
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::shared_ptr<Counterpart> m_counterpart;
    std::shared_ptr<Session> m_session;
    std::shared_ptr<Session> m_other;
    std::unique_ptr<SessionDetailViewController> m_editor;
};

QTEST_MAIN(tst_SessionDetail)
#include "tst_SessionDetail.moc"
