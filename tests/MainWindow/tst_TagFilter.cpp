#include "MeetingPaneTest.h"

#include "Model/Tag.h"
#include "support/RecordCount.h"
#include "Tags/TagField.h"

using namespace tembra;
using namespace Qt::StringLiterals;

/// The field that narrows the strip to the meetings that carry certain tags.
class tst_TagFilter : public MeetingPaneTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_career.reset();
        m_focus.reset();
        MeetingPaneTest::cleanup();
    }

    void eachTagNarrowsAndRemovingItWidens()
    {
        showFourMeetings();
        filterBy(u"Career"_s);
        QCOMPARE(shown(), meetings({0, 1}));
        filterBy(u"Focus"_s);
        QCOMPARE(shown(), meetings({1}));
        removeLastToken();
        QCOMPARE(shown(), meetings({0, 1}));
        removeLastToken();
        QCOMPARE(shown(), m_sessions);
    }

    void theEditorIsLeftAlone()
    {
        showFourMeetings();
        clickTile(3);
        filterBy(u"Career"_s);
        QCOMPARE(pane()->selectedSession(), m_sessions.at(3));
        QCOMPARE(editor()->session(), m_sessions.at(3));
        QVERIFY(editorContainer()->isVisible());
        QCOMPARE(strip()->selectedRow(), -1);
        removeLastToken();
        QCOMPARE(strip()->selectedRow(), 3);
    }

    void filteringTagsNoMeeting()
    {
        showFourMeetings();
        filterBy(u"Focus"_s);
        leaveFilter();
        QVERIFY(m_sessions.at(0)->tags() == QList{m_career});
        QVERIFY(m_sessions.at(3)->tags().isEmpty());
    }

    void searchAndTagsNarrowTogether()
    {
        addFourMeetings();
        m_journal->write(m_sessions.at(1), NoteIdentifier::wins, u"Launch"_s);
        m_journal->write(m_sessions.at(3), NoteIdentifier::wins, u"Launch again"_s);
        showAna();
        filterBy(u"Career"_s);
        QTest::keyClicks(searchField(), u"launch"_s);
        QCOMPARE(shown(), meetings({1}));
        filter()->setFocus();
        removeLastToken();
        QCOMPARE(shown(), meetings({1, 3}));
        filterBy(u"Career"_s);
        searchField()->clear();
        QCOMPARE(shown(), meetings({0, 1}));
    }

    void withoutAMeetingThereIsAWayBack()
    {
        showFourMeetings();
        const auto unused = Tag::findOrCreate(m_journal->context(), u"Unused"_s, {});
        m_journal->settle();
        filterBy(u"Unused"_s);
        QCOMPARE(filter()->tags(), QList{unused});
        QVERIFY(!strip()->isVisible());
        EmptyState *empty = state(u"noTilesState"_s);
        QVERIFY(empty->isVisible());
        QCOMPARE(stateTitle(u"noTilesState"_s), u"No meetings with these tags"_s);
        QCOMPARE(empty->button()->text(), u"Clear Filter"_s);
        QTest::mouseClick(empty->button(), Qt::LeftButton);
        QVERIFY(filter()->tags().isEmpty());
        QCOMPARE(shown(), m_sessions);
        QVERIFY(strip()->isVisible());
        QVERIFY(!empty->isVisible());
    }

    void theWayBackTakesTheSearchAwayFirst()
    {
        showFourMeetings();
        filterBy(u"Career"_s);
        QTest::keyClicks(searchField(), u"xyz"_s);
        EmptyState *empty = state(u"noTilesState"_s);
        QCOMPARE(stateTitle(u"noTilesState"_s), u"No meetings match “xyz”"_s);
        QCOMPARE(empty->button()->text(), u"Clear Search"_s);
        QTest::mouseClick(empty->button(), Qt::LeftButton);
        QVERIFY(searchField()->text().isEmpty());
        QCOMPARE(shown(), meetings({0, 1}));
    }

    void aTextThatIsNoTagDisappears_data()
    {
        QTest::addColumn<bool>("byReturn");
        QTest::newRow("Return") << true;
        QTest::newRow("leaving") << false;
    }

    void aTextThatIsNoTagDisappears()
    {
        QFETCH(bool, byReturn);
        showFourMeetings();
        filter()->setFocus();
        QTest::keyClicks(filter(), u"nothing"_s);
        if (byReturn)
            QTest::keyClick(filter(), Qt::Key_Return);
        else
            leaveFilter();
        QVERIFY(filter()->toPlainText().isEmpty());
        QVERIFY(filter()->tags().isEmpty());
        QCOMPARE(shown(), m_sessions);
        QCOMPARE(recordCount(m_journal->context(), {.entityName = Tag::entityName()}), 2);
        QVERIFY(!m_journal->context().hasChanges());
    }

    void useIsNotedWhenTheEditingEnds()
    {
        showFourMeetings();
        m_journal->clock.advance(60);
        filterBy(u"Career"_s);
        QVERIFY(!m_career->lastUse());
        leaveFilter();
        QCOMPARE(m_career->lastUse(), m_journal->clock.now());
        QVERIFY(!m_focus->lastUse());
    }

    void aDeletedTagLeavesFieldAndFilter()
    {
        showFourMeetings();
        filterBy(u"Career"_s);
        filterBy(u"Focus"_s);
        leaveFilter();
        QVERIFY(m_journal->context().deleteObject(m_career));
        m_journal->context().processPendingChanges();
        QCOMPARE(filter()->tags(), QList{m_focus});
        QCOMPARE(shown(), meetings({1, 2}));
    }

    void aTagDeletedWhileEditingIsNotUsed()
    {
        showFourMeetings();
        filterBy(u"Career"_s);
        QVERIFY(m_journal->context().deleteObject(m_career));
        m_journal->context().processPendingChanges();
        QVERIFY(filter()->tags().isEmpty());
        QCOMPARE(shown(), m_sessions);
        leaveFilter();
        m_journal->settle();
        QCOMPARE(recordCount(m_journal->context(), {.entityName = Tag::entityName()}), 1);
    }

    void theNextTeammateIsFilteredToo()
    {
        addFourMeetings();
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        m_journal->addSessionDaysAgo(ben, 1);
        const auto bens = m_journal->addSessionDaysAgo(ben, 2);
        bens->addTag(*m_career);
        showAna();
        filterBy(u"Career"_s);
        m_panes->clickRow(int(m_panes->names().indexOf(u"Ben"_s)));
        QCOMPARE(pane()->selectedCounterpart(), ben);
        QCOMPARE(filter()->tags(), QList{m_career});
        QCOMPARE(shown(), QList{bens});
        QCOMPARE(pane()->selectedSession(), bens);
    }

    void meetingsComeAndGoWithTheirTags()
    {
        showFourMeetings();
        filterBy(u"Career"_s);
        leaveFilter();
        m_sessions.at(3)->addTag(*m_career);
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(), meetings({0, 1, 3}));
        m_sessions.at(0)->removeTag(*m_career);
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(), meetings({1, 3}));
    }

    void aNewMeetingIsOpenedThoughItIsFilteredAway()
    {
        showFourMeetings();
        filterBy(u"Career"_s);
        QTest::mouseClick(addButton(), Qt::LeftButton);
        QVERIFY(pane()->selectedSession());
        QVERIFY(!m_sessions.contains(pane()->selectedSession()));
        QCOMPARE(editor()->session(), pane()->selectedSession());
        QVERIFY(editorContainer()->isVisible());
        QCOMPARE(shown(), meetings({0, 1}));
    }

private:
    /// Career on the first two, Focus on the second and the third, none on the fourth.
    void addFourMeetings()
    {
        addSessions(4, 1);
        m_career = m_journal->addTag(m_sessions.at(0), u"Career"_s, u"🚀"_s);
        m_focus = m_journal->addTag(m_sessions.at(2), u"Focus"_s, u"🎯"_s);
        m_sessions.at(1)->addTag(*m_career);
        m_sessions.at(1)->addTag(*m_focus);
    }

    void showFourMeetings()
    {
        addFourMeetings();
        showAna();
        QCOMPARE(shown(), m_sessions);
    }

    TagField *filter() const { return pane()->findChild<TagField *>(u"tagFilterField"_s); }

    /// Types the beginning of a tag's name and takes what is offered.
    void filterBy(const QString &name) const
    {
        filter()->setFocus();
        QTRY_VERIFY(filter()->hasFocus());
        QTest::keyClick(filter(), Qt::Key_End);
        QTest::keyClicks(filter(), name.left(3));
        QTest::keyClick(filter(), Qt::Key_Return);
    }

    void removeLastToken() const
    {
        QTest::keyClick(filter(), Qt::Key_Backspace); // Selects it.
        QTest::keyClick(filter(), Qt::Key_Backspace);
    }

    void leaveFilter() const
    {
        m_panes->list->setFocus();
        QTRY_VERIFY(!filter()->hasFocus());
    }

    QList<std::shared_ptr<Session>> meetings(const QList<int> &rows) const
    {
        QList<std::shared_ptr<Session>> meetings;
        for (const int row : rows)
            meetings.append(m_sessions.at(row));
        return meetings;
    }

    std::shared_ptr<Tag> m_career;
    std::shared_ptr<Tag> m_focus;
};

QTEST_MAIN(tst_TagFilter)
#include "tst_TagFilter.moc"
