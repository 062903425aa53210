#include "TagMeetingsTest.h"

#include "Store/Objects/PersistentContainer.h"
#include "Toolkit/Popover.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QSignalSpy>
#include <QToolTip>

#include <sqlite3.h>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The right side of the tag browser: the meetings that carry the selected tag.
class tst_TagMeetings : public TagMeetingsTest
{
    Q_OBJECT

private Q_SLOTS:
    void meetingsStandNewestFirst()
    {
        addMeetings();
        show();
        const QAbstractItemModelTester tester(m_window->sessionsArrayController);
        clickTag(0);
        QCOMPARE(m_window->selectedTag()->name(), u"Goal"_s);
        QCOMPARE(column(1), (QStringList{u"Yesterday"_s, u"Nov 10, 2026"_s, u"Oct 1, 2026"_s}));
        QCOMPARE(column(2), (QStringList{u"Goal 🎯"_s, u"Goal 🎯, Zebra 🦓"_s, u"Goal 🎯"_s}));
        QVERIFY(column(0).first().startsWith(u"Ana "_s));
        QCOMPARE(prompt(), u"3 tagged: Goal 🎯 (double-click a session for more detail)"_s);
        QVERIFY(isShown(u"promptLabel"_s));
    }

    void theTitleIsTheNameABlankAndTheRatings()
    {
        addMeetings();
        newest->setPersonalSentiment(1);
        newest->setMeetingSentiment(2);
        newest->setCounterpartSentiment(99);
        show();
        clickTag(0);
        QCOMPARE(column(0).first(), QString(u"Ana "_s + newest->emojiSummary()));
        QVERIFY(column(0).first().endsWith(u' '));
    }

    void whatIsMissingIsEmpty()
    {
        const auto session = m_journal->context().insert<Session>();
        session->setDate({});
        for (const auto &[name, emoji] : {std::pair(u"Goal"_s, u"🎯"_s),
                                          {u"Bare"_s, QString()},
                                          {QString(), u"🏷"_s},
                                          {QString(), QString()}})
            m_journal->addTag(session, name, emoji);
        show();
        clickTag(3);
        QCOMPARE(m_window->selectedTag()->name(), u"Goal"_s);
        QCOMPARE(column(0), QStringList{QString(u' ' + session->emojiSummary())});
        QCOMPARE(column(1), QStringList{QString()});
        QCOMPARE(column(2), QStringList{u" ,  🏷, Bare , Goal 🎯"_s});
    }

    void aTagWithoutMeetingsSaysSo()
    {
        addThreeTags();
        show();
        clickTag(1);
        QVERIFY(m_window->sessionViewModels().isEmpty());
        QCOMPARE(prompt(), u"0 tagged: Goal 🎯 (double-click a session for more detail)"_s);
        QVERIFY(isShown(u"promptLabel"_s));
        QVERIFY(isShown(u"noMeetings"_s));
        QVERIFY(!isShown(u"noSelection"_s));
    }

    void theFirstSelectedTagStaysWhenOthersJoinIt()
    {
        addMeetings();
        show();
        clickTag(1);
        const QSignalSpy changes(m_window.get(), &TagWindowController::selectedTagChanged);
        clickTag(0, Qt::ControlModifier);
        QCOMPARE(m_window->selectedTag()->name(), u"Zebra"_s);
        QCOMPARE(changes.size(), 0);
        clickTag(0);
        QCOMPARE(m_window->selectedTag()->name(), u"Goal"_s);
        QCOMPARE(changes.size(), 1);
    }

    void withoutASelectionTheTagIsStillShown()
    {
        addMeetings();
        show();
        clickTag(0);
        clickTag(0, Qt::ControlModifier);
        QVERIFY(tags().selectedObjects().isEmpty());
        QCOMPARE(m_window->selectedTag()->name(), u"Goal"_s);
        QCOMPARE(m_window->sessionViewModels().size(), 3);
    }

    void theSelectedTagIsAProperty()
    {
        addMeetings();
        show();
        const auto zebra = tags().tagAt(1);
        QVERIFY(m_window->setProperty("selectedTag", QVariant::fromValue(zebra)));
        QCOMPARE(m_window->property("selectedTag").value<std::shared_ptr<Tag>>(), zebra);
        QCOMPARE(m_window->sessionViewModels().size(), 1);
        QCOMPARE(m_window->sessionViewModels().first()->session(), middle);
        m_window->setSelectedTag(nullptr);
        QVERIFY(m_window->sessionViewModels().isEmpty());
        QVERIFY(isShown(u"noSelection"_s));
        QCOMPARE(prompt(), u"0 tagged:  (double-click a session for more detail)"_s);
    }

    // Opening a meeting.

    void aDoubleClickOpensTheMeeting()
    {
        addMeetings();
        show();
        showMeetingsOfTag(0);
        doubleClickMeeting(1);
        QCOMPARE(m_opened, QList<std::shared_ptr<Session>>{middle});
    }

    void returnOpensTheMeeting_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("Return") << Qt::Key_Return;
        QTest::newRow("Enter") << Qt::Key_Enter;
    }

    void returnOpensTheMeeting()
    {
        QFETCH(const Qt::Key, key);
        addMeetings();
        show();
        showMeetingsOfTag(0);
        clickMeeting(2);
        QVERIFY(m_opened.isEmpty());
        QTest::keyClick(meetings(), key,
                        key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
        QCOMPARE(m_opened, QList<std::shared_ptr<Session>>{oldest});
    }

    void aDoubleClickOutsideAnyRowDoesNothing()
    {
        addMeetings();
        show();
        showMeetingsOfTag(0);
        const QPoint below(20, meetings()->viewport()->height() - 5);
        QVERIFY(!meetings()->indexAt(below).isValid());
        QTest::mouseDClick(meetings()->viewport(), Qt::LeftButton, {}, below);
        m_window->handleDoubleClick({});
        QTest::keyClick(meetings(), Qt::Key_Return);
        QVERIFY(m_opened.isEmpty());
    }

    void aDoubleClickOnADeletedMeetingDoesNothing()
    {
        addMeetings();
        show();
        showMeetingsOfTag(0);
        QVERIFY(m_journal->context().deleteObject(middle));
        // The row is still there, for nothing has been told yet.
        QCOMPARE(m_window->sessionViewModels().size(), 3);
        const QSignalSpy clicks(meetings(), &QAbstractItemView::doubleClicked);
        doubleClickMeeting(1);
        QCOMPARE(clicks.size(), 1);
        QVERIFY(m_opened.isEmpty());
    }

    // The rest.

    void theHelpExplainsTagsBelowItsButton()
    {
        addThreeTags();
        show();
        QTest::mousePress(m_window->helpButton, Qt::LeftButton);
        auto *popover = m_window->findChild<Popover *>();
        QVERIFY(popover);
        QVERIFY(popover->isVisible());
        QCOMPARE(popover->edge(), Qt::BottomEdge);
        QVERIFY(popover->mapToGlobal(QPoint(0, 0)).y()
                >= m_window->helpButton->mapToGlobal(m_window->helpButton->rect().bottomLeft()).y()
                       - 8);
        QCOMPARE(popover->findChild<QLabel *>(u"label"_s)->text(),
                 u"Where helpful, use tags to organize your meetings. You can assign tags to "
                 u"discover themes across teammates, to track the topics and projects that define "
                 u"your everyday work, to flag things for followup—or anything else that helps you "
                 u"make sense of your data. You'll always be able to see all meetings with a given "
                 u"tag in this window."_s);
        QTest::mouseRelease(m_window->helpButton, Qt::LeftButton);
        QVERIFY(popover->isVisible());
        QTest::keyClick(popover, Qt::Key_Escape);
        QTRY_VERIFY(!m_window->findChild<Popover *>());
    }

    void aTextThatIsCutShortIsWholeInATooltip()
    {
        addMeetings();
        for (int number = 0; number < 12; ++number)
            m_journal->addTag(newest, u"Long tag %1 <b>"_s.arg(number), u"🦄"_s);
        show();
        showMeetingsOfTag(0);
        QVERIFY(toolTip(1, 1).isEmpty());
        QVERIFY(toolTip(0, 2).contains(u"Long tag 11 &lt;b&gt; 🦄"_s));
    }

    void aFailedFetchSaysSoAndShowsNoMeetings()
    {
        addMeetings();
        show();
        execute("ALTER TABLE session_tag RENAME TO elsewhere");
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(u"^Could not fetch sessions for tag: ."_s));
        clickTag(0);
        QCOMPARE(m_window->selectedTag()->name(), u"Goal"_s);
        QVERIFY(m_window->sessionViewModels().isEmpty());
        QVERIFY(prompt().startsWith(u"0 tagged: Goal"_s));
        execute("ALTER TABLE elsewhere RENAME TO session_tag");
        clickTag(1);
        QCOMPARE(m_window->sessionViewModels().size(), 1);
    }

    void aThousandMeetingsShowAtOnce()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        const auto tag = addTag(u"Goal"_s, u"🎯"_s);
        for (int number = 0; number < 1000; ++number)
            m_journal->addSessionDaysAgo(ana, number)->addTag(*tag);
        show();
        QElapsedTimer timer;
        timer.start();
        clickTag(0);
        const qint64 showing = timer.restart();
        QCOMPARE(m_window->sessionViewModels().size(), 1000);
        tag->setName(u"Gold"_s);
        tell();
        const qint64 renaming = timer.elapsed();
        QCOMPARE(column(2).last(), u"Gold 🎯"_s);
        qInfo("1,000 meetings: showing %lld ms, renaming their tag %lld ms", showing, renaming);
        QVERIFY(showing < 1000);
        QVERIFY(renaming < 1000);
    }

private:
    QString toolTip(int row, int column) const
    {
        QToolTip::hideText();
        const QPoint place =
            meetings()->visualRect(meetings()->model()->index(row, column)).center();
        QHelpEvent event(QEvent::ToolTip, place, meetings()->viewport()->mapToGlobal(place));
        QApplication::sendEvent(meetings()->viewport(), &event);
        return QToolTip::text();
    }

    /// Behind the program's back.
    void execute(const char *sql) const
    {
        const QByteArray file = m_journal->context().container().storeFile().toUtf8();
        sqlite3 *database = nullptr;
        QCOMPARE(sqlite3_open(file.constData(), &database), SQLITE_OK);
        QCOMPARE(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }
};

QTEST_MAIN(tst_TagMeetings)
#include "tst_TagMeetings.moc"
