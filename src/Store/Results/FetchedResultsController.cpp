#include "Store/Results/FetchedResultsController.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Query/Region.h"
#include "Store/Results/BatchFaultingCache.h"
#include "Store/Results/ListDiff.h"
#include "Store/Rows/UpdatedRecords.h"

#include <QPointer>

#include <algorithm>
#include <deque>
#include <optional>

namespace tembra {

struct FetchedResultsController::Private
{
    Private(FetchedResultsController &controller, ManagedObjectContext &owner, FetchRequest given)
        : q(controller)
        , context(&owner)
        , request(std::move(given))
        , entity(owner.container().model().entityIndex(request.entityName))
    {
    }

    Result<void> start();
    void stop();
    void take(const ChangeSet &changes);
    void follow(const ChangeSet &changes);
    std::vector<qint64> keysAfter(const ChangeSet &changes) const;
    std::vector<RowChange> stepsTo(const std::vector<qint64> &after,
                                   const UpdatedRecords::Keys &updated) const;
    void tell(std::vector<qint64> after, const std::vector<RowChange> &steps);

    FetchedResultsController &q;
    QPointer<ManagedObjectContext> context;
    const FetchRequest request;
    const int entity;
    std::vector<qint64> keys;

    // What performFetch() sets up.
    Region region;
    std::optional<UpdatedRecords> updatedRecords;
    std::unique_ptr<BatchFaultingCache> objects;
    QMetaObject::Connection changesConnection;

    bool telling = false;
    std::deque<ChangeSet> toFollow; ///< Told by the context while these rows were being told.
};

Result<void> FetchedResultsController::Private::start()
{
    const ObjectModel &model = context->container().model();
    Result<Region> depends = Region::of(model, request);
    if (!depends)
        return failure(std::move(depends).error());
    Result<UpdatedRecords> updates = UpdatedRecords::of(model, request);
    if (!updates)
        return failure(std::move(updates).error());
    Result<std::vector<qint64>> found = context->fetchKeys(request);
    if (!found)
        return failure(std::move(found).error());
    keys = std::move(*found);
    region = std::move(*depends);
    updatedRecords = std::move(*updates);
    objects = std::make_unique<BatchFaultingCache>(*context, entity,
                                                   request.relationshipKeyPathsForPrefetching);
    changesConnection = connect(context, &ManagedObjectContext::objectsDidChange, &q,
                                [this](const ChangeSet &changes) { take(changes); });
    return {};
}

void FetchedResultsController::Private::stop()
{
    disconnect(changesConnection);
    objects.reset();
    keys.clear();
    toFollow.clear();
}

/// Whoever is told may edit and have that told at once: then the rows told first are told to the end.
void FetchedResultsController::Private::take(const ChangeSet &changes)
{
    toFollow.push_back(changes);
    if (telling)
        return;
    const QPointer<FetchedResultsController> alive(&q);
    while (alive && !toFollow.empty()) {
        const ChangeSet next = std::move(toFollow.front());
        toFollow.pop_front();
        follow(next);
    }
}

void FetchedResultsController::Private::follow(const ChangeSet &changes)
{
    const bool runsAgain = region.touches(changes);
    const UpdatedRecords::Keys updated = updatedRecords->among(changes, *context);
    if (!runsAgain && updated.isEmpty())
        return;
    for (const ObjectChange &change : changes.deleted) {
        if (change.id.entity == entity)
            objects->forget(change.id.key);
    }
    std::vector<qint64> after = runsAgain ? keysAfter(changes) : keys;
    const std::vector<RowChange> steps = stepsTo(after, updated);
    if (changes.isBulkChange(entity)) {
        for (const RowChange &step : steps) {
            if (step.type == RowChange::Type::Delete)
                objects->forget(step.key);
        }
    }
    if (!steps.empty())
        tell(std::move(after), steps);
}

/// What cannot be read now stays as it was, but for the records that are known to be gone.
std::vector<qint64> FetchedResultsController::Private::keysAfter(const ChangeSet &changes) const
{
    Result<std::vector<qint64>> found = context->fetchKeys(request);
    if (found)
        return std::move(*found);
    qCWarning(storeLog, "A list could not be brought up to date: %s",
              qUtf8Printable(found.error().description()));
    QSet<qint64> gone;
    for (const ObjectChange &change : changes.deleted) {
        if (change.id.entity == entity)
            gone.insert(change.id.key);
    }
    std::vector<qint64> left = keys;
    std::erase_if(left, [&](qint64 key) { return gone.contains(key); });
    return left;
}

std::vector<RowChange> FetchedResultsController::Private::stepsTo(
    const std::vector<qint64> &after, const UpdatedRecords::Keys &updated) const
{
    std::vector<RowChange> steps = listDiff(keys, after);
    if (updated.isEmpty())
        return steps;
    QSet<qint64> isNew;
    for (const RowChange &step : steps) {
        if (step.type == RowChange::Type::Insert)
            isNew.insert(step.key);
    }
    for (size_t row = 0; row < after.size(); ++row) {
        if (updated.contains(after[row]) && !isNew.contains(after[row]))
            steps.push_back({RowChange::Type::Update, int(row), -1, after[row]});
    }
    return steps;
}

void FetchedResultsController::Private::tell(std::vector<qint64> after,
                                             const std::vector<RowChange> &steps)
{
    // Someone who is told may drop these results: then there is nobody left to tell.
    const QPointer<FetchedResultsController> alive(&q);
    telling = true;
    Q_EMIT q.contentWillChange();
    if (!alive)
        return;
    keys = std::move(after);
    for (const RowChange &step : steps) {
        Q_EMIT q.objectDidChange(step);
        if (!alive)
            return;
    }
    Q_EMIT q.contentDidChange();
    if (alive)
        telling = false;
}

FetchedResultsController::FetchedResultsController(ManagedObjectContext &context,
                                                   FetchRequest request, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(*this, context, std::move(request)))
{
}

FetchedResultsController::~FetchedResultsController() = default;

const FetchRequest &FetchedResultsController::fetchRequest() const
{
    return d->request;
}

Result<void> FetchedResultsController::performFetch()
{
    require(!d->telling, "results are not fetched again while their changes are told");
    d->stop();
    if (!d->context)
        return failure(QStringLiteral("The journal is closed."));
    return d->start();
}

int FetchedResultsController::entity() const
{
    return d->entity;
}

int FetchedResultsController::count() const
{
    return int(d->keys.size());
}

const std::vector<qint64> &FetchedResultsController::fetchedKeys() const
{
    return d->keys;
}

ObjectID FetchedResultsController::idAt(int row) const
{
    require(row >= 0 && row < count(), "a row of the results");
    return {d->entity, d->keys[size_t(row)]};
}

int FetchedResultsController::rowOf(ObjectID id) const
{
    if (id.entity != d->entity)
        return -1;
    const auto found = std::find(d->keys.begin(), d->keys.end(), id.key);
    return found == d->keys.end() ? -1 : int(found - d->keys.begin());
}

std::shared_ptr<ManagedObject> FetchedResultsController::objectAt(int row)
{
    return objectAmong(d->keys, row);
}

std::shared_ptr<ManagedObject> FetchedResultsController::objectAmong(std::span<const qint64> rows,
                                                                     int row)
{
    return d->objects ? d->objects->object(rows, row) : nullptr;
}

Result<QList<std::shared_ptr<ManagedObject>>> FetchedResultsController::fetchedObjects()
{
    if (!d->context || d->keys.empty())
        return QList<std::shared_ptr<ManagedObject>>();
    auto objects = d->context->objects(d->entity, d->keys);
    if (!objects)
        return objects;
    const auto &prefetched = d->request.relationshipKeyPathsForPrefetching;
    if (const Result<void> done = d->context->prefetch(*objects, prefetched); !done)
        return failure(done.error());
    return objects;
}

} // namespace tembra
