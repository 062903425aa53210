#pragma once

#include <QString>

namespace tembra {

/// @p text with every lone surrogate replaced by U+FFFD: as it can be stored. U+0000 stays, and so
/// does the difference between a missing (null) and an empty text.
QString wellFormedText(QString text);

} // namespace tembra
