#pragma once

#include "Foundation/Result.h"
#include "Store/Query/FetchStatement.h"
#include "Store/Rows/RowReader.h"
#include "Store/Schema/ObjectModel.h"

#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tembra {

class Connection;
class RecordArchive;
class Transaction;

/// Rows that a large deletion leaves in the store for a moment: their owners are gone, and so are
/// they for everyone who asks the context. They are deleted piece by piece, so that nobody waits
/// for them. A table of the store names the owners until then: what a killed program did not get
/// to is deleted before the store is used again.
class LeftoverRows
{
public:
    /// With fewer owners everything is deleted at once.
    static constexpr size_t fewestOwners = 1000;

    LeftoverRows(const ObjectModel &schema, Connection &connection, RowReader &reader);

    /// Whether records that refer to others by @p column may be left: nothing refers to them, and
    /// they to nothing else.
    static bool canBeLeft(const ObjectModel &schema, const ToOneDescription &column);

    /// Names the owners in the store. To be called within the transaction that deletes them.
    Result<void> leave(Transaction &transaction, const ToOneDescription &column,
                       std::span<const qint64> owners);
    /// Takes over what was left, once that transaction is committed. The rows go into @p archive
    /// before they are deleted, if it still exists by then.
    void add(const ToOneDescription &column, std::vector<qint64> owners,
             std::weak_ptr<RecordArchive> archive);

    bool isEmpty() const { return m_parts.empty(); }
    bool isEmpty(int entity) const;
    bool includes(ObjectID id, const RowReader::Row &row) const;
    /// What queries for records of @p entity have to leave out.
    std::optional<HiddenRecords> hidden(int entity) const;

    /// Deletes some more, in a transaction of its own.
    Result<void> deletePiece();

    /// Deletes all that the store names, whatever its schema version.
    static Result<void> deleteAll(Connection &connection);

private:
    struct Part
    {
        ToOneDescription column;
        std::vector<qint64> owners; ///< Ascending.
        std::weak_ptr<RecordArchive> archive;
        size_t done = 0; ///< How many of the owners need no more looking at.
    };

    Result<void> deleteRowsOf(const ToOneDescription &column, std::span<const qint64> owners,
                              bool isLast);

    const ObjectModel &m_schema;
    Connection &m_connection;
    RowReader &m_reader;
    std::deque<Part> m_parts;
};

} // namespace tembra
