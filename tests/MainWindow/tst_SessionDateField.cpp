#include "EditorTest.h"

#include <QCalendarWidget>
#include <QLineEdit>

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
        QCOMPARE(
            QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
            QDate(2026, 11, 15));
    }

    void aDateIsPickedFromTheCalendar()
    {
        show();
        QCalendarWidget *calendar = dateField()->calendarWidget();
        Q_EMIT calendar->clicked(QDate(2026, 10, 1));
        Q_EMIT calendar->activated(QDate(2026, 10, 1));
        dateField()->setDate(QDate(2026, 10, 1));
        QCOMPARE(
            QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
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
        QCOMPARE(
            QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
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
        QCOMPARE(
            QDateTime::fromMSecsSinceEpoch(qint64(m_session->date()->toUnixMilliseconds())).date(),
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
};

QTEST_MAIN(tst_SessionDateField)
#include "tst_SessionDateField.moc"
