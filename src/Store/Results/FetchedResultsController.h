#pragma once

#include "Foundation/Result.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/RowChange.h"
#include "Store/Query/FetchRequest.h"

#include <QObject>

#include <memory>
#include <span>
#include <vector>

namespace tembra {

struct ChangeSet;
class ManagedObjectContext;

/// The live result of a fetch request: keeps the keys of the records that answer it, and tells row
/// by row how they change. Runs again at most once per turn of the event loop, and only when a
/// change touches what the request depends on. A row is updated when an attribute or to-one of its
/// record changed, or a relationship that the request prefetches, or a record at its end.
///
/// The context may go before its results; these then stay as they are and load nothing more.
class FetchedResultsController : public QObject
{
    Q_OBJECT

public:
    FetchedResultsController(ManagedObjectContext &context, FetchRequest request,
                             QObject *parent = nullptr);
    ~FetchedResultsController() override;

    const FetchRequest &fetchRequest() const;

    /// Runs the request and follows it from here on. On failure there are no rows, and there is no
    /// further following. Tells nothing: what was there before is replaced as a whole.
    Result<void> performFetch();

    int entity() const; ///< Of the results, as numbered in the model.
    int count() const;
    const std::vector<qint64> &fetchedKeys() const;
    ObjectID idAt(int row) const;
    int rowOf(ObjectID id) const; ///< -1 when it is not among the results.
    /// The object of a row; rows around it are loaded in the same batch.
    /// Null when the record has vanished and the rows do not know it yet.
    std::shared_ptr<ManagedObject> objectAt(int row);
    /// As objectAt(), among rows that someone shows while they are not the latest ones.
    std::shared_ptr<ManagedObject> objectAmong(std::span<const qint64> rows, int row);
    /// The objects of all rows, which the caller then holds. Fails when they cannot be read: then
    /// there may be rows all the same.
    Result<QList<std::shared_ptr<ManagedObject>>> fetchedObjects();

Q_SIGNALS:
    /// The rows are about to change; they are the old ones here, and the new ones from here on.
    void contentWillChange();
    void objectDidChange(const tembra::RowChange &change);
    /// The end of a batch of objectDidChange().
    void contentDidChange();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace tembra
