#include "Store/Objects/ManagedObjectContext.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Query/FetchStatement.h"
#include "Store/Undo/UndoManager.h"

namespace tembra {

namespace {

Result<Statement *> prepareFetch(Connection &connection, const Result<FetchStatement> &compiled)
{
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

ManagedObjectContext::ManagedObjectContext(PersistentContainer &container, ContextSetup setup)
    : d(std::make_unique<Private>(*this, container, std::move(setup)))
{
    if (!d->setup.isBackground)
        d->undoManager.reset(new UndoManager(*this));
}

ManagedObjectContext::~ManagedObjectContext()
{
    if (d->setup.isBackground)
        return;
    (void)d->writeDrafts();
    (void)d->deleteLeftovers(); // What is left now is deleted before the store is used again.
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
    return d->insert(entity);
}

std::shared_ptr<ManagedObject> ManagedObjectContext::object(ObjectID id)
{
    return d->object(id);
}

std::shared_ptr<ManagedObject> ManagedObjectContext::registeredObject(ObjectID id) const
{
    return d->registry.find(id);
}

Result<QList<std::shared_ptr<ManagedObject>>> ManagedObjectContext::objects(
    int entity, std::span<const qint64> keys)
{
    return d->objects(entity, keys, false);
}

Result<void> ManagedObjectContext::deleteObjects(
    const QList<std::shared_ptr<ManagedObject>> &objects)
{
    std::vector<ObjectID> roots;
    for (const auto &object : objects) {
        if (object && object->managedObjectContext() == this)
            roots.push_back(object->objectID());
    }
    return d->deleteRecords(std::move(roots));
}

Result<void> ManagedObjectContext::deleteObject(const std::shared_ptr<ManagedObject> &object)
{
    return deleteObjects({object});
}

Result<std::vector<qint64>> ManagedObjectContext::fetchKeys(const FetchRequest &request)
{
    // What cannot be written now is said in the log and tried again; the answer is what is there.
    (void)d->writeDrafts();
    const auto prepared = prepareFetch(d->connection, compileFetch(d->schema, request,
                                                                   d->hiddenFrom(request)));
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

Result<qint64> ManagedObjectContext::count(const FetchRequest &request)
{
    (void)d->writeDrafts();
    const auto prepared = prepareFetch(d->connection, compileCount(d->schema, request,
                                                                   d->hiddenFrom(request)));
    if (!prepared)
        return failure(prepared.error());
    Statement &statement = **prepared;
    const Result<bool> found = statement.step();
    if (!found)
        return failure(found.error());
    const qint64 count = statement.key(0);
    statement.reset();
    return count;
}

Result<QList<std::shared_ptr<ManagedObject>>> ManagedObjectContext::fetchObjects(
    const FetchRequest &request)
{
    const Result<std::vector<qint64>> keys = fetchKeys(request);
    if (!keys)
        return failure(keys.error());
    const int entity = d->schema.entityIndex(request.entityName);
    auto found = d->objects(entity, *keys, request.returnsObjectsAsFaults);
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
    if (const Result<void> done = d->loadTogether(objects); !done || objects.isEmpty())
        return done;
    const int entity = objects.first()->objectID().entity;
    for (const QByteArray &name : toManyRelationships) {
        const ToManyDescription &link = d->schema.entity(entity).toMany(
            d->schema.entity(entity).propertyIndex(name));
        std::vector<qint64> owners;
        for (const auto &object : objects) {
            require(object->objectID().entity == entity,
                    "relationships are prefetched for one entity");
            if (!object->isDeleted() && !Private::knownRelated(*object, link.property))
                owners.push_back(object->objectID().key);
        }
        if (const Result<void> done = d->readRelated(link, owners); !done)
            return done;
    }
    return {};
}

bool ManagedObjectContext::hasChanges() const
{
    return d->hasChanges;
}

Result<void> ManagedObjectContext::writeDrafts()
{
    return d->writeDrafts();
}

Result<void> ManagedObjectContext::finishDeletions()
{
    return d->deleteLeftovers();
}

Result<void> ManagedObjectContext::save()
{
    return d->save();
}

void ManagedObjectContext::processPendingChanges()
{
    d->tellChanges();
}

void ManagedObjectContext::mergeChanges(const ChangeSet &savedElsewhere)
{
    d->merge(savedElsewhere);
}

} // namespace tembra
