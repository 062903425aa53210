#pragma once

#include "Foundation/Result.h"
#include "Store/File/StoreFault.h"

#include <QByteArray>
#include <QString>

#include <memory>

struct sqlite3;

namespace tembra {

class Statement;

/// One SQLite connection, set up the one way this program uses it: WAL, no spilling of the cache,
/// no mapping of the file, foreign keys on, untrusted schema, no checkpoints of its own, never
/// waiting on a lock. Used on one thread at a time.
class Connection
{
public:
    enum class Mode {
        Create, ///< Made when missing, readable and writable by the user alone.
        ReadWrite,
        InMemory, ///< Empty, without a file, and gone when it is closed.
        WithoutLog, ///< The same as ReadOnly, but of the file alone, whatever log stands beside it.
        ReadOnly ///< Leaves the file, its companions and its directory exactly as they are. Takes
        ///< what is in the write-ahead log into account; then nobody else may use the file.
    };

    static StoreResult<std::unique_ptr<Connection>> open(const QString &file, Mode mode,
                                                         const QByteArray &vfs = {});
    /// What another connection sees, for reading; needs nothing of the file's name.
    static StoreResult<std::unique_ptr<Connection>> copyInMemory(const Connection &source);
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
    /// Not within a transaction: SQLite changes this between transactions only.
    void setEnforcesForeignKeys(bool enforces);

    /// Whether the file and its log are still those that were opened: nobody has removed or replaced
    /// them, or a folder above them.
    bool isInPlace() const;
    const QString &file() const;
    sqlite3 *handle() const;

private:
    friend class Statement;
    friend class Transaction;
    struct Private;
    explicit Connection(std::unique_ptr<Private> d);
    static StoreResult<std::unique_ptr<Connection>> tryOpen(const QString &file, Mode mode,
                                                            const QByteArray &vfs);
    std::unique_ptr<Private> d;
};

} // namespace tembra
