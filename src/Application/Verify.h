#pragma once

#include "Application/CommandLine.h"

namespace tembra {

/// What `tembra --verify PACKAGE` prints: how much is in a backup, or the first thing for which an
/// import would refuse it, with its place; in one line. Reads the package as an import does, and
/// nothing else.
PrintAndExit verifyPackage(const QString &package);

} // namespace tembra
