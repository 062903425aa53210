#include "Store/File/ReadTransaction.h"

#include "Store/File/Connection.h"

#include <utility>

namespace tembra {

Result<ReadTransaction> ReadTransaction::begin(Connection &connection)
{
    if (connection.inTransaction())
        return ReadTransaction(nullptr);
    if (Result<void> begun = connection.execute("BEGIN"); !begun)
        return failure(std::move(begun).error());
    ReadTransaction transaction(&connection);
    // The moment is that of the first read.
    if (Result<void> read = connection.execute("SELECT 1 FROM sqlite_schema LIMIT 1"); !read)
        return failure(std::move(read).error());
    return transaction;
}

ReadTransaction::ReadTransaction(ReadTransaction &&other) noexcept
    : m_connection(std::exchange(other.m_connection, nullptr))
{
}

ReadTransaction::~ReadTransaction()
{
    // SQLite may have rolled it back by itself after an error.
    if (m_connection && m_connection->inTransaction())
        (void)m_connection->execute("ROLLBACK");
}

} // namespace tembra
