#pragma once

#include <QByteArray>
#include <QList>

#include <functional>
#include <memory>
#include <vector>

struct QMetaObject;

namespace tembra {

class ManagedObject;

enum class AttributeType { Text, Integer16, Date };

/// A stored attribute: a column of the entity's table and a Q_PROPERTY of its class, by one name.
struct AttributeDescription
{
    QByteArray name;
    AttributeType type;
    int sinceVersion = 1; ///< The schema version that added the column.
};

/// A reference to at most one record, its owner: a column holding its key. Deleting the owner
/// deletes the record as well.
struct ToOneDescription
{
    QByteArray name;
    QByteArray destinationName; ///< Of an entity.
    QByteArray inverseName; ///< Of the to-many relationship at the destination; may be empty.

    // Resolved by the ObjectModel.
    int entity = -1;
    int property = -1;
    int destination = -1; ///< Entity.
    int inverse = -1; ///< To-many property of the destination; -1 when there is none.
};

/// A reference to any number of records, without order. Its inverse is either a to-one
/// relationship (then nothing is stored here) or to-many (then both share a join table).
struct ToManyDescription
{
    QByteArray name;
    QByteArray destinationName; ///< Of an entity.
    QByteArray inverseName;
    QByteArray joinTable = {}; ///< Empty when the inverse is a to-one relationship.
    QByteArray ownColumn = {}; ///< Column of the join table that holds the owner's key.
    QByteArray destinationColumn = {}; ///< Column of the join table that holds the other key.

    // Resolved by the ObjectModel.
    int entity = -1;
    int property = -1;
    int destination = -1; ///< Entity.
    int inverse = -1; ///< Property of the destination: its to-one, or its to-many when joined.
    bool joined = false; ///< Stored in a join table.
    /// Of the two ends of a join table, the one by which its links are named in memory.
    bool canonical = false;
};

enum class PropertyKind { Attribute, ToOne, ToMany };

/// An entity: a table, and a ManagedObject subclass whose Q_PROPERTYs carry the same names.
///
/// Its properties are numbered: attributes first, then to-one, then to-many relationships, each in
/// the order given here. Attributes and to-one relationships are the table's columns after "id".
struct EntityDescription
{
    QByteArray name;
    QByteArray table;
    QList<AttributeDescription> attributes = {};
    QList<ToOneDescription> toOnes = {};
    QList<ToManyDescription> toManys = {};
    std::function<std::shared_ptr<ManagedObject>()> makeObject = {};
    /// Of the class of the objects; null leaves the class unchecked.
    const QMetaObject *metaObject = nullptr;

    // Resolved by the ObjectModel.
    std::vector<QByteArray> columns = {}; ///< By property number, without "id".
    std::vector<ToOneDescription> references = {}; ///< To-ones of any entity that point here.

    int columnCount() const { return int(attributes.size() + toOnes.size()); }
    int propertyCount() const { return columnCount() + int(toManys.size()); }
    PropertyKind kindOf(int property) const;
    QByteArray propertyName(int property) const;
    int propertyIndex(const QByteArray &propertyName) const; ///< -1 when there is none.
    const AttributeDescription &attributeAt(int property) const;
    const ToOneDescription *toOne(int property) const; ///< Null when it is none.
    const ToManyDescription &toMany(int property) const;
};

/// A step that brings a store from version `to - 1` to version `to`; SQL statements in order.
struct SchemaMigration
{
    int to;
    QList<QByteArray> statements;
};

/// What a store holds: its entities and how its schema came to be. Names are resolved to numbers
/// when it is built; it does not change afterwards, so any thread may read it.
///
/// Building one stops the program when it breaks what the store relies on: to-ones point to
/// entities listed earlier, and the class of an entity has a Q_PROPERTY for each property and numbers
/// them (`enum Property`, known to Qt by
/// Q_ENUM) by their position. So rows are inserted in the order of the entities, deleted in the
/// opposite one, and cascades only lead forward.
class ObjectModel
{
public:
    ObjectModel() = default;
    /// @p entities in an order in which rows may be inserted; @p migrations to versions 1, 2, 3 ...
    /// without gaps, of which the first creates the tables.
    ObjectModel(QList<EntityDescription> entities, QList<SchemaMigration> migrations);

    const QList<EntityDescription> &entities() const { return m_entities; }
    const QList<SchemaMigration> &migrations() const { return m_migrations; }
    int version() const { return m_migrations.isEmpty() ? 0 : m_migrations.last().to; }

    int entityCount() const { return int(m_entities.size()); }
    int entityIndex(const QByteArray &entityName) const; ///< -1 when there is none.
    const EntityDescription &entity(int index) const { return m_entities.at(index); }

private:
    void resolveToOnes(int entity);
    void resolveToManys(int entity);

    QList<EntityDescription> m_entities;
    QList<SchemaMigration> m_migrations;
};

} // namespace tembra
