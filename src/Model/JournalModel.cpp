#include "Model/JournalModel.h"

#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "Model/Tag.h"

namespace tembra {

namespace {

template<typename Object>
auto maker(const JournalServices &services)
{
    return [&services]() -> std::shared_ptr<ManagedObject> {
        return std::make_shared<Object>(services);
    };
}

EntityDescription counterpartEntity(const JournalServices &services)
{
    return {
        .name = Counterpart::entityName(),
        .table = "counterpart",
        .attributes = {{"name", AttributeType::Text},
                       {"email", AttributeType::Text},
                       {"lastUpdate", AttributeType::Date}},
        .toOnes = {},
        .toManys = {{.name = "sessions",
                     .destination = Session::entityName(),
                     .inverse = "counterpart",
                     .deleteRule = DeleteRule::Cascade}},
        .makeObject = maker<Counterpart>(services),
    };
}

EntityDescription tagEntity(const JournalServices &services)
{
    return {
        .name = Tag::entityName(),
        .table = "tag",
        .attributes = {{"name", AttributeType::Text},
                       {"emoji", AttributeType::Text},
                       {"lastUse", AttributeType::Date}},
        .toOnes = {},
        .toManys = {{.name = "sessions",
                     .destination = Session::entityName(),
                     .inverse = "tags",
                     .joinTable = "session_tag",
                     .ownColumn = "tag",
                     .destinationColumn = "session"}},
        .makeObject = maker<Tag>(services),
    };
}

EntityDescription sessionEntity(const JournalServices &services)
{
    return {
        .name = Session::entityName(),
        .table = "session",
        .attributes = {{"date", AttributeType::Date},
                       {"flag", AttributeType::Integer16},
                       {"personalSentiment", AttributeType::Integer16},
                       {"meetingSentiment", AttributeType::Integer16},
                       {"counterpartSentiment", AttributeType::Integer16}},
        .toOnes = {{"counterpart", Counterpart::entityName(), "sessions"}},
        .toManys = {{.name = "notes",
                     .destination = Note::entityName(),
                     .inverse = "session",
                     .deleteRule = DeleteRule::Cascade},
                    {.name = "tags",
                     .destination = Tag::entityName(),
                     .inverse = "sessions",
                     .joinTable = "session_tag",
                     .ownColumn = "session",
                     .destinationColumn = "tag"}},
        .makeObject = maker<Session>(services),
    };
}

EntityDescription noteEntity(const JournalServices &services)
{
    return {
        .name = Note::entityName(),
        .table = "note",
        .attributes = {{"identifier", AttributeType::Integer16},
                       {"contentString", AttributeType::Text}},
        .toOnes = {{"session", Session::entityName(), "notes"}},
        .toManys = {},
        .makeObject = maker<Note>(services),
    };
}

} // namespace

ObjectModel makeJournalModel(const JournalServices &services)
{
    return {
        .entities = {counterpartEntity(services), tagEntity(services), sessionEntity(services),
                     noteEntity(services)},
        .migrations = journalMigrations(),
    };
}

} // namespace tembra
