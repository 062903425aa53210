#pragma once

#include "Foundation/Result.h"

namespace tembra {

class Connection;

/// A read transaction: while it lasts, all reads of the connection see the store as it was when it
/// began, whatever other connections commit. Blocks nobody. The connection writes nothing
/// meanwhile, except in a write transaction that was open before: that one then serves as well.
class ReadTransaction
{
public:
    static Result<ReadTransaction> begin(Connection &connection);
    ReadTransaction(ReadTransaction &&other) noexcept;
    ReadTransaction &operator=(ReadTransaction &&) = delete;
    ~ReadTransaction();

private:
    explicit ReadTransaction(Connection *connection) : m_connection(connection) {}

    Connection *m_connection; ///< Null when there is nothing to end.
};

} // namespace tembra
