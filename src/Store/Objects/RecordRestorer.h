#pragma once

#include "Foundation/Result.h"
#include "Store/File/StoredValue.h"
#include "Store/Schema/ObjectID.h"

#include <vector>

namespace tembra {

class ChangeTracker;
class ContextWriter;
class IdentityMap;
class PendingEdits;
class RecordArchive;
class RelationshipCache;
class RowWriter;
class ObjectModel;
class Transaction;
class UndoHistory;

/// Brings deleted records back under their old keys, with their links as far as these still lead
/// somewhere.
class RecordRestorer
{
public:
    struct Parts
    {
        const ObjectModel &schema;
        RowWriter &rows;
        const PendingEdits &edits;
        IdentityMap &objects;
        RelationshipCache &relationships;
        ChangeTracker &changes;
        ContextWriter &writer;
        UndoHistory *history; ///< Null when nothing is undone.
    };
    explicit RecordRestorer(const Parts &parts) : m(parts) {}

    /// Fails when the store cannot be written; then nothing came back.
    Result<void> restore(const RecordArchive &archive);

private:
    struct Restoration;

    Result<void> restoreRows(Transaction &transaction, const RecordArchive &archive,
                             Restoration &restoration);
    Result<void> restoreRow(Transaction &transaction, ObjectID id, std::vector<StoredValue> &row,
                            Restoration &restoration);
    Result<void> restoreLinks(Transaction &transaction, const RecordArchive &archive,
                              Restoration &restoration);
    bool exists(ObjectID id, Restoration &restoration);

    const Parts m;
};

} // namespace tembra
