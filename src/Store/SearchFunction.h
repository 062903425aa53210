#pragma once

#include "Foundation/Result.h"

struct sqlite3;

namespace tembra {

/// The SQL function behind CONTAINS[cd]: `text_contains(text, needle)` is 1 when the text contains
/// the needle without regard to case and diacritics, else 0; NULL contains nothing and is nowhere.
namespace SearchFunction {

constexpr char name[] = "text_contains";

/// Makes the function known to a connection, for as long as that is open.
Result<void> registerOn(sqlite3 *connection);

} // namespace SearchFunction

} // namespace tembra
