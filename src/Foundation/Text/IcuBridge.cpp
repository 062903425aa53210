#include "Foundation/Text/IcuBridge.h"

#include <algorithm>
#include <cmath>

namespace tembra {

icu::UnicodeString icuView(const QString &text)
{
    const QStringView view(text);
    return {false, view.utf16(), int32_t(view.size())};
}

QString fromIcu(const icu::UnicodeString &text)
{
    return QStringView(text.getBuffer(), text.length()).toString();
}

std::unique_ptr<icu::TimeZone> icuTimeZone(const QString &id)
{
    return std::unique_ptr<icu::TimeZone>(
        id.isEmpty() ? icu::TimeZone::createDefault() : icu::TimeZone::createTimeZone(icuView(id)));
}

double icuMoment(Date date)
{
    constexpr double millisecondsPerDay = 86'400'000;
    constexpr double farthest = 100'000'000 * millisecondsPerDay;
    const double milliseconds = date.toUnixMilliseconds();
    if (std::isnan(milliseconds))
        return 0;
    // Rounded, for seconds since 2001 hold a whole millisecond only up to a fraction of one.
    return std::round(std::clamp(milliseconds, -farthest, farthest));
}

} // namespace tembra
