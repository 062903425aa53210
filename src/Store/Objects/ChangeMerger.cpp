#include "Store/Objects/ChangeMerger.h"

#include "Foundation/Logging.h"
#include "Store/Objects/IdentityMap.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Objects/PropertyNotifications.h"
#include "Store/Objects/RelationshipCache.h"
#include "Store/Objects/TurnNotifier.h"
#include "Store/Rows/RowReader.h"

namespace tembra {

void ChangeMerger::merge(const ChangeSet &changes)
{
    Relationships touched;
    PropertyNotifications notifications;
    for (const ObjectChange &change : changes.inserted)
        addOwners(change, touched);
    for (const ObjectChange &change : changes.updated) {
        addOwners(change, touched);
        addLinks(change, touched);
        if (const auto live = m.objects.find(change.id))
            refresh(*live, change.properties, notifications);
    }
    std::vector<ObjectID> deleted = vanishedAmong(changes.bulk);
    for (const ObjectChange &change : changes.deleted) {
        addOwners(change, touched);
        deleted.push_back(change.id);
    }
    addRelationshipsTo(changes.bulk, touched);
    m.turns.changes().add(changes);
    IdentityMap::ObjectList gone;
    for (const ObjectID id : deleted) {
        if (auto object = m.objects.takeDeleted(id))
            gone.append(std::move(object));
    }
    for (const auto &[owner, property] : touched) {
        m.relationships.forget(owner, property);
        notifications.add(m.objects.find(owner), property);
    }
    IdentityMap::notifyDeleted(gone);
    notifications.emitAll();
}

/// The to-manys at the other end of a record's to-ones, before and after.
void ChangeMerger::addOwners(const ObjectChange &change, Relationships &touched) const
{
    for (const ToOneChange &toOne : change.toOnes) {
        const ToOneDescription *column = m.schema.entity(change.id.entity).toOne(toOne.property);
        if (!column || column->inverse < 0)
            continue;
        for (const qint64 owner : {toOne.oldKey, toOne.newKey}) {
            if (owner != 0)
                touched.insert({{column->destination, owner}, column->inverse});
        }
    }
}

void ChangeMerger::addLinks(const ObjectChange &change, Relationships &touched) const
{
    for (const ToManyDescription &link : m.schema.entity(change.id.entity).toManys) {
        if (change.properties & propertyBit(link.property))
            touched.insert({change.id, link.property});
    }
}

/// Edits that the store does not have yet stay as they are: the later one wins.
void ChangeMerger::refresh(ManagedObject &object, PropertyMask properties,
                           PropertyNotifications &notifications)
{
    const ObjectID id = object.objectID();
    if (IdentityMap::isFault(object) || m.edits.isNew(id))
        return;
    Result<std::optional<RowReader::Row>> row = m.reader.row(id);
    if (!row)
        qCWarning(storeLog, "A record could not be read: %s",
                  qUtf8Printable(row.error().description()));
    if (!row || !*row)
        return;
    const PropertyMask taken = properties & ~m.edits.columns(id);
    for (int property = 0; property < int((*row)->size()); ++property) {
        const Value &stored = (**row)[size_t(property)];
        if (!(taken & propertyBit(property)) || object.value(property) == stored)
            continue;
        IdentityMap::replaceValue(object, property, stored);
        notifications.add(object.shared_from_this(), property);
    }
}

/// The live records of these entities that are not there any more.
std::vector<ObjectID> ChangeMerger::vanishedAmong(EntityMask entities)
{
    std::vector<ObjectID> vanished;
    if (entities == 0)
        return vanished;
    for (const auto &object : m.objects.liveObjects()) {
        const ObjectID id = object->objectID();
        if ((entities & entityBit(id.entity)) && !m.edits.isNew(id) && hasVanished(id))
            vanished.push_back(id);
    }
    return vanished;
}

bool ChangeMerger::hasVanished(ObjectID id)
{
    const Result<bool> found = m.reader.exists(id);
    return found && !*found;
}

/// The cached relationships that lead to records of these entities.
void ChangeMerger::addRelationshipsTo(EntityMask entities, Relationships &touched) const
{
    if (entities == 0)
        return;
    for (const auto &object : m.objects.liveObjects()) {
        const ObjectID id = object->objectID();
        for (const ToManyDescription &link : m.schema.entity(id.entity).toManys) {
            if ((entities & entityBit(link.destination))
                && m.relationships.isCached(id, link.property))
                touched.insert({id, link.property});
        }
    }
}

} // namespace tembra
