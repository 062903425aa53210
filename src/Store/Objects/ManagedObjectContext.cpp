#include "Store/Objects/ManagedObjectContext.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/Objects/ChangeMerger.h"
#include "Store/Objects/ChangeTracker.h"
#include "Store/Objects/DraftWriter.h"
#include "Store/Objects/EditWriter.h"
#include "Store/Objects/IdentityMap.h"
#include "Store/Objects/KeyRangeDeleter.h"
#include "Store/Objects/LongTransactionWriter.h"
#include "Store/Objects/NotifySignals.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Objects/RecordDeleter.h"
#include "Store/Objects/RecordEditor.h"
#include "Store/Objects/RecordRestorer.h"
#include "Store/Objects/RelationshipCache.h"
#include "Store/Objects/TurnNotifier.h"
#include "Store/Query/FetchStatement.h"
#include "Store/Rows/RowReader.h"
#include "Store/Rows/RowWriter.h"
#include "Store/Undo/UndoHistory.h"
#include "Store/Undo/UndoManager.h"

namespace tembra {

namespace {

Result<Statement *> prepareFetch(Connection &connection, const ObjectModel &model,
                                 const FetchRequest &request)
{
    const Result<FetchStatement> compiled = compileFetch(model, request);
    if (!compiled)
        return failure(compiled.error());
    const Result<Statement *> statement = connection.prepare(compiled->sql);
    if (!statement)
        return failure(statement.error());
    int index = 1;
    for (const Value &binding : compiled->bindings)
        (*statement)->bind(index++, binding);
    return statement;
}

} // namespace

/// The parts of a context, each handed to those that build on it.
///
/// None of them calls foreign code (signals, hooks) while a transaction is open or the parts
/// disagree with each other; after calling it, nothing is taken for granted.
struct ManagedObjectContext::Parts
{
    /// A main context has a notifier and a history; one without is a background context.
    Parts(ManagedObjectContext &context, PersistentContainer &owner,
          std::shared_ptr<Connection> given, IdAllocator &ids,
          std::unique_ptr<TurnNotifier> notifier, std::unique_ptr<UndoHistory> undoHistory);

    PersistentContainer &container;
    const std::shared_ptr<Connection> connection;
    const ObjectModel &schema;
    RowReader reader;
    RowWriter rows;
    NotifySignals notifySignals;
    const std::unique_ptr<TurnNotifier> turns;
    const std::unique_ptr<UndoHistory> history;

    PendingEdits edits;
    ChangeTracker changes;
    RelationshipCache relationships;
    IdentityMap objects;

    EditWriter editWriter;
    const std::unique_ptr<DraftWriter> drafts; ///< Of a main context.
    const std::unique_ptr<LongTransactionWriter> longTransaction; ///< Of a background context.
    ContextWriter &writer; ///< The one of the two that there is.

    RecordEditor editor;
    RecordDeleter deleter;
    RecordRestorer restorer;
    std::unique_ptr<ChangeMerger> merger; ///< Of a main context.
    std::unique_ptr<UndoManager> undoManager; ///< Of a main context.
};

ManagedObjectContext::Parts::Parts(ManagedObjectContext &context, PersistentContainer &owner,
                                   std::shared_ptr<Connection> given, IdAllocator &ids,
                                   std::unique_ptr<TurnNotifier> notifier,
                                   std::unique_ptr<UndoHistory> undoHistory)
    : container(owner)
    , connection(std::move(given))
    , schema(owner.model())
    , reader(schema, *connection)
    , rows(schema, *connection)
    , notifySignals(schema)
    , turns(std::move(notifier))
    , history(std::move(undoHistory))
    , changes(turns.get())
    , relationships(schema, reader, edits)
    , objects(context, schema, reader, relationships, changes)
    , editWriter(schema, rows, *connection, ids, edits, objects)
    , drafts(turns ? std::make_unique<DraftWriter>(editWriter, *turns) : nullptr)
    , longTransaction(turns ? nullptr : std::make_unique<LongTransactionWriter>(editWriter))
    , writer(drafts ? static_cast<ContextWriter &>(*drafts) : *longTransaction)
    , editor({schema, ids, objects, relationships, edits, changes, writer, history.get()})
    , deleter({schema, reader, rows, edits, objects, relationships, changes, writer, history.get()})
    , restorer({schema, rows, edits, objects, relationships, changes, writer, history.get()})
{
}

std::unique_ptr<ManagedObjectContext> ManagedObjectContext::makeMain(
    PersistentContainer &container, std::shared_ptr<Connection> connection, IdAllocator &ids)
{
    std::unique_ptr<ManagedObjectContext> made(new ManagedObjectContext);
    made->d = std::make_unique<Parts>(*made, container, std::move(connection), ids,
                                      std::make_unique<TurnNotifier>(),
                                      std::make_unique<UndoHistory>(container.clock()));
    Parts &d = *made->d;
    d.merger = std::make_unique<ChangeMerger>(
        ChangeMerger::Parts{d.schema, d.reader, d.objects, d.relationships, d.edits, *d.turns});
    d.undoManager = std::make_unique<UndoManager>(
        UndoManager::Parts{d.schema, *d.history, d.objects, d.editor, d.deleter, d.restorer});
    connect(d.turns.get(), &TurnNotifier::turnWillEnd, d.undoManager.get(), &UndoManager::endTurn);
    connect(d.turns.get(), &TurnNotifier::changed, made.get(),
            &ManagedObjectContext::objectsDidChange);
    made->connectSignals();
    return made;
}

std::unique_ptr<ManagedObjectContext> ManagedObjectContext::makeBackground(
    PersistentContainer &container, std::shared_ptr<Connection> connection, IdAllocator &ids)
{
    std::unique_ptr<ManagedObjectContext> made(new ManagedObjectContext);
    made->d = std::make_unique<Parts>(*made, container, std::move(connection), ids, nullptr,
                                      nullptr);
    made->connectSignals();
    return made;
}

ManagedObjectContext::ManagedObjectContext() = default;

ManagedObjectContext::~ManagedObjectContext() = default;

/// Directly: a context works on one thread, which need not be the one it was made on.
void ManagedObjectContext::connectSignals()
{
    connect(&d->changes, &ChangeTracker::hasChangesChanged, this,
            &ManagedObjectContext::hasChangesChanged, Qt::DirectConnection);
}

PersistentContainer &ManagedObjectContext::container() const
{
    return d->container;
}

UndoManager *ManagedObjectContext::undoManager() const
{
    return d->undoManager.get();
}

std::shared_ptr<ManagedObject> ManagedObjectContext::insertObject(const QByteArray &entityName)
{
    const int entity = d->schema.entityIndex(entityName);
    require(entity >= 0, "an object is inserted into an entity of the model");
    return d->editor.insert(entity);
}

std::shared_ptr<ManagedObject> ManagedObjectContext::object(ObjectID id)
{
    return d->objects.object(id);
}

Result<QList<std::shared_ptr<ManagedObject>>> ManagedObjectContext::objects(
    int entity, std::span<const qint64> keys)
{
    return d->objects.objects(entity, keys, IdentityMap::Loading::Now);
}

Result<void> ManagedObjectContext::deleteObjects(
    const QList<std::shared_ptr<ManagedObject>> &objects)
{
    std::vector<ObjectID> roots;
    for (const auto &object : objects) {
        if (object && object->managedObjectContext() == this && object->isLive())
            roots.push_back(object->objectID());
    }
    return d->deleter.deleteRecords(roots);
}

Result<void> ManagedObjectContext::deleteObject(const std::shared_ptr<ManagedObject> &object)
{
    return deleteObjects({object});
}

Result<std::vector<qint64>> ManagedObjectContext::fetchKeys(const FetchRequest &request)
{
    // What cannot be written now is said in the log and tried again; the answer is what is there.
    (void)writeDrafts();
    const auto prepared = prepareFetch(*d->connection, d->schema, request);
    if (!prepared)
        return failure(prepared.error());
    std::vector<qint64> keys;
    Statement &statement = **prepared;
    Result<bool> found = statement.step();
    for (; found && *found; found = statement.step())
        keys.push_back(statement.key(0));
    if (!found)
        return failure(found.error());
    return keys;
}

Result<QList<std::shared_ptr<ManagedObject>>> ManagedObjectContext::fetchObjects(
    const FetchRequest &request)
{
    const Result<std::vector<qint64>> keys = fetchKeys(request);
    if (!keys)
        return failure(keys.error());
    const int entity = d->schema.entityIndex(request.entityName);
    auto found = d->objects.objects(entity, *keys,
                                    request.returnsObjectsAsFaults ? IdentityMap::Loading::AsFaults
                                                                   : IdentityMap::Loading::Now);
    if (!found || request.relationshipKeyPathsForPrefetching.isEmpty())
        return found;
    if (const Result<void> done = prefetch(*found, request.relationshipKeyPathsForPrefetching);
        !done)
        return failure(done.error());
    return found;
}

Result<void> ManagedObjectContext::prefetch(const QList<std::shared_ptr<ManagedObject>> &objects,
                                            const QList<QByteArray> &toManyRelationships)
{
    if (const Result<void> done = d->objects.loadTogether(objects); !done || objects.isEmpty())
        return done;
    const int entity = objects.first()->objectID().entity;
    for (const QByteArray &name : toManyRelationships) {
        const ToManyDescription &link = d->schema.entity(entity).toMany(
            d->schema.entity(entity).propertyIndex(name));
        std::vector<qint64> owners;
        for (const auto &object : objects) {
            const ObjectID id = object->objectID();
            require(id.entity == entity, "relationships are prefetched for one entity");
            if (!object->isDeleted() && !d->relationships.isCached(id, link.property))
                owners.push_back(id.key);
        }
        if (const Result<void> done = d->relationships.read(link, owners); !done)
            return done;
    }
    return {};
}

bool ManagedObjectContext::hasChanges() const
{
    return d->changes.hasChanges();
}

Result<void> ManagedObjectContext::writeDrafts()
{
    return d->writer.writeEdits();
}

Result<void> ManagedObjectContext::save()
{
    processPendingChanges();
    if (!hasChanges())
        return {};
    const Result<IdentityMap::ObjectList> vanished = d->writer.save();
    if (!vanished)
        return failure(vanished.error());
    const ChangeSet saved = d->changes.takeSaved();
    IdentityMap::notifyDeleted(*vanished);
    Q_EMIT didSave(saved);
    return {};
}

const KeyRanges &ManagedObjectContext::insertedKeys() const
{
    require(bool(d->longTransaction), "a background context knows what it inserted");
    return d->longTransaction->insertedKeys();
}

Result<void> ManagedObjectContext::deleteInserted(const KeyRanges &keys,
                                                  const std::function<bool(double)> &shouldContinue)
{
    require(bool(d->longTransaction), "a background context deletes what was inserted");
    return KeyRangeDeleter(d->schema, *d->connection, *d->longTransaction, d->changes)
        .run(keys, shouldContinue);
}

void ManagedObjectContext::processPendingChanges()
{
    if (d->turns)
        d->turns->notify();
}

void ManagedObjectContext::mergeChanges(const ChangeSet &savedElsewhere)
{
    require(bool(d->merger), "a main context merges what others save");
    d->merger->merge(savedElsewhere);
}

Connection &ManagedObjectContext::connection() const
{
    return *d->connection;
}

RowReader &ManagedObjectContext::reader() const
{
    return d->reader;
}

NotifySignals &ManagedObjectContext::notifySignals() const
{
    return d->notifySignals;
}

bool ManagedObjectContext::load(ManagedObject &object)
{
    return d->objects.load(object);
}

void ManagedObjectContext::setValue(ManagedObject &object, int property, Value value)
{
    d->editor.setValue(object, property, std::move(value));
}

std::vector<qint64> ManagedObjectContext::relatedKeys(const ManagedObject &owner,
                                                      const ToManyDescription &link)
{
    Result<std::vector<qint64>> keys = d->relationships.keys(owner.objectID(), link);
    if (!keys)
        qCWarning(storeLog, "A relationship could not be read: %s",
                  qUtf8Printable(keys.error().description()));
    return std::move(keys).value_or(std::vector<qint64>());
}

void ManagedObjectContext::setRelated(ManagedObject &owner, int property, ManagedObject &other,
                                      bool related)
{
    d->editor.setRelated(owner, property, other, related);
}

void ManagedObjectContext::setPinned(ManagedObject &object, bool pinned)
{
    d->objects.setPinned(object, pinned);
}

void ManagedObjectContext::removeObject(const ManagedObject &object)
{
    d->objects.remove(object);
}

} // namespace tembra
