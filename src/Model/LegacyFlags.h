#pragma once

#include <QString>

namespace tembra {

class DefaultsManager;

/// The emoji that old journals showed for a numbered flag: the user's own, else the default of
/// 1 to 6, else empty for 0. Null for values that never had one.
QString legacyFlagEmoji(int flag, const DefaultsManager &defaults);

} // namespace tembra
