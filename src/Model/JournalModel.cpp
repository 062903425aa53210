#include "Model/JournalModel.h"

#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Schema/SchemaStatements.h"

namespace tembra {

namespace {

/// An entity with its attributes, yet without relationships.
template<typename Object>
EntityDescription entityOf(const QByteArray &table, const JournalServices &services)
{
    static_assert(standAtTheirPositions(Object::attributes));
    EntityDescription entity{.name = Object::entityName(),
                             .table = table,
                             .makeObject = [&services]() -> std::shared_ptr<ManagedObject> {
                                 return std::make_shared<Object>(services);
                             },
                             .metaObject = &Object::staticMetaObject};
    for (const JournalAttribute &attribute : Object::attributes)
        entity.attributes.append({attribute.name, attribute.type, attribute.sinceVersion});
    return entity;
}

EntityDescription counterpartEntity(const JournalServices &services)
{
    EntityDescription entity = entityOf<Counterpart>("counterpart", services);
    entity.toManys = {{.name = "sessions",
                       .destinationName = Session::entityName(),
                       .inverseName = "counterpart"}};
    return entity;
}

EntityDescription tagEntity(const JournalServices &services)
{
    EntityDescription entity = entityOf<Tag>("tag", services);
    entity.toManys = {{.name = "sessions",
                       .destinationName = Session::entityName(),
                       .inverseName = "tags",
                       .joinTable = "session_tag",
                       .ownColumn = "tag",
                       .destinationColumn = "session"}};
    return entity;
}

EntityDescription sessionEntity(const JournalServices &services)
{
    EntityDescription entity = entityOf<Session>("session", services);
    entity.toOnes = {{"counterpart", Counterpart::entityName(), "sessions"}};
    entity.toManys = {{.name = "notes",
                       .destinationName = Note::entityName(),
                       .inverseName = "session"},
                      {.name = "tags",
                       .destinationName = Tag::entityName(),
                       .inverseName = "sessions",
                       .joinTable = "session_tag",
                       .ownColumn = "session",
                       .destinationColumn = "tag"}};
    return entity;
}

EntityDescription noteEntity(const JournalServices &services)
{
    EntityDescription entity = entityOf<Note>("note", services);
    entity.toOnes = {{"session", Session::entityName(), "notes"}};
    return entity;
}

/// What a version has beside the columns of its attributes. Meetings are read newest first, and
/// indexes that run the same way spare the sort. The partial indexes serve the look-ups of filled
/// notes and of old flags.
QList<QByteArray> furtherStatements(int version)
{
    if (version > 1)
        return {};
    return {
        "CREATE TABLE session_tag ("
        " session INTEGER NOT NULL REFERENCES session(id) DEFERRABLE INITIALLY DEFERRED,"
        " tag INTEGER NOT NULL REFERENCES tag(id) DEFERRABLE INITIALLY DEFERRED,"
        " PRIMARY KEY (session, tag)) WITHOUT ROWID",
        "CREATE INDEX session_counterpart_date ON session(counterpart, date DESC)",
        "CREATE INDEX session_date ON session(date DESC)",
        "CREATE INDEX session_flag ON session(flag) WHERE flag > 0",
        "CREATE INDEX note_session_identifier ON note(session, identifier)",
        "CREATE INDEX note_filled ON note(session, identifier)"
        " WHERE contentString IS NOT NULL AND contentString IS NOT ''",
        "CREATE INDEX session_tag_tag ON session_tag(tag, session)",
        "CREATE INDEX tag_lastUse ON tag(lastUse)",
    };
}

} // namespace

ObjectModel makeJournalModel(const JournalServices &services)
{
    const QList<EntityDescription> entities{counterpartEntity(services), tagEntity(services),
                                            sessionEntity(services), noteEntity(services)};
    QList<SchemaMigration> migrations;
    for (int version = 1; version <= latestVersion(entities); ++version)
        migrations.append(
            {version, tableStatements(entities, version) + furtherStatements(version)});
    return {entities, migrations};
}

} // namespace tembra
