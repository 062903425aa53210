#pragma once

#include "Foundation/Result.h"
#include "Store/File/ReadTransaction.h"
#include "Store/Schema/ObjectID.h"
#include "Store/Schema/Value.h"

#include <QByteArray>

#include <functional>
#include <span>
#include <vector>

namespace tembra {

class ManagedObjectContext;

/// Reads the values of many records without making objects of them: for whoever goes through a whole
/// journal. Reads in one read transaction, which begins with every edit of its context written and
/// ends with this object; nothing may be edited in the context meanwhile. On the context's thread.
class RecordScan
{
public:
    /// Values by property number; without a value, missing.
    using RowVisitor = std::function<void(qint64 key, std::vector<Value> values)>;
    using PairVisitor = std::function<void(qint64 owner, qint64 other)>;

    /// Fails when there are edits that cannot be written, for then nobody can read them.
    static Result<RecordScan> of(ManagedObjectContext &context);

    /// Visits those of the records that exist, in no particular order.
    Result<void> records(const QByteArray &entityName, std::span<const qint64> keys,
                         const RowVisitor &visit);
    /// Visits the records of an entity whose to-one points to one of @p owners, in no particular order.
    Result<void> referring(const QByteArray &entityName, int toOneProperty,
                           std::span<const qint64> owners, const RowVisitor &visit);
    /// Visits what a to-many relationship of @p owners reaches.
    Result<void> related(const QByteArray &entityName, int toManyProperty,
                         std::span<const qint64> owners, const PairVisitor &visit);

private:
    RecordScan(ManagedObjectContext &context, ReadTransaction transaction)
        : m_context(&context)
        , m_transaction(std::move(transaction))
    {
    }

    ManagedObjectContext *m_context;
    ReadTransaction m_transaction;
};

} // namespace tembra
