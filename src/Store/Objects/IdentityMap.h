#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectID.h"
#include "Store/Schema/Value.h"

#include <QHash>
#include <QList>

#include <memory>
#include <span>
#include <vector>

namespace tembra {

class ChangeTracker;
class ManagedObject;
class ManagedObjectContext;
class RelationshipCache;
class RowReader;
class ObjectModel;

/// The objects of a context: one for each record that anybody holds, and those that are pinned. A
/// fault is an object whose values are read when first asked for. The only one who changes the
/// state of an object.
class IdentityMap
{
public:
    using ObjectList = QList<std::shared_ptr<ManagedObject>>;

    IdentityMap(ManagedObjectContext &context, const ObjectModel &schema, RowReader &reader,
                RelationshipCache &relationships, ChangeTracker &changes);
    /// Objects that outlive their context lose it.
    ~IdentityMap();
    Q_DISABLE_COPY_MOVE(IdentityMap)

    /// The live object of a record; null when there is none.
    std::shared_ptr<ManagedObject> find(ObjectID id) const;
    ObjectList liveObjects() const;
    /// The object of a record, read when it is not live; null when there is no such record.
    std::shared_ptr<ManagedObject> object(ObjectID id);
    enum class Loading { Now, AsFaults };
    /// The objects of these records of one entity, in this order, read together; without those
    /// that do not exist, but for faults.
    Result<ObjectList> objects(int entity, std::span<const qint64> keys, Loading loading);
    /// The object of a new record, all of whose values are missing.
    std::shared_ptr<ManagedObject> insert(ObjectID id);
    /// Calls the callbacks of an object made by insert().
    static void awakeInserted(ManagedObject &object);
    /// Whether there is such a record, and it is not being deleted.
    bool exists(ObjectID id);
    /// Takes out an object that nobody holds any more.
    void remove(const ManagedObject &object);

    static bool isFault(const ManagedObject &object);
    /// Reads the values of a fault. False when that fails, or the record turns out to be deleted.
    bool load(ManagedObject &object);
    Result<void> loadTogether(const ObjectList &objects);
    /// Gives a fault its values.
    static void setValues(ManagedObject &object, std::vector<Value> values);
    /// By property number; empty for a fault.
    static const std::vector<Value> &values(const ManagedObject &object);
    /// Returns the value before.
    static Value replaceValue(ManagedObject &object, int property, Value value);
    /// Holds an object, or does so no longer.
    void setPinned(ManagedObject &object, bool pinned);

    /// From here on the objects can be read but not edited. Then calls their deletion hooks.
    static void beginDeletion(const ObjectList &objects);
    /// The live object of a deleted record, if any, leaves; returns it for notifyDeleted().
    std::shared_ptr<ManagedObject> takeDeleted(ObjectID id);
    /// The same for records that were deleted elsewhere, whose deletion nobody knew here.
    ObjectList takeVanished(std::span<const ObjectID> ids);
    static void notifyDeleted(const ObjectList &objects);

private:
    std::shared_ptr<ManagedObject> makeObject(ObjectID id);

    ManagedObjectContext &m_context;
    const ObjectModel &m_schema;
    RowReader &m_reader;
    RelationshipCache &m_relationships;
    ChangeTracker &m_changes;
    QHash<ObjectID, ManagedObject *> m_objects;
    QHash<ObjectID, std::shared_ptr<ManagedObject>> m_pinned;
};

} // namespace tembra
