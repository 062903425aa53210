#pragma once

#include <QString>

namespace tembra {

/// The longest text that is measured and painted as one line, in UTF-16 units: more than the widest
/// screen holds.
constexpr qsizetype longestShownLine = 500;

/// @p text if it has at most @p longest UTF-16 units; else its beginning, cut before a visible
/// character, and an ellipsis. Costs the same for every longer text.
QString abbreviated(const QString &text, qsizetype longest = longestShownLine);

/// The abbreviated text with a blank for each line break, tab and form feed.
QString singleLine(const QString &text);

} // namespace tembra
