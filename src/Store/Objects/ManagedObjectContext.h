#pragma once

#include "Foundation/Result.h"
#include "Store/Objects/ChangeSet.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Query/FetchRequest.h"

#include <QObject>

#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace tembra {

class KeyRanges;
class PersistentContainer;
class UndoManager;
struct ContextSetup;

/// A workspace over the store: hands out records as objects, gathers their edits, writes them and
/// tells everyone what changed. Every method belongs to the thread the context was made on.
///
/// Edits are written as drafts (see writeDrafts()) before every query and at the latest one second
/// after they were made; save() makes everything durable. Changes are told once per turn of the
/// event loop, by objectsDidChange().
class ManagedObjectContext : public QObject
{
    Q_OBJECT

public:
    ~ManagedObjectContext() override;

    PersistentContainer &container() const;
    /// Null for a background context.
    UndoManager *undoManager() const;

    /// Inserts a new record; it has its key at once and has awoken when this returns.
    std::shared_ptr<ManagedObject> insertObject(const QByteArray &entityName);
    template<typename Object>
    std::shared_ptr<Object> insert()
    {
        return std::static_pointer_cast<Object>(insertObject(Object::entityName()));
    }

    /// The one object of a record; null when there is no such record (any more).
    std::shared_ptr<ManagedObject> object(ObjectID id);
    template<typename Object>
    std::shared_ptr<Object> object(ObjectID id)
    {
        return std::static_pointer_cast<Object>(object(id));
    }
    /// The object of a record if somebody holds it now, without reading the store.
    std::shared_ptr<ManagedObject> registeredObject(ObjectID id) const;
    /// The objects of these records of one entity, in this order, read together; those that do not
    /// exist (any more) are left out.
    Result<QList<std::shared_ptr<ManagedObject>>> objects(int entity, std::span<const qint64> keys);

    /// Deletes records with all that cascades from them, hooks first: once for each record that has
    /// a live object; a hook may edit, insert and delete whatever it likes. Undo brings everything
    /// back under the same keys, as new objects. Written at once, as a draft; of a very large
    /// deletion the last rows leave the store a little later, unseen (see finishDeletions()).
    /// Fails when the store cannot be read or written; then nothing was deleted by this call, but
    /// the hooks have run, and run again when it is tried again.
    Result<void> deleteObjects(const QList<std::shared_ptr<ManagedObject>> &objects);
    Result<void> deleteObject(const std::shared_ptr<ManagedObject> &object);
    /// Deletes now what large deletions have left for later. Otherwise that happens by itself, in
    /// pieces, within a second or two. On failure the rest stays unseen and is tried again.
    Result<void> finishDeletions();

    /// The keys of the records that answer @p request, in its order. Writes drafts first.
    Result<std::vector<qint64>> fetchKeys(const FetchRequest &request);
    Result<qint64> count(const FetchRequest &request);
    Result<QList<std::shared_ptr<ManagedObject>>> fetchObjects(const FetchRequest &request);
    template<typename Object>
    Result<QList<std::shared_ptr<Object>>> fetch(const FetchRequest &request)
    {
        return fetchObjects(request).map([](const QList<std::shared_ptr<ManagedObject>> &objects) {
            QList<std::shared_ptr<Object>> typed;
            typed.reserve(objects.size());
            for (const auto &object : objects)
                typed.append(std::static_pointer_cast<Object>(object));
            return typed;
        });
    }

    /// Reads the values (and, by name, the to-many relationships) of these records together, so
    /// that using their objects asks the store no more.
    Result<void> prefetch(const QList<std::shared_ptr<ManagedObject>> &objects,
                          const QList<QByteArray> &toManyRelationships = {});

    /// True from the first edit until a save() after it succeeded, drafts or not.
    bool hasChanges() const;
    /// Writes edits, without waiting for the disk. Posts nothing and clears nothing. On failure the
    /// edits stay and are tried again within a second.
    Result<void> writeDrafts();
    /// Writes edits and waits until the disk has them; then hasChanges() is false and didSave() is
    /// emitted. On failure all edits stay. Does nothing when there are no changes.
    Result<void> save();

    /// The keys of the records that a background context has inserted, of whatever entity.
    const KeyRanges &insertedKeys() const;
    /// Takes back what another context inserted: deletes the records with these keys, of whatever
    /// entity, with all their relationships; but not those that other records still refer to (as the
    /// owner of one, or by a link from an entity listed later). For a background context; asks
    /// @p mayGoOn now and then, with the part that is done, and fails when the answer is no.
    Result<void> deleteInserted(const KeyRanges &keys, const std::function<bool(double)> &mayGoOn);

    /// Tells what changed so far in this turn now instead of at its end.
    void processPendingChanges();

    /// Takes over what another context has saved: live objects read their values anew, vanished
    /// ones become deleted, and objectsDidChange() tells about it. Records no undo.
    void mergeChanges(const ChangeSet &savedElsewhere);

Q_SIGNALS:
    /// Once per turn of the event loop in which something changed.
    void objectsDidChange(const tembra::ChangeSet &changes);
    /// After a save() that wrote something; the changes since the save before it.
    void didSave(const tembra::ChangeSet &changes);
    void hasChangesChanged(bool hasChanges);

private:
    friend class ManagedObject;
    friend class PersistentContainer;
    friend class RecordScan;
    friend class UndoManager;

    struct Private;
    ManagedObjectContext(PersistentContainer &container, ContextSetup setup);

    std::unique_ptr<Private> d;
};

} // namespace tembra
