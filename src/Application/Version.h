#pragma once

#include <QString>

namespace tembra {

/// The version of this program, as in "1.2.0".
QString programVersion();

} // namespace tembra
