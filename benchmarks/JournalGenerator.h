#pragma once

#include <QString>

namespace tembra {

/// Makes journals to measure on: 40 teammates, one of whom holds a tenth of the meetings; nine notes
/// a meeting, four of nine filled with about 150 characters in mixed scripts; a few tags. The same
/// journal for the same number of meetings.
namespace JournalGenerator {

constexpr int teammates = 40;
constexpr int tags = 60;

/// Makes the store "Vum.sqlite" in @p directory, unless it holds one already.
void make(const QString &directory, int sessions);

/// Where journals of this size are kept between runs: in the temporary folder.
QString cachedDirectory(int sessions);

} // namespace JournalGenerator

} // namespace tembra
