#include "Model/Counterpart.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Foundation/Time/CalendarArithmetic.h"
#include "Foundation/Time/Clock.h"
#include "Model/DefaultsManager.h"
#include "Model/DerivedTexts.h"
#include "Model/JournalEncoding.h"
#include "Model/JournalQueries.h"
#include "Model/JournalServices.h"
#include "Model/RecordDecoding.h"
#include "Model/RecordValues.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"

namespace tembra {

using namespace Qt::StringLiterals;

Counterpart::Counterpart(const JournalServices &services) : m_services(services) {}

Counterpart::~Counterpart()
{
    m_services.derivedTexts.remove(this);
}

void Counterpart::awake()
{
    m_services.derivedTexts.add(this);
}

QList<std::shared_ptr<Session>> Counterpart::sessions() const
{
    return related<Session>(sessionsProperty);
}

std::shared_ptr<Session> Counterpart::mostRecentSession() const
{
    if (!m_mostRecentSession)
        m_mostRecentSession = fetchMostRecentSession();
    return *m_mostRecentSession;
}

std::shared_ptr<Session> Counterpart::fetchMostRecentSession() const
{
    if (!managedObjectContext())
        return {};
    const auto sessions = managedObjectContext()->fetch<Session>(
        JournalQueries::mostRecentSession(objectID()));
    if (!sessions) {
        qCWarning(modelLog, "Failed to fetch entities: %s",
                  qUtf8Printable(sessions.error().description()));
        return {};
    }
    // Meetings without a date come last: if the first has none, no meeting has one.
    if (sessions->isEmpty() || !sessions->first()->date())
        return {};
    return sessions->first();
}

int Counterpart::daysSinceLastSession() const
{
    const std::shared_ptr<Session> recent = mostRecentSession();
    if (!recent)
        return -1;
    const OptionalDate date = recent->date();
    require(date.has_value(), "the most recent session has a date");
    return m_services.calendar.completeDays(*date, m_services.clock.now());
}

bool Counterpart::isOverdue() const
{
    return mostRecentSession()
           && daysSinceLastSession() > m_services.defaults.counterpartStalenessInterval();
}

QString Counterpart::recentSessionSummary() const
{
    const std::shared_ptr<Session> recent = mostRecentSession();
    if (!recent)
        return tr("No sessions", "Summary of a teammate without meetings");
    const QString summary = recent->sessionSummary();
    return isOverdue() ? u"⚠\uFE0F "_s + summary : summary;
}

QString Counterpart::recentSessionTagSummary() const
{
    const std::shared_ptr<Session> recent = mostRecentSession();
    return recent ? recent->tagEmojiSummary() : u""_s;
}

std::unique_ptr<FetchedResultsController> Counterpart::sessionsResultController(
    const QList<std::shared_ptr<Tag>> &tags, const std::optional<QString> &searchText) const
{
    require(managedObjectContext(), "a teammate whose sessions are listed is in the store");
    QList<ObjectID> tagIDs;
    for (const std::shared_ptr<Tag> &tag : tags)
        tagIDs.append(tag->objectID());
    return std::make_unique<FetchedResultsController>(*managedObjectContext(),
                                                      JournalQueries::sessions(objectID(), tagIDs,
                                                                               searchText));
}

void Counterpart::invalidateDerived()
{
    m_mostRecentSession.reset();
    Q_EMIT derivedChanged();
}

Result<void> Counterpart::encode(JsonEncoder &encoder) const
{
    require(managedObjectContext(), "a teammate who is written is in the store");
    const qint64 key = objectID().key;
    return JournalEncoding::begin(*managedObjectContext(), encoder)
        .and_then([&](JournalEncoding &&encoding) { return encoding.encodeTeammate(key); });
}

std::shared_ptr<Counterpart> Counterpart::decode(JsonDecoder &decoder,
                                                 const std::function<void()> &didDecodeSession)
{
    ManagedObjectContext &context = decodingContext(decoder, "Counterpart");
    const auto counterpart = context.insert<Counterpart>();
    const auto values = CounterpartValues::decode(decoder, [&] {
        Session::decode(decoder)->setCounterpart(counterpart);
        if (didDecodeSession)
            didDecodeSession();
    });
    values.attributes.assignTo(*counterpart);
    counterpart->importID = values.objectID;
    return counterpart;
}

} // namespace tembra
