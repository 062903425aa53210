#include "Application/Sample/SampleWriter.h"

#include "Application/Sample/SampleDay.h"
#include "Application/Sample/SampleTexts.h"
#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/NoteField.h"
#include "Model/SentimentScale.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QDateTime>
#include <QTimeZone>

#include <array>
#include <random>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int twoYears = 730;

/// Writes the journal record by record. The generator is seeded the same every time, and only its
/// raw numbers are used, which are the same on every platform.
class RecordWriter
{
public:
    explicit RecordWriter(ManagedObjectContext &context) : m_context(context) {}

    std::shared_ptr<Counterpart> writeTeammate(const SampleTexts::Teammate &teammate)
    {
        const auto counterpart = m_context.insert<Counterpart>();
        counterpart->setName(teammate.name);
        if (teammate.daysBetweenMeetings == 0)
            return counterpart;
        for (int &turn : m_turnOfField)
            turn = below(100);
        int daysAgo = teammate.daysSinceLastMeeting;
        while (daysAgo < twoYears) {
            writeMeeting(counterpart, daysAgo);
            daysAgo += teammate.daysBetweenMeetings + below(5) - 2;
        }
        return counterpart;
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

    /// Some half hour between nine and five of that day.
    QDateTime workingHour(int daysAgo)
    {
        const QTime time = QTime(9, 0).addSecs(below(16) * 30 * 60);
        return QDateTime(sampleDay().addDays(-daysAgo), time, QTimeZone::utc());
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
    std::array<int, maximumNoteIdentifier + 1> m_turnOfField{};
    std::mt19937 m_random{20010101};
};

} // namespace

QList<std::shared_ptr<Counterpart>> SampleWriter::write(ManagedObjectContext &context)
{
    RecordWriter writer(context);
    QList<std::shared_ptr<Counterpart>> teammates;
    for (const SampleTexts::Teammate &teammate : SampleTexts::teammates())
        teammates.append(writer.writeTeammate(teammate));
    return teammates;
}

} // namespace tembra
