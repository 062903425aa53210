#include "Store/File/Transaction.h"

#include "Store/File/CheckpointId.h"
#include "Store/File/ConnectionPrivate.h"
#include "Store/File/StoreMeta.h"

#include <sqlite3.h>

namespace tembra {

namespace {

/// SQLite refuses to change this inside of a transaction.
Result<void> setWaitsForDisk(Connection &connection, bool waits)
{
    return connection.execute(waits ? "PRAGMA synchronous=FULL" : "PRAGMA synchronous=NORMAL");
}

/// What is written to a file without a name is lost with the program.
Result<void> checkInPlace(const Connection &connection)
{
    if (connection.isInPlace())
        return {};
    return failure(QStringLiteral(
                       "The journal “%1” was removed, moved or replaced while Tembra was using it. "
                       "Put it back, "
                       "or keep what you see here: choose File > Create Backup before you quit.")
                       .arg(connection.file()),
                   QStringLiteral("the path leads to another file than the one that is open"));
}

} // namespace

Result<Transaction> Transaction::begin(Connection &connection, Durability durability)
{
    const bool isDurable = durability == Durability::Durable;
    if (isDurable && connection.d->logIsSuspect) {
        if (auto saved = connection.checkpoint(); !saved)
            return failure(saved.error());
    }
    Transaction transaction(connection, durability);
    auto begun = isDurable ? setWaitsForDisk(connection, true) : Result<void>();
    begun = begun.and_then([&] { return connection.execute("BEGIN IMMEDIATE"); });
    if (!begun)
        return failure(begun.error());
    return transaction;
}

Transaction::Transaction(Connection &connection, Durability durability)
    : m_connection(&connection)
    , m_durability(durability)
{
}

Transaction::Transaction(Transaction &&other) noexcept
    : m_connection(std::exchange(other.m_connection, nullptr))
    , m_durability(other.m_durability)
    , m_broken(other.m_broken)
{
}

Transaction::~Transaction()
{
    finish();
}

Result<void> Transaction::run(Statement &statement)
{
    return runStep([&] { return statement.run(); });
}

Result<void> Transaction::execute(const QByteArray &sql)
{
    return runStep([&] { return m_connection->execute(sql); });
}

template<typename Step>
Result<void> Transaction::runStep(Step &&step)
{
    if (m_connection && !m_broken && m_connection->inTransaction()) {
        auto done = step();
        m_broken = !done && m_connection->lastFault() != StoreFault::Constraint;
        return done;
    }
    m_broken = true;
    return failure(
        QStringLiteral(
            "The changes could not be written to the journal. They are kept; try again."),
        QStringLiteral("the transaction was rolled back before"));
}

Result<void> Transaction::commit()
{
    auto committed = tryCommit();
    if (!committed && m_connection)
        m_connection->d->logIsSuspect |= sqlite3_extended_errcode(m_connection->handle())
                                         == SQLITE_IOERR_FSYNC;
    finish();
    return committed;
}

Result<void> Transaction::tryCommit()
{
    if (m_durability == Durability::Durable) {
        if (auto stamped = execute(StoreMeta::stampSave); !stamped)
            return stamped;
        if (auto inPlace = runStep([this] { return checkInPlace(*m_connection); }); !inPlace)
            return inPlace;
    }
    return runStep([this] { return repeatCheckpointId(*m_connection); }).and_then([this] {
        return execute("COMMIT");
    });
}

/// Rolls back what was not committed. Keeps lastFault(): callers ask for it after this object is gone.
void Transaction::finish()
{
    if (!m_connection)
        return;
    Connection &connection = *std::exchange(m_connection, nullptr);
    const StoreFault fault = connection.lastFault();
    if (connection.inTransaction())
        (void)connection.execute("ROLLBACK");
    if (m_durability == Durability::Durable)
        (void)setWaitsForDisk(connection, false);
    connection.d->lastFault = fault;
}

} // namespace tembra
