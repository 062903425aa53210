#include "TagMeetingsTest.h"

using namespace tembra;
using namespace Qt::StringLiterals;

/// The meetings in the tag browser follow what happens elsewhere.
class tst_TagMeetingRows : public TagMeetingsTest
{
    Q_OBJECT

private Q_SLOTS:
    void rowsFollowTheirTeammate()
    {
        addMeetings();
        show();
        clickTag(0);
        newest->counterpart()->setName(u"Anabel"_s);
        QTRY_VERIFY(column(0).first().startsWith(u"Anabel "_s));
        newest->setCounterpart(m_journal->addCounterpart(u"Ben"_s));
        QTRY_VERIFY(column(0).first().startsWith(u"Ben "_s));
        newest->counterpart()->setName(u"Benedict"_s);
        QTRY_VERIFY(column(0).first().startsWith(u"Benedict "_s));
        middle->counterpart()->setName(u"Ana"_s);
        QTRY_VERIFY(column(0).at(1).startsWith(u"Ana "_s));
        QVERIFY(column(0).first().startsWith(u"Benedict "_s));
        newest->setCounterpart(nullptr);
        QTRY_VERIFY(column(0).first().startsWith(u' '));
    }

    void rowsFollowTheirRatings()
    {
        addMeetings();
        show();
        clickTag(0);
        const QString before = column(0).first();
        newest->setMeetingSentiment(5);
        QTRY_COMPARE(column(0).first(), QString(u"Ana "_s + newest->emojiSummary()));
        QVERIFY(column(0).first() != before);
    }

    void rowsFollowTheEmojiOfTheScales()
    {
        addMeetings();
        newest->setPersonalSentiment(1);
        show();
        clickTag(0);
        m_journal->defaults.setEmojiOverride(DefaultsManager::personalOverrideKey(1), u"🦄"_s);
        m_journal->defaults.emojiChanged();
        QVERIFY(column(0).first().startsWith(u"Ana 🦄 "_s));
    }

    void rowsFollowTheirTags()
    {
        addMeetings();
        show();
        clickTag(0);
        tags().tagAt(1)->setName(u"Aardvark"_s);
        QTRY_COMPARE(column(2).at(1), u"Aardvark 🦓, Goal 🎯"_s);
        m_journal->addTag(newest, u"More"_s, u"➕"_s);
        QTRY_COMPARE(column(2).first(), u"Goal 🎯, More ➕"_s);
        m_window->selectedTag()->setEmoji(u"⚽"_s);
        QTRY_COMPARE(column(2).first(), u"Goal ⚽, More ➕"_s);
        QTRY_COMPARE(prompt(), u"3 tagged: Goal ⚽ (double-click a session for more detail)"_s);
    }

    void rowsFollowTheirDate()
    {
        addMeetings();
        show();
        clickTag(0);
        oldest->setDate(m_journal->clock.now());
        QTRY_COMPARE(column(1), (QStringList{u"Today"_s, u"Yesterday"_s, u"Nov 10, 2026"_s}));
        m_journal->clock.advance(secondsPerDay);
        m_journal->derivedTexts.checkClock();
        QCOMPARE(column(1).first(), u"Yesterday"_s);
    }

    void meetingsComeAndGo()
    {
        addMeetings();
        show();
        clickTag(1);
        QCOMPARE(m_window->sessionViewModels().size(), 1);
        newest->addTag(*m_window->selectedTag());
        QTRY_COMPARE(column(1), (QStringList{u"Yesterday"_s, u"Nov 10, 2026"_s}));
        QCOMPARE(prompt(), u"2 tagged: Zebra 🦓 (double-click a session for more detail)"_s);
        middle->removeTag(*m_window->selectedTag());
        QTRY_COMPARE(column(1), QStringList{u"Yesterday"_s});
        QVERIFY(m_journal->context().deleteObject(newest));
        QTRY_VERIFY(isShown(u"noMeetings"_s));
        QVERIFY(prompt().startsWith(u"0 tagged: "_s));
        undo();
        QTRY_COMPARE(column(1), QStringList{u"Yesterday"_s});
    }

    void aTeammateThatGoesTakesItsMeetingsAlong()
    {
        addMeetings();
        show();
        clickTag(0);
        QVERIFY(m_journal->context().deleteObject(newest->counterpart()));
        QTRY_VERIFY(m_window->sessionViewModels().isEmpty());
        QVERIFY(isShown(u"noMeetings"_s));
    }

    void theSelectedMeetingStaysSelectedWhenOthersCome()
    {
        addMeetings();
        show();
        showMeetingsOfTag(0);
        clickMeeting(1);
        m_journal->addTag(m_journal->addSession(newest->counterpart(), m_journal->clock.now()),
                          u"Goal"_s, u"🎯"_s);
        QTRY_COMPARE(m_window->sessionViewModels().size(), 4);
        QVERIFY(meetings()->selectionModel()->isRowSelected(2));
        QCOMPARE(m_window->sessionsArrayController->selectionIndex(), 2);
    }

    void rowsThatStayAreTheSameObjects()
    {
        addMeetings();
        show();
        clickTag(0);
        const auto before = m_window->sessionViewModels();
        QVERIFY(m_journal->context().deleteObject(middle));
        QTRY_COMPARE(m_window->sessionViewModels(),
                     (QList<std::shared_ptr<SessionViewModel>>{before.at(0), before.at(2)}));
    }
};

QTEST_MAIN(tst_TagMeetingRows)
#include "tst_TagMeetingRows.moc"
