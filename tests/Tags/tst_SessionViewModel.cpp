#include "Tags/SessionViewModel.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_SessionViewModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_journal = std::make_unique<JournalFixture>(); }
    void cleanup() { m_journal.reset(); }

    void itsTextsAreProperties()
    {
        const auto session = addSession();
        SessionViewModel row(session);
        QCOMPARE(row.property("title").toString(), QString(u"Ana "_s + session->emojiSummary()));
        QCOMPARE(row.property("dateString").toString(), u"Yesterday"_s);
        QCOMPARE(row.property("tagSummary").toString(), u"Goal 🎯, Zebra 🦓"_s);
        for (const char *key : {"title", "dateString", "tagSummary"}) {
            const QMetaProperty property = row.metaObject()->property(
                row.metaObject()->indexOfProperty(key));
            const QSignalSpy changes(&row, property.notifySignal());
            QVERIFY(row.setProperty(key, u"x"_s));
            QVERIFY(row.setProperty(key, u"x"_s));
            QCOMPARE(changes.size(), 1);
            QCOMPARE(row.property(key).toString(), u"x"_s);
        }
    }

    void withoutTagsTheSummaryIsEmpty()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 3);
        QCOMPARE(SessionViewModel(session).tagSummary(), QString());
    }

    void aTeammateWithoutNameLeavesTheBlank()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart({}), 3);
        session->setPersonalSentiment(1);
        QCOMPARE(SessionViewModel(session).title(), QString(u' ' + session->emojiSummary()));
    }

    void itDoesNotHoldItsMeeting()
    {
        auto session = addSession();
        m_journal->settle();
        const SessionViewModel row(session);
        QCOMPARE(row.session(), session);
        const std::weak_ptr<Session> watched = session;
        session.reset();
        QVERIFY(watched.expired());
        QVERIFY(!row.session());
        QCOMPARE(row.dateString(), u"Yesterday"_s);
    }

    void aDeletedMeetingIsNone()
    {
        const auto session = addSession();
        const SessionViewModel row(session);
        QVERIFY(m_journal->context().deleteObject(session));
        QVERIFY(!row.session());
        m_journal->derivedTexts.invalidateAll();
        QCOMPARE(row.dateString(), u"Yesterday"_s);
    }

    /// Also one that nobody else holds any more.
    void itFollowsItsTeammate()
    {
        const auto session = addSession();
        const SessionViewModel row(session);
        m_journal->settle();
        session->counterpart()->setName(u"Anabel"_s);
        QVERIFY(row.title().startsWith(u"Anabel "_s));
        const auto former = session->counterpart();
        session->setCounterpart(m_journal->addCounterpart(u"Ben"_s));
        m_journal->settle();
        QVERIFY(row.title().startsWith(u"Ben "_s));
        const QSignalSpy changes(&row, &SessionViewModel::titleChanged);
        former->setName(u"Nobody"_s);
        QCOMPARE(changes.size(), 0);
    }

private:
    std::shared_ptr<Session> addSession() const
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        m_journal->addTag(session, u"Zebra"_s, u"🦓"_s);
        m_journal->addTag(session, u"Goal"_s, u"🎯"_s);
        return session;
    }

    std::unique_ptr<JournalFixture> m_journal;
};

QTEST_MAIN(tst_SessionViewModel)
#include "tst_SessionViewModel.moc"
