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

class Connection;
class IdAllocator;
class KeyRanges;
class NotifySignals;
class PersistentContainer;
class RowReader;
class UndoManager;
struct ToManyDescription;

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
    /// The objects of these records of one entity, in this order, read together; those that do not
    /// exist (any more) are left out.
    Result<QList<std::shared_ptr<ManagedObject>>> objects(int entity, std::span<const qint64> keys);

    /// Deletes records with all that cascades from them, at once, as a draft. Undo brings everything
    /// back under the same keys, as new objects. Once the deletion is certain the hook of each live
    /// object is called, once; a hook may edit, insert and delete other records.
    /// Fails when the store cannot be read or written; then nothing was deleted and no hook called.
    Result<void> deleteObjects(const QList<std::shared_ptr<ManagedObject>> &objects);
    Result<void> deleteObject(const std::shared_ptr<ManagedObject> &object);

    /// The keys of the records that answer @p request, in its order. Writes drafts first.
    Result<std::vector<qint64>> fetchKeys(const FetchRequest &request);
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

    /// For a background context: the keys of the records that it inserted, of whatever entity.
    const KeyRanges &insertedKeys() const;
    /// For a background context: deletes the records with these keys, of whatever entity, with all
    /// their relationships; but not those that other records still refer to (as the owner of one,
    /// or by a link from an entity listed later). Asks @p shouldContinue now and then, with the
    /// part that is done, and fails when the answer is no.
    Result<void> deleteInserted(const KeyRanges &keys,
                                const std::function<bool(double)> &shouldContinue);

    /// Emits what changed so far in this turn now instead of at its end.
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

    struct Parts;

    /// Writes drafts, keeps undo, and notifies at the end of each turn.
    static std::unique_ptr<ManagedObjectContext> makeMain(PersistentContainer &container,
                                                          std::shared_ptr<Connection> connection,
                                                          IdAllocator &ids);
    /// Writes everything in one transaction, on a connection of its own.
    static std::unique_ptr<ManagedObjectContext> makeBackground(
        PersistentContainer &container, std::shared_ptr<Connection> connection, IdAllocator &ids);
    ManagedObjectContext();
    void connectSignals();

    // For ManagedObject and RecordScan.
    Connection &connection() const;
    RowReader &reader() const;
    NotifySignals &notifySignals() const;
    bool load(ManagedObject &object);
    void setValue(ManagedObject &object, int property, Value value);
    std::vector<qint64> relatedKeys(const ManagedObject &owner, const ToManyDescription &link);
    void setRelated(ManagedObject &owner, int property, ManagedObject &other, bool related);
    void setPinned(ManagedObject &object, bool pinned);
    void removeObject(const ManagedObject &object);

    std::unique_ptr<Parts> d;
};

} // namespace tembra
