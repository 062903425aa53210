#pragma once

#include "Foundation/Result.h"

#include <QByteArray>

namespace tembra {

class Connection;
class Statement;

/// A write transaction: BEGIN IMMEDIATE when made, ROLLBACK unless committed. Before every
/// statement it makes sure that the transaction still stands, so that nothing is ever committed
/// by itself after SQLite rolled back on its own (disk full, I/O error).
///
/// After a statement failed, commit() fails too: half of the work is never kept. A broken rule of
/// the schema (Constraint) is the exception, as it undoes its own statement and nothing else.
class Transaction
{
public:
    enum class Durability {
        Draft, ///< The commit does not wait for the disk.
        Durable ///< The commit returns when the disk has this and every commit before it.
    };

    /// Fails at once while another connection writes (lastFault() is then Busy). A durable one
    /// needs the store's own table (StoreMeta.h) by the time it commits.
    static Result<Transaction> begin(Connection &connection, Durability durability);
    Transaction(Transaction &&other) noexcept;
    Transaction &operator=(Transaction &&) = delete;
    ~Transaction();

    Result<void> run(Statement &statement);
    Result<void> execute(const QByteArray &sql);
    /// When it fails nothing of the transaction is kept.
    Result<void> commit();

private:
    Transaction(Connection &connection, Durability durability);
    template<typename Step>
    Result<void> runStep(Step &&step);
    Result<void> tryCommit();
    void finish();

    Connection *m_connection;
    Durability m_durability;
    bool m_broken = false;
};

} // namespace tembra
