#pragma once

#include "TagBrowserTest.h"

namespace tembra {

/// What the tests of the right side of the tag browser share.
class TagMeetingsTest : public TagBrowserTest
{
    Q_OBJECT

protected Q_SLOTS:
    void cleanup()
    {
        for (auto *session : {&newest, &middle, &oldest})
            session->reset();
        TagBrowserTest::cleanup();
    }

protected:
    /// Goal on three meetings with Ana, Zebra on the middle one.
    void addMeetings()
    {
        const auto ana = m_journal->addCounterpart(QStringLiteral("Ana"));
        newest = m_journal->addSessionDaysAgo(ana, 1);
        middle = m_journal->addSessionDaysAgo(ana, 10);
        oldest = m_journal->addSessionDaysAgo(ana, 50);
        for (const auto &session : {oldest, newest, middle})
            m_journal->addTag(session, QStringLiteral("Goal"), QStringLiteral("🎯"));
        m_journal->addTag(middle, QStringLiteral("Zebra"), QStringLiteral("🦓"));
    }

    /// As one sees them, so that they can be clicked.
    void showMeetingsOfTag(int row) const
    {
        clickTag(row);
        QTest::qWait(20);
    }

    QPoint middleOfMeeting(int row) const
    {
        return meetings()->visualRect(meetings()->model()->index(row, 0)).center();
    }

    void clickMeeting(int row) const
    {
        QTest::mouseClick(meetings()->viewport(), Qt::LeftButton, {}, middleOfMeeting(row));
    }

    void doubleClickMeeting(int row) const
    {
        clickMeeting(row);
        QTest::mouseDClick(meetings()->viewport(), Qt::LeftButton, {}, middleOfMeeting(row));
    }

    std::shared_ptr<Session> newest;
    std::shared_ptr<Session> middle;
    std::shared_ptr<Session> oldest;
};

} // namespace tembra
