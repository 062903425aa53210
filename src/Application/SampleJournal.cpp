#include "Application/SampleJournal.h"

#include "Application/SampleTexts.h"
#include "Foundation/Clock.h"
#include "Foundation/Logging.h"
#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/NoteField.h"
#include "Model/SentimentScale.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/ManagedObjectContext.h"
#include "Store/UndoManager.h"

#include <QDateTime>

#include <algorithm>
#include <array>
#include <random>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int twoYears = 730;

/// Writes the journal record by record. The generator is seeded the same every time, and only its
/// raw numbers are used, which are the same on every platform.
class SampleWriter
{
public:
    SampleWriter(ManagedObjectContext &context, const QDateTime &now)
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
        for (int &turn : m_turnOfField)
            turn = below(100);
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
        session->setDate(
            Date::fromUnixMilliseconds(double(workingHour(daysAgo).toMSecsSinceEpoch())));
        session->setPersonalSentiment(rating(SentimentScale::personal()));
        session->setMeetingSentiment(rating(SentimentScale::meeting()));
        session->setCounterpartSentiment(rating(SentimentScale::personal()));
        writeNotes(*session);
        writeTags(*session);
    }

    /// Some half hour between nine and five of that day; of the Friday before it at a weekend.
    QDateTime workingHour(int daysAgo)
    {
        const QDate date = m_now.date().addDays(-daysAgo);
        const int pastFriday = std::max(0, date.dayOfWeek() - int(Qt::Friday));
        const QTime time = QTime(9, 0).addSecs(below(16) * 30 * 60);
        return QDateTime(date.addDays(-pastFriday), time, m_now.timeZone());
    }

    /// Mostly a rating, now and then none.
    qint16 rating(const SentimentScale &scale)
    {
        return qint16(below(12) == 0 ? 0 : 1 + below(scale.maximum()));
    }

    void writeNotes(const Session &session)
    {
        for (const std::shared_ptr<Note> &note : session.sortedNotes()) {
            if (below(9) < 4)
                note->setContentString(nextText(note->identifier()));
        }
    }

    /// In turn, so that a text comes again as late as it can.
    QString nextText(qint16 identifier)
    {
        const QStringList texts = SampleTexts::notes(identifier);
        return texts.at(m_turnOfField.at(size_t(identifier))++ % texts.size());
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
    QDateTime m_now;
    std::array<int, maximumNoteIdentifier + 1> m_turnOfField{};
    std::mt19937 m_random{20010101};
};

} // namespace

void SampleJournal::fill(ManagedObjectContext &context, const Clock &clock,
                         const QTimeZone &timeZone)
{
    const UndoManager::Suspension notUndoable(*context.undoManager());
    const qint64 now = qint64(clock.now().toUnixMilliseconds());
    SampleWriter writer(context, QDateTime::fromMSecsSinceEpoch(now, timeZone));
    for (const SampleTexts::Teammate &teammate : SampleTexts::teammates())
        writer.writeTeammate(teammate);
    context.processPendingChanges();
    if (const auto saved = context.save(); !saved)
        qCWarning(applicationLog, "Could not save the sample journal: %s",
                  qUtf8Printable(saved.error().description()));
}

} // namespace tembra
