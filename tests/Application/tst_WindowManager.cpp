#include "MeetingWindowsTest.h"

#include <QPointer>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Meetings in windows of their own.
class tst_WindowManager : public MeetingWindowsTest
{
    Q_OBJECT

private Q_SLOTS:
    void eachMeetingHasOneWindow()
    {
        SessionWindowController *window = &windows().windowController(m_meeting);
        QCOMPARE(&windows().windowController(m_meeting), window);
        QCOMPARE(window->session(), m_meeting);
        QVERIFY(!window->isVisible());
        QVERIFY(&windows().windowController(m_older) != window);
        QCOMPARE(windows().sessionWindowControllers().size(), 2);
        QCOMPARE(open(m_meeting), window);
        QVERIFY(window->isVisible());
        QCOMPARE(windows().sessionWindowControllers().size(), 2);
    }

    void openingItAgainBringsItForward()
    {
        SessionWindowController *window = open(m_meeting);
        window->showMinimized();
        QTRY_VERIFY(!window->isActiveWindow());
        QCOMPARE(open(m_meeting), window);
        QVERIFY(!window->isMinimized());
    }

    void theTitleFollowsNameAndDate()
    {
        const SessionWindowController *window = open(m_meeting);
        QCOMPARE(window->windowTitle(), u"Ana – "_s + m_meeting->dateText());
        m_ana->setName(u"Ana Silva"_s);
        QCOMPARE(window->windowTitle(), u"Ana Silva – "_s + m_meeting->dateText());
        const QString before = m_meeting->dateText();
        m_meeting->setDate(m_older->date());
        QVERIFY(m_meeting->dateText() != before);
        QCOMPARE(window->windowTitle(), u"Ana Silva – "_s + m_meeting->dateText());
        const auto ben = context().insert<Counterpart>();
        ben->setName(u"Ben"_s);
        m_meeting->setCounterpart(ben);
        QCOMPARE(window->windowTitle(), u"Ben – "_s + m_meeting->dateText());
        m_ana->setName(u"Ana"_s);
        QCOMPARE(window->windowTitle(), u"Ben – "_s + m_meeting->dateText());
        ben->setName({});
        QCOMPARE(window->windowTitle(), m_meeting->dateText());
        m_meeting->setDate({});
        QCOMPARE(window->windowTitle(), u"Meeting"_s);
    }

    void aWindowIsKeptUntilItIsClosed()
    {
        const QPointer<SessionWindowController> window = open(m_meeting);
        QCOMPARE(windows().sessionWindowControllers(), QList{window.data()});
        window->close();
        QVERIFY(windows().sessionWindowControllers().isEmpty());
        QTRY_VERIFY(!window);
        QVERIFY(!m_meeting->onDeletion());
        QVERIFY(open(m_meeting)->isVisible());
        QCOMPARE(windows().sessionWindowControllers().size(), 1);
    }

    void itGoesWithItsMeeting_data()
    {
        QTest::addColumn<bool>("withTeammate");
        QTest::addColumn<QString>("typedTag");
        QTest::newRow("meeting") << false << QString();
        QTest::newRow("meeting, half a tag") << false << u"half"_s;
        QTest::newRow("teammate") << true << QString();
        QTest::newRow("teammate, half a tag") << true << u"half"_s;
    }

    void itGoesWithItsMeeting()
    {
        QFETCH(bool, withTeammate);
        QFETCH(QString, typedTag);
        const QPointer<SessionWindowController> window = open(m_meeting);
        SessionDetailViewController *editor = window->sessionDetailViewController;
        focus(noteField(editor));
        QTest::keyClicks(noteField(editor), u"typed"_s);
        if (!typedTag.isEmpty()) {
            focus(tagField(editor));
            QTest::keyClicks(tagField(editor), typedTag);
        }
        tell();
        QVERIFY((withTeammate ? context().deleteObject(m_ana) : context().deleteObject(m_meeting))
                    .has_value());
        tell();
        QVERIFY(windows().sessionWindowControllers().isEmpty());
        QTRY_VERIFY(!window);
        // What was half typed for it is a tag of nothing.
        QVERIFY(allTags().isEmpty());
        undo();
        tell();
        takeRevived(m_ana);
        takeRevived(m_meeting);
        QVERIFY(m_ana && m_meeting);
        QCOMPARE(m_ana->sessions().size(), 2);
        QCOMPARE(shownNote(m_meeting), u"typed"_s);
        const QPointer<SessionWindowController> again = open(m_meeting);
        QCOMPARE(again->windowTitle(), u"Ana – "_s + m_meeting->dateText());
        context().undoManager()->redo();
        tell();
        QTRY_VERIFY(!again);
        settle();
    }

    void undoOfAddingAMeetingClosesItsWindow()
    {
        const auto added = addMeeting(0);
        tell();
        const QPointer<SessionWindowController> window = open(added);
        undo();
        tell();
        QVERIFY(added->isDeleted());
        QTRY_VERIFY(!window);
        context().undoManager()->redo();
        tell();
        QCOMPARE(m_ana->sessions().size(), 3);
    }

    void editsShowInBothEditorsAtOnce()
    {
        SessionDetailViewController *ofWindow = open(m_meeting)->sessionDetailViewController;
        for (const auto &[one, other] :
             {std::pair(ofWindow, mainEditor()), std::pair(mainEditor(), ofWindow)}) {
            const QString name = one == ofWindow ? u"window"_s : u"main"_s;
            focus(noteField(one));
            QTest::keyClicks(noteField(one), name);
            QVERIFY(noteField(one)->text().contains(name));
            QCOMPARE(noteField(other)->text(), noteField(one)->text());

            focus(popup(one, u"meetingPopup"_s));
            const int rating = m_meeting->meetingSentiment();
            QTest::keyClick(popup(one, u"meetingPopup"_s), Qt::Key_Down);
            QCOMPARE(int(m_meeting->meetingSentiment()), rating + 1);
            QCOMPARE(popup(other, u"meetingPopup"_s)->currentIndex(), rating + 1);

            focus(tagField(one));
            QTest::keyClicks(tagField(one), name + u',');
            QVERIFY(titlesOf(tagField(one)->tags()).contains(name + u' '));
            QCOMPARE(tagField(other)->tags(), tagField(one)->tags());
        }
        QCOMPARE(m_meeting->tags().size(), 2);
    }

    void halfAnEditEndsWithTheWindow()
    {
        const QPointer<SessionWindowController> window = open(m_older);
        SessionDetailViewController *editor = window->sessionDetailViewController;
        focus(noteField(editor));
        QTest::keyClicks(noteField(editor), u"said so"_s);
        focus(tagField(editor));
        QTest::keyClicks(tagField(editor), u"half"_s);
        window->close();
        QTRY_VERIFY(!window);
        QCOMPARE(shownNote(m_older), u"said so"_s);
        QCOMPARE(titlesOf(m_older->tags()), QStringList{u"half "_s});
        QVERIFY(m_older->tags().first()->lastUse());
        QVERIFY(m_meeting->tags().isEmpty());
    }

    void aNoteBeingTypedIsInTheMeetingWhenTheWindowCloses()
    {
        const QPointer<SessionWindowController> window = open(m_meeting);
        focus(noteField(window->sessionDetailViewController));
        QTest::keyClicks(noteField(window->sessionDetailViewController), u"Went well"_s);
        press(window, Qt::Key_W, Qt::ControlModifier);
        QTRY_VERIFY(!window);
        QCOMPARE(shownNote(m_meeting), u"Went well"_s);
        QCOMPARE(noteField(mainEditor())->text(), u"Went well"_s);
        QVERIFY(m_program->window->isVisible());
    }

    void keysSaveAndUndo()
    {
        SessionWindowController *window = open(m_older);
        BindablePlaceholderTextField *note = noteField(window->sessionDetailViewController);
        focus(note);
        QTest::keyClicks(note, u"first"_s);
        press(window, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!m_program->hasChanges());
        QCOMPARE(shownNote(m_older), u"first"_s);
        QTest::keyClicks(note, u" second"_s);
        QVERIFY(m_program->hasChanges());
        tell();
        press(window, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!shownNote(m_older).contains(u"second"));
        QCOMPARE(note->text(), shownNote(m_older));
    }

    void quittingWithOpenWindowsSaves_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"key in a meeting's window", "key in the browser", "main window"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void quittingWithOpenWindowsSaves()
    {
        QFETCH(QString, way);
        browser().show();
        const auto typeAndQuit = [&] {
            SessionWindowController *window = open(m_meeting);
            SessionDetailViewController *editor = open(m_older)->sessionDetailViewController;
            focus(noteField(editor));
            QTest::keyClicks(noteField(editor), u"kept"_s);
            if (way == u"main window")
                m_program->window->close();
            else
                press(way == u"key in the browser" ? static_cast<QWidget *>(&browser()) : window,
                      Qt::Key_Q, Qt::ControlModifier);
        };
        QCOMPARE(m_program->run(typeAndQuit), 0);
        QCOMPARE(m_program->alerts->messages, QStringList());
        QVERIFY(!m_program->hasChanges());
        restart();
        QCOMPARE(shownNote(m_older), u"kept"_s);
    }

private:
    /// The object that stands for a record since it is back; null when it is not.
    template<typename Object>
    void takeRevived(std::shared_ptr<Object> &object) const
    {
        object = std::static_pointer_cast<Object>(context().object(object->objectID()));
    }
};

QTEST_MAIN(tst_WindowManager)
#include "tst_WindowManager.moc"
