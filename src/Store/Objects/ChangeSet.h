#pragma once

#include "Store/Schema/ObjectID.h"

#include <QList>
#include <QVarLengthArray>

#include <vector>

namespace tembra {

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
/// the two at its other end; a change of a link of a join table is told by both ends. An inserted record's to-ones carry old key 0, a deleted one's new
/// key 0, so that whoever derives from the other end finds it either way.
struct ObjectChange
{
    ObjectID id;
    PropertyMask properties = 0;
    QVarLengthArray<ToOneChange, 1> toOnes;
};

/// Everything that changed in one turn of the event loop (or in one save): the only source that
/// live results, undo, models and derived texts learn from. A record is in one list at most.
///
/// Another context may change more records than anyone wants to hear of one by one: then it tells
/// only the entities in which any record may have come, gone or changed.
struct ChangeSet
{
    std::vector<ObjectChange> inserted;
    std::vector<ObjectChange> updated;
    std::vector<ObjectChange> deleted;
    EntityMask wholesale = 0; ///< What is told so is in none of the lists.

    bool isWholesale(int entity) const { return (wholesale & entityBit(entity)) != 0; }
    bool isEmpty() const
    {
        return inserted.empty() && updated.empty() && deleted.empty() && wholesale == 0;
    }
};

} // namespace tembra

Q_DECLARE_METATYPE(tembra::ChangeSet)
