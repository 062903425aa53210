#pragma once

#include "Foundation/Time/Date.h"

#include <QObject>
#include <QSet>
#include <QTimer>

namespace tembra {

class CalendarArithmetic;
class Clock;
class Counterpart;
class ManagedObject;
class ManagedObjectContext;
class Note;
class NotificationCenter;
class Session;
struct ChangeSet;
struct ObjectChange;

/// Tells the records in memory when what they derive from each other, from the settings or from
/// the date may read differently: after a change of the store, of an emoji or of the staleness
/// interval, and at the moment at which the next day count or relative date changes.
class DerivedTexts : public QObject
{
    Q_OBJECT

public:
    DerivedTexts(const Clock &clock, const CalendarArithmetic &calendar,
                 NotificationCenter &notifications, QObject *parent = nullptr);

    /// Follows the changes of this context; its records are the ones that are told.
    void follow(ManagedObjectContext &viewContext);

    // Called by the records themselves. Records of other contexts are none of its business.
    void add(Counterpart *counterpart);
    void add(Session *session);
    void add(Note *note);
    void remove(Counterpart *counterpart);
    void remove(Session *session);
    void remove(Note *note);

    /// Tells every record.
    void invalidateAll();
    /// The next moment at which a text changes by the passing of time alone.
    Date nextMoment() const { return m_nextMoment; }

public Q_SLOTS:
    /// Looks at the clock: tells every record when the next moment has come.
    void checkClock();

private:
    bool isFollowed(const ManagedObject &record) const;
    void takeChanges(const ChangeSet &changes);
    void collectTeammates(const ObjectChange &sessionChange, QSet<qint64> &teammates) const;
    void invalidateTeammates(const QSet<qint64> &teammates);
    void invalidateNotes();
    void scheduleNextMoment();

    const Clock &m_clock;
    const CalendarArithmetic &m_calendar;
    ManagedObjectContext *m_context = nullptr;
    QSet<Counterpart *> m_counterparts;
    QSet<Session *> m_sessions;
    QSet<Note *> m_notes;
    QTimer m_timer;
    Date m_nextMoment;
};

} // namespace tembra
