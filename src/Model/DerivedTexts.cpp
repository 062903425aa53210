#include "Model/DerivedTexts.h"

#include "Foundation/Time/CalendarArithmetic.h"
#include "Foundation/Time/Clock.h"
#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/NotificationCenter.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QThread>

#include <algorithm>
#include <chrono>

namespace tembra {

namespace {

// The timer stands still while the computer sleeps, and the clock can be set: look at it this often.
constexpr double longestWaitInSeconds = 60;

constexpr PropertyMask shownOfSession = propertyBit(Session::dateProperty)
                                        | propertyBit(Session::personalSentimentProperty)
                                        | propertyBit(Session::meetingSentimentProperty)
                                        | propertyBit(Session::counterpartSentimentProperty)
                                        | propertyBit(Session::counterpartProperty)
                                        | propertyBit(Session::tagsProperty);
constexpr PropertyMask datesNotes = propertyBit(Session::dateProperty)
                                    | propertyBit(Session::counterpartProperty);
constexpr PropertyMask shownOfTag = propertyBit(Tag::nameProperty)
                                    | propertyBit(Tag::emojiProperty);

/// Calls the function for every change of a kind of record, however it changed.
template<typename Function>
void forEachChange(const ChangeSet &changes, int entity, Function function)
{
    for (const auto *list : {&changes.inserted, &changes.updated, &changes.deleted}) {
        for (const ObjectChange &change : *list) {
            if (change.id.entity == entity)
                function(change);
        }
    }
}

/// The records, held: whoever is told or asked may write drafts, and a record that was alive for its
/// unwritten edits alone would go, and leave the set, in the middle of it.
template<typename Record>
QList<std::shared_ptr<Record>> held(const QSet<Record *> &records)
{
    QList<std::shared_ptr<Record>> objects;
    objects.reserve(records.size());
    for (Record *record : records) {
        if (auto object = record->weak_from_this().lock())
            objects.append(std::static_pointer_cast<Record>(std::move(object)));
    }
    return objects;
}

template<typename Record>
void invalidateEach(const QSet<Record *> &records)
{
    for (const std::shared_ptr<Record> &record : held(records))
        record->invalidateDerived();
}

} // namespace

DerivedTexts::DerivedTexts(const Clock &clock, const CalendarArithmetic &calendar,
                           NotificationCenter &notifications, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_calendar(calendar)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &DerivedTexts::checkClock);
    connect(&notifications, &NotificationCenter::didChangeEmoji, this,
            &DerivedTexts::invalidateAll);
    connect(&notifications, &NotificationCenter::didChangeStaleness, this,
            &DerivedTexts::invalidateAll);
}

void DerivedTexts::follow(ManagedObjectContext &viewContext)
{
    m_context = &viewContext;
    connect(m_context, &ManagedObjectContext::objectsDidChange, this, &DerivedTexts::takeChanges);
    scheduleNextMoment();
}

bool DerivedTexts::isFollowed(const ManagedObject &record) const
{
    return m_context && record.managedObjectContext() == m_context;
}

void DerivedTexts::add(Counterpart *counterpart)
{
    if (isFollowed(*counterpart))
        m_counterparts.insert(counterpart);
}

void DerivedTexts::add(Session *session)
{
    if (isFollowed(*session))
        m_sessions.insert(session);
}

void DerivedTexts::add(Note *note)
{
    if (isFollowed(*note))
        m_notes.insert(note);
}

void DerivedTexts::remove(Counterpart *counterpart)
{
    if (QThread::currentThread() == thread())
        m_counterparts.remove(counterpart);
}

void DerivedTexts::remove(Session *session)
{
    if (QThread::currentThread() == thread())
        m_sessions.remove(session);
}

void DerivedTexts::remove(Note *note)
{
    if (QThread::currentThread() == thread())
        m_notes.remove(note);
}

void DerivedTexts::invalidateAll()
{
    invalidateEach(m_counterparts);
    invalidateEach(m_sessions);
    invalidateNotes();
    scheduleNextMoment();
}

void DerivedTexts::takeChanges(const ChangeSet &changes)
{
    if (changes.bulk != 0) {
        invalidateAll();
        return;
    }
    const ObjectModel &model = m_context->container().model();
    bool tagsLookDifferent = false;
    bool notesDateDifferently = false;
    QSet<qint64> teammates;
    QSet<qint64> changedSessions;
    forEachChange(changes, model.entityIndex(Tag::entityName()), [&](const ObjectChange &change) {
        tagsLookDifferent |= (change.properties & shownOfTag) != 0;
    });
    forEachChange(changes, model.entityIndex(Session::entityName()),
                  [&](const ObjectChange &change) {
                      if ((change.properties & shownOfSession) == 0)
                          return;
                      notesDateDifferently |= (change.properties & datesNotes) != 0;
                      collectTeammates(change, teammates);
                      changedSessions.insert(change.id.key);
                  });
    forEachChange(changes, model.entityIndex(Note::entityName()),
                  [&](const ObjectChange &) { notesDateDifferently = true; });

    if (tagsLookDifferent) {
        invalidateEach(m_counterparts);
        invalidateEach(m_sessions);
    } else {
        invalidateTeammates(teammates);
        for (const std::shared_ptr<Session> &session : held(m_sessions)) {
            if (changedSessions.contains(session->objectID().key))
                session->invalidateDerived();
        }
    }
    if (notesDateDifferently)
        invalidateNotes();
    if (!teammates.isEmpty())
        scheduleNextMoment();
}

void DerivedTexts::collectTeammates(const ObjectChange &sessionChange,
                                    QSet<qint64> &teammates) const
{
    bool counterpartChanged = false;
    for (const ToOneChange &toOne : sessionChange.toOnes) {
        if (toOne.property != Session::counterpartProperty)
            continue;
        counterpartChanged = true;
        teammates.insert(toOne.oldKey);
        teammates.insert(toOne.newKey);
    }
    if (counterpartChanged)
        return;
    if (const auto session = m_context->object(sessionChange.id))
        teammates.insert(session->toOneID(Session::counterpartProperty).key);
}

void DerivedTexts::invalidateTeammates(const QSet<qint64> &teammates)
{
    if (teammates.isEmpty())
        return;
    for (const std::shared_ptr<Counterpart> &counterpart : held(m_counterparts)) {
        if (teammates.contains(counterpart->objectID().key))
            counterpart->invalidateDerived();
    }
}

void DerivedTexts::invalidateNotes()
{
    invalidateEach(m_notes);
}

void DerivedTexts::checkClock()
{
    if (m_clock.now() >= m_nextMoment)
        invalidateAll();
    else
        scheduleNextMoment();
}

void DerivedTexts::scheduleNextMoment()
{
    const Date now = m_clock.now();
    m_nextMoment = m_calendar.startOfNextDay(now);
    for (const std::shared_ptr<Counterpart> &counterpart : held(m_counterparts)) {
        if (const auto session = counterpart->mostRecentSession())
            m_nextMoment = std::min(m_nextMoment,
                                    m_calendar.momentDayCountChanges(*session->date(), now));
    }
    const double seconds = m_nextMoment.secondsSinceReferenceDate - now.secondsSinceReferenceDate;
    m_timer.start(std::chrono::milliseconds(
        qint64(std::clamp(seconds, 0.0, longestWaitInSeconds) * 1000) + 1));
}

} // namespace tembra
