#include "EditorTest.h"

#include "Toolkit/Popover.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QTextCharFormat>
#include <QToolTip>

#include <cmath>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The meeting's date in the editor.
class tst_SessionDateField : public EditorTest
{
    Q_OBJECT

private Q_SLOTS:
    void theDateIsShown()
    {
        show();
        QCOMPARE(dateField()->text(), u"11/14/2026 9:30 AM"_s);
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

    void aTypedDayCountsWhenTheFieldIsLeft()
    {
        show();
        typeDay(u"3"_s);
        verifyDateUntouched();
        noteField()->setFocus();
        QCOMPARE(m_session->date()->toUnixMilliseconds(),
                 std::floor(utc(2026, 11, 3, 9, 30).toUnixMilliseconds() + 12345.678));
    }

    void aDateTypedOverTheOldOneIsUnderstood_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("numeric") << u"3/5/2025"_s << u"3/5/2025 9:30 AM"_s;
        QTest::newRow("leading zeros") << u"03/05/2025"_s << u"3/5/2025 9:30 AM"_s;
        QTest::newRow("short year") << u"3/5/25"_s << u"3/5/2025 9:30 AM"_s;
        QTest::newRow("time") << u"3/5/2025 2:15 pm"_s << u"3/5/2025 2:15 PM"_s;
        QTest::newRow("long") << u"Wednesday, March 5, 2025"_s << u"3/5/2025 9:30 AM"_s;
        QTest::newRow("ISO") << u"2025-03-05"_s << u"3/5/2025 9:30 AM"_s;
        QTest::newRow("first year") << u"1/2/0001"_s << u"1/2/0001 9:30 AM"_s;
    }

    void aDateTypedOverTheOldOneIsUnderstood()
    {
        QFETCH(const QString, typed);
        QFETCH(const QString, shown);
        show();
        typeOver(typed);
        QTest::keyClick(dateField(), Qt::Key_Return);
        QCOMPARE(dateField()->text(), shown);
        m_editor->setSession(m_other);
        m_editor->setSession(m_session);
        QCOMPARE(dateField()->text(), shown);
    }

    void aPastedDateIsUnderstood()
    {
        show();
        QApplication::clipboard()->setText(u" Mar 5, 2025\n"_s);
        dateField()->setFocus();
        QTest::keyClick(dateField(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(dateField(), Qt::Key_V, Qt::ControlModifier);
        noteField()->setFocus();
        QCOMPARE(dateOfSession(), QDate(2025, 3, 5));
        QCOMPARE(dateField()->text(), u"3/5/2025 9:30 AM"_s);
    }

    void whatIsNoDateIsRefusedAndTheDateStays_data()
    {
        QTest::addColumn<QString>("typed");
        for (const QString &typed :
             {u"soon"_s, u"3/5"_s, u"13/13/2025"_s, u"2/29/2025"_s, u"3/5/20255"_s})
            QTest::newRow(qPrintable(typed)) << typed;
        QTest::newRow("nothing") << QString();
    }

    void whatIsNoDateIsRefusedAndTheDateStays()
    {
        QFETCH(const QString, typed);
        show();
        typeOver(typed);
        QTest::keyClick(dateField(), Qt::Key_Return);
        QCOMPARE(dateField()->text(), u"11/14/2026 9:30 AM"_s);
        verifyDateUntouched();
        QVERIFY(QToolTip::text().contains(u"11/14/2026"_s));
        QVERIFY(!m_journal->context().hasChanges());
        QToolTip::hideText();
    }

    void escapeGivesUpWhatIsTyped()
    {
        show();
        typeOver(u"3/5/2025"_s);
        QTest::keyClick(dateField(), Qt::Key_Escape);
        QCOMPARE(dateField()->text(), u"11/14/2026 9:30 AM"_s);
        noteField()->setFocus();
        verifyDateUntouched();
    }

    void anArrowKeyStepsThePartAtTheCaretAtOnce_data()
    {
        QTest::addColumn<int>("caret");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("shown");
        QTest::newRow("month") << 1 << Qt::Key_Down << u"10/14/2026 9:30 AM"_s;
        QTest::newRow("day") << 4 << Qt::Key_Up << u"11/15/2026 9:30 AM"_s;
        QTest::newRow("year") << 8 << Qt::Key_Down << u"11/14/2025 9:30 AM"_s;
        QTest::newRow("hour") << 12 << Qt::Key_Up << u"11/14/2026 10:30 AM"_s;
        QTest::newRow("minute") << 14 << Qt::Key_Up << u"11/14/2026 9:31 AM"_s;
        QTest::newRow("half of the day") << 17 << Qt::Key_Up << u"11/14/2026 9:30 PM"_s;
    }

    void anArrowKeyStepsThePartAtTheCaretAtOnce()
    {
        QFETCH(const int, caret);
        QFETCH(const Qt::Key, key);
        QFETCH(const QString, shown);
        show();
        dateField()->setFocus();
        dateField()->setCursorPosition(caret);
        QTest::keyClick(dateField(), key);
        QCOMPARE(dateField()->text(), shown);
        QTest::keyClick(dateField(), key == Qt::Key_Up ? Qt::Key_Down : Qt::Key_Up);
        QCOMPARE(dateField()->text(), u"11/14/2026 9:30 AM"_s);
    }

    void keysOpenTheCalendar_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifier>("modifier");
        QTest::newRow("Alt+Down") << Qt::Key_Down << Qt::AltModifier;
        QTest::newRow("F4") << Qt::Key_F4 << Qt::NoModifier;
    }

    void keysOpenTheCalendar()
    {
        QFETCH(const Qt::Key, key);
        QFETCH(const Qt::KeyboardModifier, modifier);
        show();
        dateField()->setFocus();
        QTest::keyClick(dateField(), key, modifier);
        QVERIFY(calendar() && calendar()->isVisible());
        QCOMPARE(calendar()->selectedDate(), QDate(2026, 11, 14));
        // Today is marked.
        QVERIFY(calendar()->dateTextFormat(QDate(2026, 11, 20)).fontUnderline());
        QVERIFY(calendar()->isAncestorOf(calendar()->window()->focusWidget()));
        QTest::keyClick(calendar()->window()->focusWidget(), Qt::Key_Right);
        QTest::keyClick(calendar()->window()->focusWidget(), Qt::Key_Return);
        QCOMPARE(dateOfSession(), QDate(2026, 11, 15));
        QCOMPARE(dateField()->text(), u"11/15/2026 9:30 AM"_s);
        QTRY_VERIFY(!calendar());
        QTRY_VERIFY(dateField()->hasFocus());
    }

    void escapeClosesTheCalendarAndKeepsTheDate()
    {
        show();
        dateField()->setFocus();
        QTest::keyClick(dateField(), Qt::Key_F4);
        QTest::keyClick(calendar()->window()->focusWidget(), Qt::Key_Right);
        QTest::keyClick(calendar()->window()->focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!calendar());
        verifyDateUntouched();
    }

    void aClickInTheCalendarPicksTheDay()
    {
        show();
        m_editor->findChild<QAction *>(u"showCalendarAction"_s)->trigger();
        QVERIFY(calendar());
        Q_EMIT calendar()->clicked(QDate(2026, 10, 1));
        QCOMPARE(dateOfSession(), QDate(2026, 10, 1));
        QTRY_VERIFY(!calendar());
    }

    void theFieldIsOneTabStop()
    {
        show();
        dateField()->setFocus();
        QTest::keyClick(dateField(), Qt::Key_Tab);
        QVERIFY(!dateField()->parentWidget()->isAncestorOf(QApplication::focusWidget()));
    }

    void committingKeepsTheDateInEdit()
    {
        show();
        typeDay(u"3"_s);
        const QString text = dateField()->text();
        const int caret = dateField()->cursorPosition();
        QVERIFY(m_editor->commitEditing());
        QCOMPARE(dateOfSession(), QDate(2026, 11, 3));
        QCOMPARE(dateField()->text(), text);
        QCOMPARE(dateField()->cursorPosition(), caret);
        QVERIFY(dateField()->hasFocus());
    }

    void committingKeepsATextThatIsNoDateYet()
    {
        show();
        typeOver(u"3/5"_s);
        QVERIFY(m_editor->commitEditing());
        verifyDateUntouched();
        QCOMPARE(dateField()->text(), u"3/5"_s);
        QTest::keyClicks(dateField(), u"/2025"_s);
        QTest::keyClick(dateField(), Qt::Key_Return);
        QCOMPARE(dateOfSession(), QDate(2025, 3, 5));
    }

    void aDateInEditEndsInTheMeetingItBelongsTo()
    {
        show();
        typeDay(u"3"_s);
        const OptionalDate otherDate = m_other->date();
        m_editor->setSession(m_other);
        QCOMPARE(dateOfSession(), QDate(2026, 11, 3));
        noteField()->setFocus();
        QCOMPARE(m_other->date(), otherDate);
        QVERIFY(dateField()->text().startsWith(u"11/7/2026"_s));
    }

    void aDateChangedElsewhereIsShown()
    {
        show();
        m_session->setDate(utc(2025, 1, 2, 3, 4));
        QCOMPARE(dateField()->text(), u"1/2/2025 3:04 AM"_s);
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

    void theFirstYearIsShownAsItIs()
    {
        m_session->setDate(utc(1, 6, 15, 9, 30));
        show();
        QVERIFY2(dateField()->text().contains(u"/0001"_s), qPrintable(dateField()->text()));
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

private:
    void typeOver(const QString &text) const
    {
        dateField()->setFocus();
        QTest::keyClick(dateField(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(dateField(), Qt::Key_Delete);
        QTest::keyClicks(dateField(), text);
    }

    void typeDay(const QString &digits) const
    {
        dateField()->setFocus();
        dateField()->setSelection(3, 2);
        QTest::keyClicks(dateField(), digits);
    }

    QDate dateOfSession() const
    {
        return QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds()))
            .date();
    }

    QCalendarWidget *calendar() const { return m_editor->findChild<QCalendarWidget *>(); }
};

QTEST_MAIN(tst_SessionDateField)
#include "tst_SessionDateField.moc"
