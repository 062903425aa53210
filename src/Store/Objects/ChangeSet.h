#pragma once

#include "Store/Schema/ObjectID.h"
#include "Store/Schema/Value.h"

#include <QList>
#include <QVarLengthArray>

#include <vector>

namespace tembra {

struct EntityDescription;

/// One bit per property of an entity, numbered as in EntityDescription.
using PropertyMask = quint64;

constexpr PropertyMask propertyBit(int property)
{
    return PropertyMask(1) << property;
}
constexpr PropertyMask allProperties = ~PropertyMask(0);

/// One bit per entity of an ObjectModel.
using EntityMask = quint64;

constexpr EntityMask entityBit(int entity)
{
    return EntityMask(1) << entity;
}

/// Where a to-one relationship pointed before and after; key 0 is none.
struct ToOneChange
{
    int property;
    qint64 oldKey;
    qint64 newKey;
};

/// What happened to one record. A change of a to-one is told by the record that holds it and not by
/// the two at its other end; a change of a link of a join table is told by both ends. An inserted
/// record's to-ones carry old key 0, a deleted one's new key 0, so that whoever derives from the
/// other end finds it either way.
struct ObjectChange
{
    ObjectID id;
    PropertyMask properties = 0;
    QVarLengthArray<ToOneChange, 1> toOnes;
};

/// The deletion of a record with these values; none when they are not known.
ObjectChange deletionOf(ObjectID id, const std::vector<Value> &values,
                        const EntityDescription &entity);

/// Everything that changed in one turn of the event loop (or in one save): the only source that
/// live results, undo, models and derived texts learn from. A record is in one list at most.
///
/// Very many changed records of an entity are a bulk change: any record of the entity may have come,
/// gone or changed, and none is listed.
struct ChangeSet
{
    std::vector<ObjectChange> inserted;
    std::vector<ObjectChange> updated;
    std::vector<ObjectChange> deleted;
    EntityMask bulk = 0; ///< The entities that are changed in bulk.

    bool isBulkChange(int entity) const { return (bulk & entityBit(entity)) != 0; }
    bool isEmpty() const
    {
        return inserted.empty() && updated.empty() && deleted.empty() && bulk == 0;
    }
};

} // namespace tembra

Q_DECLARE_METATYPE(tembra::ChangeSet)
