#pragma once

#include "Foundation/Time/Date.h"

#include <QString>

#include <unicode/uversion.h>

#include <memory>

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace tembra {

/// Days as the user's calendar counts them, in the user's time zone: a day is from one hour to
/// the same hour of the next date, be it 23 or 25 hours long.
///
/// To the millisecond. Moments beyond 100 million days from 1970 count as that far.
class CalendarArithmetic
{
public:
    /// @p timeZoneId as "Europe/Berlin"; the system's time zone when empty.
    explicit CalendarArithmetic(const QString &timeZoneId = {});
    ~CalendarArithmetic();
    CalendarArithmetic(const CalendarArithmetic &) = delete;
    CalendarArithmetic &operator=(const CalendarArithmetic &) = delete;

    /// Complete days that passed between the two; negative when @p to is the earlier, 0 when one
    /// of them is no date (NaN).
    int completeDays(Date from, Date to) const;
    /// The next moment after @p now at which `completeDays(from, now)` changes; infinitely far
    /// when @p from is no date.
    Date momentDayCountChanges(Date from, Date now) const;
    /// The first moment of the next date.
    Date startOfNextDay(Date date) const;

private:
    std::unique_ptr<icu::Calendar> calendarAt(double moment) const;

    std::unique_ptr<const icu::Calendar> m_calendar;
};

} // namespace tembra
