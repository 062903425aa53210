#pragma once

#include "Foundation/Result.h"
#include "Store/Rows/KeyRanges.h"

#include <QByteArray>

#include <functional>

namespace tembra {

class ChangeTracker;
class Connection;
class LongTransactionWriter;
class ObjectModel;
class Transaction;

/// Deletes the records of ranges of keys, of whatever entity, with all their relationships; but not
/// those that other records still refer to. That is how an import is undone.
class KeyRangeDeleter
{
public:
    KeyRangeDeleter(const ObjectModel &schema, Connection &connection,
                    LongTransactionWriter &writer, ChangeTracker &changes);

    /// See ManagedObjectContext::deleteInserted().
    Result<void> run(const KeyRanges &keys, const std::function<bool(double)> &shouldContinue);

private:
    Result<void> deleteUnreferenced(Transaction &transaction, int entity, KeyRange keys);
    Result<void> runFor(Transaction &transaction, const QByteArray &sql, KeyRange keys);

    const ObjectModel &m_schema;
    Connection &m_connection;
    LongTransactionWriter &m_writer;
    ChangeTracker &m_changes;
};

} // namespace tembra
