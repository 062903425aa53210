#pragma once

#include "Foundation/Result.h"
#include "Store/File/StoreFault.h"
#include "Store/Schema/Value.h"

#include <QByteArray>
#include <QString>

#include <memory>

struct sqlite3;

namespace tembra {

/// A prepared statement, kept by its Connection and used again. Reset after use: a cursor left
/// open would keep the connection from writing.
class Statement
{
public:
    ~Statement();

    /// Binds to the place holder @p index, counted from 1. Texts may hold U+0000; a lone surrogate
    /// is stored as U+FFFD. A value that cannot be bound makes the next step() or run() fail.
    void bind(int index, const Value &value);
    void bindKey(int index, qint64 key);

    /// True while there is a row to read; false at the end (the statement is then reset).
    Result<bool> step();
    /// Ready to run again, with the same values bound.
    void reset();
    /// Steps to the end, for statements without rows.
    Result<void> run();

    // The current row; columns are counted from 0.
    qint64 key(int column) const; ///< 0 when it is NULL.
    Value value(int column) const;

private:
    friend class Connection;
    struct Private;
    explicit Statement(std::unique_ptr<Private> d);
    std::unique_ptr<Private> d;
};

/// One SQLite connection, set up the one way this program uses it: WAL, no spilling of the cache,
/// no mapping of the file, foreign keys on, untrusted schema, no checkpoints of its own, never
/// waiting on a lock. Used on one thread at a time.
class Connection
{
public:
    enum class Mode {
        Create, ///< Made when missing, readable and writable by the user alone.
        ReadWrite,
        ReadOnly ///< Leaves the file, its companions and its directory exactly as they are. Takes
        ///< what is in the write-ahead log into account; then nobody else may use the file.
    };

    static Result<std::unique_ptr<Connection>> open(const QString &file, Mode mode,
                                                    const QByteArray &vfs = {});
    ~Connection();

    /// The statement of this text, prepared at its first use, reset and with nothing bound. Owned
    /// by the connection and kept, so values belong into place holders.
    Result<Statement *> prepare(const QByteArray &sql);
    /// Runs statements without results.
    Result<void> execute(const QByteArray &sql);

    /// False outside of a transaction: also after an error made SQLite roll the whole one back.
    bool inTransaction() const;
    /// Rows that the last INSERT, UPDATE or DELETE touched.
    int changedRows() const;
    /// What kind of failure the last failed call here, on a statement or a transaction was.
    StoreFault lastFault() const;

    /// Copies everything committed into the file and empties the write-ahead log. Fails (Busy)
    /// while another connection reads or writes.
    Result<void> checkpoint();
    /// Copies as much of what is committed into the file as can be done without waiting for anybody
    /// or making anybody wait.
    void checkpointAsFarAsPossible();
    /// Whether closing the last connection of the file does a checkpoint too. It does, unless told not to.
    void setCheckpointsOnClose(bool checkpoints);

    const QString &file() const;
    sqlite3 *handle() const;

private:
    friend class Statement;
    friend class Transaction;
    struct Private;
    explicit Connection(std::unique_ptr<Private> d);
    std::unique_ptr<Private> d;
};

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
