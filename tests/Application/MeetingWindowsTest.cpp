#include "MeetingWindowsTest.h"

namespace tembra {

void MeetingWindowsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_program = std::make_unique<ProgramInProcess>(m_folder->path());
    m_setup = std::make_unique<UndoManager::Suspension>(*context().undoManager());
    m_ana = context().insert<Counterpart>();
    m_ana->setName(u"Ana"_s);
    m_older = addMeeting(8);
    m_meeting = addMeeting(1);
    settle();
    pane().setSelectedCounterpart(m_ana);
    QVERIFY(QTest::qWaitForWindowActive(m_program->window));
    QCOMPARE(pane().selectedSession(), m_meeting);
}

void MeetingWindowsTest::cleanup()
{
    forgetRecords();
    m_setup.reset();
    m_program.reset();
    m_folder.reset();
}

std::shared_ptr<Session> MeetingWindowsTest::addMeeting(double daysAgo) const
{
    const auto session = context().insert<Session>();
    session->setCounterpart(m_ana);
    session->setDate(m_program->services.clock.now().adding(-daysAgo * 86400));
    return session;
}

std::shared_ptr<Tag> MeetingWindowsTest::addTag(const std::shared_ptr<Session> &session,
                                                const QString &name, const QString &emoji) const
{
    const auto tag = Tag::findOrCreate(context(), name, emoji);
    session->addTag(*tag);
    return tag;
}

void MeetingWindowsTest::settle()
{
    tell();
    QVERIFY(context().save().has_value());
    m_setup.reset();
}

SessionWindowController *MeetingWindowsTest::open(const std::shared_ptr<Session> &session) const
{
    windows().open(session);
    SessionWindowController *window = &windows().windowController(session);
    activate(window);
    return window;
}

void MeetingWindowsTest::restart()
{
    forgetRecords();
    m_setup.reset();
    m_program.reset();
    m_program = std::make_unique<ProgramInProcess>(m_folder->path());
    m_setup = std::make_unique<UndoManager::Suspension>(*context().undoManager());
    const auto teammates = context().fetch<Counterpart>({.entityName = Counterpart::entityName()});
    QCOMPARE(teammates->size(), 1);
    m_ana = teammates->first();
    QList<std::shared_ptr<Session>> sessions = m_ana->sessions();
    QCOMPARE(sessions.size(), 2);
    if (sessions.first()->date()->secondsSinceReferenceDate
        < sessions.last()->date()->secondsSinceReferenceDate)
        sessions.swapItemsAt(0, 1);
    m_meeting = sessions.first();
    m_older = sessions.last();
}

void MeetingWindowsTest::forgetRecords()
{
    m_ana.reset();
    m_meeting.reset();
    m_older.reset();
}

} // namespace tembra
