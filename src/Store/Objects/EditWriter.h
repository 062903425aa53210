#pragma once

#include "Foundation/Result.h"
#include "Store/Objects/IdentityMap.h"

namespace tembra {

class Connection;
class IdAllocator;
class PendingEdits;
class RowWriter;
class Transaction;

/// Writes the pending edits of a context in a transaction of its caller's.
class EditWriter
{
public:
    EditWriter(const ObjectModel &schema, RowWriter &rows, Connection &connection,
               const IdAllocator &ids, PendingEdits &edits, IdentityMap &objects);

    const PendingEdits &edits() const { return m_edits; }
    Connection &connection() const { return m_connection; }

    /// Returns the edited records that were deleted elsewhere: what was deleted stays deleted.
    Result<std::vector<ObjectID>> write(Transaction &transaction);
    /// To be called once what was written is committed: nothing is pending any more. Returns the
    /// objects of the @p vanished records for IdentityMap::notifyDeleted().
    IdentityMap::ObjectList didCommit(const std::vector<ObjectID> &vanished);
    /// Gives up what is pending.
    void discard();

private:
    Result<void> writeRecords(Transaction &transaction, std::vector<ObjectID> &vanished);
    Result<void> writeLinks(Transaction &transaction);

    const ObjectModel &m_schema;
    RowWriter &m_rows;
    Connection &m_connection;
    const IdAllocator &m_ids;
    PendingEdits &m_edits;
    IdentityMap &m_objects;
};

} // namespace tembra
