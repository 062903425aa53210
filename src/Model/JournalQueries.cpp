#include "Model/JournalQueries.h"

namespace tembra::JournalQueries {

using namespace Qt::StringLiterals;

namespace {

const SortDescriptor newestFirst{"date", false};
const QString emptyText = u""_s;

} // namespace

FetchRequest counterparts()
{
    return {.entityName = "Counterpart", .sortDescriptors = {{"name", true}}};
}

FetchRequest sessions(ObjectID counterpart, const QList<ObjectID> &tags,
                      const std::optional<QString> &searchText)
{
    QList<Predicate> conditions{Predicate::fixed(u"counterpart == %@", {counterpart})};
    for (const ObjectID &tag : tags)
        conditions.append(Predicate::fixed(u"ANY tags == %@", {tag}));
    if (searchText)
        conditions.append(
            Predicate::fixed(u"ANY notes.contentString CONTAINS[cd] %@", {*searchText}));
    return {.entityName = "Session",
            .predicate = Predicate::andPredicate(conditions),
            .sortDescriptors = {newestFirst},
            .relationshipKeyPathsForPrefetching = {"tags"}};
}

FetchRequest mostRecentSession(ObjectID counterpart)
{
    FetchRequest request = sessions(counterpart);
    request.fetchLimit = 1;
    return request;
}

FetchRequest sessionsCarrying(ObjectID tag)
{
    return {.entityName = "Session",
            .predicate = Predicate::fixed(u"ANY tags == %@", {tag}),
            .sortDescriptors = {newestFirst}};
}

FetchRequest sessionsBetween(Date start, Date end)
{
    return {.entityName = "Session",
            .predicate = Predicate::fixed(u"date < %@ AND date > %@", {end, start})};
}

FetchRequest flaggedSessions()
{
    return {.entityName = "Session", .predicate = Predicate::fixed(u"flag > %d", {qint64(0)})};
}

FetchRequest allTags()
{
    return {.entityName = "Tag",
            .sortDescriptors = {{"name", false}},
            .returnsDistinctResults = true,
            .returnsObjectsAsFaults = false};
}

FetchRequest recentTags()
{
    constexpr int recent = 7;
    return {.entityName = "Tag",
            .sortDescriptors = {{"lastUse", false}},
            .fetchLimit = recent,
            .returnsDistinctResults = true,
            .returnsObjectsAsFaults = false};
}

FetchRequest filledNotes(ObjectID counterpart, qint16 identifier)
{
    return {.entityName = "Note",
            .predicate = Predicate::fixed(u"session.counterpart == %@ AND identifier == %d AND "
                                          u"contentString != %@ AND contentString != NULL",
                                          {counterpart, qint64(identifier), emptyText}),
            .sortDescriptors = {{"session.date", false}}};
}

FetchRequest filledNotesBetween(Date start, Date end, qint16 identifier)
{
    return {.entityName = "Note",
            .predicate = Predicate::fixed(
                u"session.date < %@ AND session.date > %@ AND identifier == %d AND "
                u"contentString != %@ AND contentString != NULL",
                {end, start, qint64(identifier), emptyText})};
}

FetchRequest notes(ObjectID counterpart)
{
    return {.entityName = "Note",
            .predicate = Predicate::fixed(u"session.counterpart == %@", {counterpart})};
}

FetchRequest notesOfAnyCounterpart()
{
    return {.entityName = "Note",
            .predicate = Predicate::fixed(u"session.counterpart != NULL", {})};
}

} // namespace tembra::JournalQueries
