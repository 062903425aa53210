#pragma once

#include "Store/Objects/ChangeSet.h"

#include <set>
#include <utility>

namespace tembra {

class IdentityMap;
class ManagedObject;
class PendingEdits;
class PropertyNotifications;
class RelationshipCache;
class RowReader;
class ObjectModel;
class TurnNotifier;

/// Takes over into a context what another one has saved.
class ChangeMerger
{
public:
    struct Parts
    {
        const ObjectModel &schema;
        RowReader &reader;
        IdentityMap &objects;
        RelationshipCache &relationships;
        const PendingEdits &edits;
        TurnNotifier &turns;
    };
    explicit ChangeMerger(const Parts &parts) : m(parts) {}

    /// See ManagedObjectContext::mergeChanges().
    void merge(const ChangeSet &changes);

private:
    using Relationships = std::set<std::pair<ObjectID, int>>; ///< By owner and property.

    void addOwners(const ObjectChange &change, Relationships &touched) const;
    void addLinks(const ObjectChange &change, Relationships &touched) const;
    void refresh(ManagedObject &object, PropertyMask properties,
                 PropertyNotifications &notifications);
    std::vector<ObjectID> vanishedAmong(EntityMask entities);
    void addRelationshipsTo(EntityMask entities, Relationships &touched) const;
    bool hasVanished(ObjectID id);

    const Parts m;
};

} // namespace tembra
