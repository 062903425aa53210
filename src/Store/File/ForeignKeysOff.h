#pragma once

#include <QtGlobal>

struct sqlite3;

namespace tembra {

class Connection;

/// Lets the foreign keys of a connection go unchecked while it exists. To be made before the
/// transaction that it is for, and to outlive it: SQLite changes this between transactions only.
class ForeignKeysOff
{
public:
    explicit ForeignKeysOff(Connection &connection);
    ~ForeignKeysOff();
    Q_DISABLE_COPY_MOVE(ForeignKeysOff)

private:
    sqlite3 *m_handle;
};

} // namespace tembra
