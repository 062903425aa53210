#pragma once

#include "Foundation/Result.h"

struct sqlite3;

namespace tembra {

/// Defines the SQL function behind CONTAINS[cd] on a connection:
///
///     text_contains(text, needle)    1 or 0
///
/// It ignores case and diacritics. NULL contains nothing and is contained in nothing.
Result<void> registerSearchFunction(sqlite3 *connection);

} // namespace tembra
