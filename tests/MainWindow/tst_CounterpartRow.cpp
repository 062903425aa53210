#include "CounterpartsPaneTest.h"
#include "MainWindow/Counterparts/CounterpartRowDelegate.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_CounterpartRow : public CounterpartsPaneTest
{
    Q_OBJECT

private Q_SLOTS:
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

    void theFirstPictureHasItsEmoji()
    {
        m_journal->addCounterpart(u"Ana 🔴"_s);
        m_journal->context().processPendingChanges();
        m_panes = std::make_unique<TwoPanes>(*m_journal);
        const QImage first = m_panes->view->grab().toImage();
        bool hasRed = false;
        for (int y = 0; y < first.height(); ++y) {
            for (int x = 0; x < first.width(); ++x) {
                const QColor color = first.pixelColor(x, y);
                hasRed = hasRed || (color.red() > 180 && color.green() < 90 && color.blue() < 90);
            }
        }
        QVERIFY(hasRed);
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
        m_journal->addCounterpart(
            u"<i>Wolfeschlegelsteinhausenbergerdorff</i> von und zu Donaudampfschifffahrt"_s);
        m_journal->addCounterpart(u"Zoe"_s);
        show();
        QCOMPARE(tooltipOfRow(1), QString());
        QVERIFY(tooltipOfRow(0).contains(u"&lt;i&gt;Wolfeschlegelsteinhausenbergerdorff"_s));
    }

private:
    QString tooltipOfRow(int row) const
    {
        const QPoint place = m_panes->middleOf(row);
        QHelpEvent event(QEvent::ToolTip, place, m_panes->view->viewport()->mapToGlobal(place));
        QApplication::sendEvent(m_panes->view->viewport(), &event);
        return QToolTip::text();
    }
};

QTEST_MAIN(tst_CounterpartRow)
#include "tst_CounterpartRow.moc"
