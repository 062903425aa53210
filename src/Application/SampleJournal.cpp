#include "Application/SampleJournal.h"

#include "Application/SampleTexts.h"
#include "Foundation/Clock.h"
#include "Foundation/Logging.h"
#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/SentimentScale.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/ManagedObjectContext.h"
#include "Store/UndoManager.h"

#include <random>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr double day = 24 * 60 * 60;
constexpr int twoYears = 730;

/// Writes the journal record by record. The generator is seeded the same every time, and only its
/// raw numbers are used, which are the same on every platform.
class SampleWriter
{
public:
    SampleWriter(ManagedObjectContext &context, Date now)
        : m_context(context)
        , m_now(now)
    {
    }

    void writeTeammate(const SampleTexts::Teammate &teammate)
    {
        const auto counterpart = m_context.insert<Counterpart>();
        counterpart->setName(teammate.name);
        if (teammate.daysBetweenMeetings == 0)
            return;
        int daysAgo = teammate.daysSinceLastMeeting;
        while (daysAgo < twoYears) {
            writeMeeting(counterpart, daysAgo);
            daysAgo += teammate.daysBetweenMeetings + below(5) - 2;
        }
    }

private:
    int below(int bound) { return int(m_random() % unsigned(bound)); }

    void writeMeeting(const std::shared_ptr<Counterpart> &counterpart, int daysAgo)
    {
        const auto session = m_context.insert<Session>();
        session->setCounterpart(counterpart);
        // At some half hour of the working day, the nearest one before now.
        session->setDate(m_now.adding(-daysAgo * day - below(12) * 1800));
        session->setPersonalSentiment(rating(SentimentScale::personal()));
        session->setMeetingSentiment(rating(SentimentScale::meeting()));
        session->setCounterpartSentiment(rating(SentimentScale::personal()));
        writeNotes(*session);
        writeTags(*session);
    }

    /// Mostly a rating, now and then none.
    qint16 rating(const SentimentScale &scale) { return qint16(below(12) == 0 ? 0 : 1 + below(scale.maximum())); }

    void writeNotes(const Session &session)
    {
        for (const std::shared_ptr<Note> &note : session.sortedNotes()) {
            const QStringList texts = SampleTexts::notes(note->identifier());
            if (below(9) < 4)
                note->setContentString(texts.at(below(int(texts.size()))));
        }
    }

    void writeTags(Session &session)
    {
        const QList<SampleTexts::TagText> tags = SampleTexts::tags();
        for (int count = below(3); count > 0; --count) {
            const SampleTexts::TagText &tag = tags.at(below(int(tags.size())));
            session.addTag(*Tag::findOrCreate(m_context, tag.name, tag.emoji));
        }
    }

    ManagedObjectContext &m_context;
    Date m_now;
    std::mt19937 m_random{20010101};
};

} // namespace

void SampleJournal::fill(ManagedObjectContext &context, const Clock &clock)
{
    const UndoManager::Suspension notUndoable(*context.undoManager());
    SampleWriter writer(context, clock.now());
    for (const SampleTexts::Teammate &teammate : SampleTexts::teammates())
        writer.writeTeammate(teammate);
    context.processPendingChanges();
    if (const auto saved = context.save(); !saved)
        qCWarning(applicationLog, "Could not save the sample journal: %s",
                  qUtf8Printable(saved.error().description()));
}

} // namespace tembra
