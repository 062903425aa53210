#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectID.h"
#include "Store/Schema/Value.h"

#include <QByteArray>

#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace tembra {

class Connection;
class Statement;
class ObjectModel;
struct ToManyDescription;
struct ToOneDescription;

/// Reads records and links from the store, as they are written there.
class RowReader
{
public:
    using Row = std::vector<Value>; ///< By property number.
    using RowVisitor = std::function<void(qint64 key, Row row)>;
    /// The current row of a statement: column 0 is the key, then come the values.
    using StoredRowVisitor = std::function<void(qint64 key, const Statement &row)>;
    using PairVisitor = std::function<void(qint64 owner, qint64 other)>;

    RowReader(const ObjectModel &schema, Connection &connection);

    /// Nothing when there is no such record.
    Result<std::optional<Row>> row(ObjectID id);
    /// Visits those of the records that exist, in no particular order.
    Result<void> rows(int entity, std::span<const qint64> keys, const RowVisitor &visit);
    /// The same, without decoding the values.
    Result<void> storedRows(int entity, std::span<const qint64> keys,
                            const StoredRowVisitor &visit);
    Row decode(const Statement &row, int entity) const { return readRow(row, entity, 1); }
    Result<bool> exists(ObjectID id);
    Result<bool> isLinked(const ToManyDescription &link, qint64 owner, qint64 other);

    /// Visits (owner, other) for every record that a to-many relationship of @p owners reaches.
    Result<void> related(const ToManyDescription &link, std::span<const qint64> owners,
                         const PairVisitor &visit);
    /// Visits the records whose to-one points to one of @p destinations.
    Result<void> referringRows(const ToOneDescription &column, std::span<const qint64> destinations,
                               const RowVisitor &visit);
    /// The same, without decoding the values.
    Result<void> storedReferrers(const ToOneDescription &column,
                                 std::span<const qint64> destinations,
                                 const StoredRowVisitor &visit);
    /// Visits (record, destination) for every record whose to-one points to one of @p destinations.
    Result<void> referrers(const ToOneDescription &column, std::span<const qint64> destinations,
                           const PairVisitor &visit);

private:
    struct EntityStatements
    {
        QByteArray columns; ///< "a","b","c"
        Statement *row = nullptr;
        Statement *exists = nullptr;
    };

    Result<void> rowsOf(int entity, const QByteArray &column, std::span<const qint64> keys,
                        const StoredRowVisitor &visit);
    StoredRowVisitor decoding(int entity, const RowVisitor &visit) const;
    Result<void> pairs(const QByteArray &sql, std::span<const qint64> keys,
                       const PairVisitor &visit);
    Row readRow(const Statement &statement, int entity, int firstColumn) const;

    const ObjectModel &m_schema;
    Connection &m_connection;
    std::vector<EntityStatements> m_statements;
};

} // namespace tembra
