#pragma once

namespace tembra {

/// Stops the program, in every build, when @p condition does not hold: a programming error.
/// @p reason says in one line what was expected.
void require(bool condition, const char *reason);

/// Stops the program with @p reason.
[[noreturn]] void fatal(const char *reason);

} // namespace tembra
