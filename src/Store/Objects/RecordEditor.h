#pragma once

#include "Store/Objects/ChangeSet.h"
#include "Store/Schema/Value.h"

#include <memory>

namespace tembra {

class ChangeTracker;
class ContextWriter;
class IdAllocator;
class IdentityMap;
class ManagedObject;
class PendingEdits;
class PropertyNotifications;
class RelationshipCache;
class ObjectModel;
class UndoHistory;
struct ToManyDescription;

/// Carries out the edits of a context on its objects: inserting, setting values, linking.
class RecordEditor
{
public:
    struct Parts
    {
        const ObjectModel &schema;
        IdAllocator &ids;
        IdentityMap &objects;
        RelationshipCache &relationships;
        PendingEdits &edits;
        ChangeTracker &changes;
        ContextWriter &writer;
        UndoHistory *history; ///< Null when nothing is undone.
    };
    explicit RecordEditor(const Parts &parts) : m(parts) {}

    std::shared_ptr<ManagedObject> insert(int entity);
    /// See ManagedObject::setValue().
    void setValue(ManagedObject &object, int property, Value value);
    /// See ManagedObject::addRelated().
    void setRelated(ManagedObject &owner, int property, ManagedObject &other, bool related);

private:
    void trackValue(const ManagedObject &object, int property, const Value &before,
                    const Value &after, PropertyNotifications &notifications);
    void setLinked(ManagedObject &owner, const ToManyDescription &link, ManagedObject &other,
                   bool linked);
    void setRelatedKey(ObjectID owner, int property, qint64 key, bool related,
                       PropertyNotifications &notifications);

    const Parts m;
};

} // namespace tembra
