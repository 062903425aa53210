#pragma once

#include <QMetaType>

#include <compare>
#include <optional>

namespace tembra {

/// A moment: seconds, with fractions, since 2001-01-01T00:00:00 UTC.
///
/// Kept as a double from the store to the screen, because QDateTime would cut it to milliseconds
/// and a date must come out of a backup exactly as it went in.
struct Date
{
    double secondsSinceReferenceDate = 0;

    /// The moment @p seconds later (earlier when negative).
    constexpr Date adding(double seconds) const { return {secondsSinceReferenceDate + seconds}; }

    /// From and to milliseconds since 1970-01-01T00:00:00 UTC, as ICU and the system clock count.
    static constexpr Date fromUnixMilliseconds(double milliseconds)
    {
        return {milliseconds / 1000.0 - unixToReference};
    }
    constexpr double toUnixMilliseconds() const
    {
        return (secondsSinceReferenceDate + unixToReference) * 1000.0;
    }

    friend constexpr auto operator<=>(const Date &, const Date &) = default;

private:
    static constexpr double unixToReference = 978307200.0;
};

/// A date attribute: every attribute of a record may be missing.
using OptionalDate = std::optional<Date>;

} // namespace tembra

Q_DECLARE_METATYPE(tembra::Date)
Q_DECLARE_METATYPE(tembra::OptionalDate)
