#pragma once

#include <QString>

namespace tembra {

/// The last visible character of @p text (a grapheme cluster); nothing for an empty text.
QString lastGraphemeCluster(const QString &text);

/// Whether one visible character passes for an emoji where the user ends a name with one: its first
/// code point is shown as an emoji by itself, or it is a single symbol (general category So), or it
/// is several code points of which one joins others or selects a variation.
bool passesForEmoji(const QString &cluster);

} // namespace tembra
