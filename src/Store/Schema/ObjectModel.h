#pragma once

#include <QByteArray>
#include <QList>

#include <functional>
#include <memory>

namespace tembra {

class ManagedObject;

enum class AttributeType { Text, Integer16, Date };

/// A stored attribute: a column of the entity's table and a Q_PROPERTY of its class, by one name.
struct AttributeDescription
{
    QByteArray name;
    AttributeType type;
};

/// A reference to at most one record: a column holding its key.
struct ToOneDescription
{
    QByteArray name;
    QByteArray destination; ///< Entity name.
    QByteArray inverse; ///< Name of the to-many relationship at the destination.
};

/// What deleting the owner does to the records a to-many relationship reaches.
enum class DeleteRule { Nullify, Cascade };

/// A reference to any number of records, without order. Its inverse is either a to-one
/// relationship (then nothing is stored here) or to-many (then both share a join table).
struct ToManyDescription
{
    QByteArray name;
    QByteArray destination;
    QByteArray inverse;
    DeleteRule deleteRule = DeleteRule::Nullify;
    QByteArray joinTable = {}; ///< Empty when the inverse is a to-one relationship.
    QByteArray ownColumn = {}; ///< Column of the join table that holds the owner's key.
    QByteArray destinationColumn = {}; ///< Column of the join table that holds the other key.
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
    QList<AttributeDescription> attributes;
    QList<ToOneDescription> toOnes;
    QList<ToManyDescription> toManys;
    std::function<std::shared_ptr<ManagedObject>()> makeObject;

    int columnCount() const { return int(attributes.size() + toOnes.size()); }
    int propertyCount() const { return columnCount() + int(toManys.size()); }
    PropertyKind kindOf(int property) const;
    QByteArray propertyName(int property) const;
    int propertyIndex(const QByteArray &propertyName) const; ///< -1 when there is none.
    const AttributeDescription &attributeAt(int property) const;
    const ToOneDescription &toOneAt(int property) const;
    const ToManyDescription &toManyAt(int property) const;
};

/// A step that brings a store from version `to - 1` to version `to`; SQL statements in order.
struct SchemaMigration
{
    int to;
    QList<QByteArray> statements;
};

/// What a store holds: its entities and how its schema came to be. Immutable once built.
struct ObjectModel
{
    QList<EntityDescription> entities; ///< In an order in which rows may be inserted.
    QList<SchemaMigration> migrations; ///< Versions 1, 2, 3 ... without gaps; 1 creates the tables.

    int version() const { return migrations.isEmpty() ? 0 : migrations.last().to; }
    int entityIndex(const QByteArray &entityName) const; ///< -1 when there is none.
    const EntityDescription &entity(int index) const { return entities.at(index); }
};

} // namespace tembra
