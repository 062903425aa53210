#include "Store/File/ForeignKeysOff.h"

#include "Store/File/Connection.h"

#include <sqlite3.h>

namespace tembra {

ForeignKeysOff::ForeignKeysOff(Connection &connection) : m_handle(connection.handle())
{
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_FKEY, 0, nullptr);
}

ForeignKeysOff::~ForeignKeysOff()
{
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
}

} // namespace tembra
