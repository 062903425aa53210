#include "MainWindow/Session/SessionGenerator.h"

#include "Foundation/Logging.h"
#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/SentimentScale.h"
#include "Model/Session.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Undo/UndoManager.h"

#include <QRandomGenerator>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr double secondsPerDay = 86400;
/// Written meetings leave memory: with this many at a time it stays flat.
constexpr int meetingsPerDraft = 250;
/// Of ten notes, this many get a text.
constexpr int filledOfTen = 4;

void rate(Session &session, QRandomGenerator &random)
{
    const auto anyOf = [&random](const SentimentScale &scale) {
        return qint16(random.bounded(scale.maximum() + 1));
    };
    session.setPersonalSentiment(anyOf(SentimentScale::personal()));
    session.setMeetingSentiment(anyOf(SentimentScale::meeting()));
    session.setCounterpartSentiment(anyOf(SentimentScale::personal()));
}

void writeNotes(const Session &session, int number, QRandomGenerator &random)
{
    for (const std::shared_ptr<Note> &note : session.notes()) {
        if (random.bounded(10) < filledOfTen)
            note->setContentString(
                u"%1, made-up meeting %2."_s.arg(note->titleString()).arg(number));
    }
}

void writeDrafts(ManagedObjectContext &context)
{
    if (const auto written = context.writeDrafts(); !written)
        qCWarning(windowLog, "Could not write meetings: %s",
                  qUtf8Printable(written.error().description()));
}

} // namespace

void generateSessions(ManagedObjectContext &context,
                      const std::shared_ptr<Counterpart> &counterpart, int count, Date now)
{
    QRandomGenerator random(1); // The same history every time.
    if (UndoManager *undo = context.undoManager())
        undo->beginGroup();
    for (int number = 1; number <= count; ++number) {
        const std::shared_ptr<Session> session = context.insert<Session>();
        session->setCounterpart(counterpart);
        session->setDate(now.adding(-secondsPerDay * (count - number)));
        rate(*session, random);
        writeNotes(*session, number, random);
        if (number % meetingsPerDraft == 0)
            writeDrafts(context);
    }
    if (UndoManager *undo = context.undoManager())
        undo->endGroup();
}

} // namespace tembra
