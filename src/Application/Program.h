#pragma once

namespace tembra {

/// The whole program: reads the command line, starts, runs until the user quits. Returns the exit
/// status: 0, 1 when the journal cannot be opened or a backup to verify is none, 2 when the command
/// line is wrong.
int runProgram(int argc, char *argv[]);

} // namespace tembra
