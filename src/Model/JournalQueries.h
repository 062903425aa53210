#pragma once

#include "Foundation/Time/Date.h"
#include "Store/Query/FetchRequest.h"
#include "Store/Schema/ObjectID.h"

#include <QList>
#include <QString>

#include <optional>

/// Every question the program asks its store, with its fixed condition and order.
namespace tembra::JournalQueries {

/// All teammates.
FetchRequest counterparts();

/// A teammate's meetings that carry all of @p tags and, when there is a search text (also an empty
/// one), hold it in a note whatever its case and accents; newest first.
FetchRequest sessions(ObjectID counterpart, const QList<ObjectID> &tags = {},
                      const std::optional<QString> &searchText = {});
/// A teammate's latest meeting, if any: the first of sessions().
FetchRequest mostRecentSession(ObjectID counterpart);
/// All meetings that carry a tag, newest first.
FetchRequest sessionsCarrying(ObjectID tag);
/// Meetings between two moments, both excluded.
FetchRequest sessionsBetween(Date start, Date end);
/// Meetings that still carry a numbered flag.
FetchRequest flaggedSessions();

/// All tags, by name descending (so it is intended).
FetchRequest allTags();
/// The seven tags with the latest use, latest first; tags that were never used come after all others.
FetchRequest recentTags();

/// A teammate's notes of one field that hold text, newest meeting first.
FetchRequest filledNotes(ObjectID counterpart, qint16 identifier);
/// Notes of one field that hold text, of meetings between two moments, both excluded.
FetchRequest filledNotesBetween(Date start, Date end, qint16 identifier);
/// All notes of one teammate.
FetchRequest notes(ObjectID counterpart);
/// All notes whose meeting belongs to a teammate.
FetchRequest notesOfAnyCounterpart();

} // namespace tembra::JournalQueries
