#pragma once

#include "Foundation/Result.h"
#include "Store/File/StoredValue.h"
#include "Store/Objects/ChangeSet.h"
#include "Store/Schema/ObjectID.h"
#include "Store/Schema/Value.h"

#include <QHash>

#include <span>
#include <vector>

namespace tembra {

class Connection;
class Statement;
class ObjectModel;
class Transaction;
struct ToManyDescription;
struct ToOneDescription;

/// Writes records and links, within a transaction of the caller's. A to-one and a link to a record
/// that has vanished are written as missing, so that one lost record never blocks what else is to
/// be written.
class RowWriter
{
public:
    RowWriter(const ObjectModel &schema, Connection &connection);

    Result<void> insertRow(Transaction &transaction, ObjectID id, const std::vector<Value> &values);
    /// Inserts a row whose to-ones lead to records that are there.
    Result<void> restoreRow(Transaction &transaction, ObjectID id,
                            std::span<const StoredValue> values);
    /// False when there is no such record any more.
    Result<bool> updateRow(Transaction &transaction, ObjectID id, PropertyMask columns,
                           const std::vector<Value> &values);
    Result<void> deleteRows(Transaction &transaction, int entity, std::span<const qint64> keys);
    /// Deletes the records whose to-one points to one of @p destinations.
    Result<void> deleteReferrers(Transaction &transaction, const ToOneDescription &column,
                                 std::span<const qint64> destinations);

    Result<void> addLink(Transaction &transaction, const ToManyDescription &link, qint64 owner,
                         qint64 other);
    Result<void> removeLink(Transaction &transaction, const ToManyDescription &link, qint64 owner,
                            qint64 other);
    Result<void> removeLinks(Transaction &transaction, const ToManyDescription &link,
                             std::span<const qint64> owners);

private:
    QByteArray placeholder(int entity, int property) const;
    enum class ToOnes { Checked, Plain };
    Result<Statement *> insertStatement(int entity, ToOnes toOnes);
    Result<Statement *> updateStatement(int entity, PropertyMask columns);
    Result<void> runForKeys(Transaction &transaction, const QByteArray &sql,
                            std::span<const qint64> keys);

    const ObjectModel &m_schema;
    Connection &m_connection;
    std::vector<Statement *> m_inserts; ///< By entity, with to-ones checked; then plain ones.
    std::vector<QHash<PropertyMask, Statement *>> m_updates;
};

} // namespace tembra
