#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectID.h"

#include <vector>

namespace tembra {

class ChangeTracker;
class ContextWriter;
class DeletionPlan;
class IdentityMap;
class PendingEdits;
class RelationshipCache;
class RowReader;
class RowWriter;
class ObjectModel;
class Transaction;
class UndoHistory;

/// Deletes records with all that cascades from them, in one transaction.
class RecordDeleter
{
public:
    struct Parts
    {
        const ObjectModel &schema;
        RowReader &reader;
        RowWriter &rows;
        const PendingEdits &edits;
        IdentityMap &objects;
        RelationshipCache &relationships;
        ChangeTracker &changes;
        ContextWriter &writer;
        UndoHistory *history; ///< Null when nothing is undone.
    };
    explicit RecordDeleter(const Parts &parts) : m(parts) {}

    /// See ManagedObjectContext::deleteObjects().
    Result<void> deleteRecords(const std::vector<ObjectID> &roots);

private:
    struct Deletion;

    Result<void> deleteCascading(Transaction &transaction, const std::vector<ObjectID> &roots,
                                 Deletion &deletion);
    Result<void> readRows(const DeletionPlan &plan, int entity, Deletion &deletion);
    void addVanished(const DeletionPlan &plan, int entity, std::vector<qint64> present,
                     Deletion &deletion);
    Result<void> readLinks(const DeletionPlan &plan, int entity, Deletion &deletion);
    Result<void> deleteRows(Transaction &transaction, const DeletionPlan &plan, int entity);
    void finish(Deletion &deletion);

    const Parts m;
};

} // namespace tembra
