#include "Store/Schema/SchemaStatements.h"

#include "Store/Query/SqlText.h"

#include <algorithm>

namespace tembra {

namespace {

QByteArray columnType(AttributeType type)
{
    switch (type) {
    case AttributeType::Text:
        return "TEXT";
    case AttributeType::Integer16:
        return "INTEGER";
    case AttributeType::Date:
        break;
    }
    return "REAL";
}

QByteArray columnOf(const AttributeDescription &attribute)
{
    return quoted(attribute.name) + ' ' + columnType(attribute.type);
}

/// References are checked at the end of a transaction, so that rows may be written in any order.
QByteArray columnOf(const ToOneDescription &toOne, const QList<EntityDescription> &entities)
{
    const auto destination = std::ranges::find(entities, toOne.destinationName,
                                               &EntityDescription::name);
    return quoted(toOne.name) + " INTEGER REFERENCES " + quoted(destination->table)
           + "(id) DEFERRABLE INITIALLY DEFERRED";
}

/// Texts stand last: SQLite walks past what stands before a column to read it.
QByteArray tableOf(const EntityDescription &entity, const QList<EntityDescription> &entities)
{
    QList<QByteArray> columns{"id INTEGER PRIMARY KEY"};
    QList<QByteArray> texts;
    for (const AttributeDescription &attribute : entity.attributes) {
        if (attribute.sinceVersion == 1)
            (attribute.type == AttributeType::Text ? texts : columns).append(columnOf(attribute));
    }
    for (const ToOneDescription &toOne : entity.toOnes)
        columns.append(columnOf(toOne, entities));
    return "CREATE TABLE " + quoted(entity.table) + " (" + (columns + texts).join(", ") + ')';
}

} // namespace

QList<QByteArray> tableStatements(const QList<EntityDescription> &entities, int version)
{
    QList<QByteArray> statements;
    for (const EntityDescription &entity : entities) {
        if (version == 1) {
            statements.append(tableOf(entity, entities));
            continue;
        }
        for (const AttributeDescription &attribute : entity.attributes) {
            if (attribute.sinceVersion == version)
                statements.append("ALTER TABLE " + quoted(entity.table) + " ADD COLUMN "
                                  + columnOf(attribute));
        }
    }
    return statements;
}

int latestVersion(const QList<EntityDescription> &entities)
{
    int latest = 1;
    for (const EntityDescription &entity : entities) {
        for (const AttributeDescription &attribute : entity.attributes)
            latest = std::max(latest, attribute.sinceVersion);
    }
    return latest;
}

} // namespace tembra
