#include "Foundation/Time/CalendarArithmetic.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/IcuBridge.h"

#include <unicode/gregocal.h>

#include <cmath>
#include <limits>

namespace tembra {

CalendarArithmetic::CalendarArithmetic(const QString &timeZoneId)
{
    UErrorCode status = U_ZERO_ERROR;
    auto calendar = std::make_unique<icu::GregorianCalendar>(*icuTimeZone(timeZoneId),
                                                             icu::Locale::getRoot(), status);
    require(U_SUCCESS(status), "ICU brings its calendar data");
    // Where the clocks go back over midnight, the date starts at the first of the two.
    calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    m_calendar = std::move(calendar);
}

CalendarArithmetic::~CalendarArithmetic() = default;

std::unique_ptr<icu::Calendar> CalendarArithmetic::calendarAt(double moment) const
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(m_calendar->clone());
    calendar->setTime(moment, status);
    return calendar;
}

int CalendarArithmetic::completeDays(Date from, Date to) const
{
    if (std::isnan(from.secondsSinceReferenceDate) || std::isnan(to.secondsSinceReferenceDate))
        return 0;
    UErrorCode status = U_ZERO_ERROR;
    return calendarAt(icuMoment(from))->fieldDifference(icuMoment(to), UCAL_DATE, status);
}

Date CalendarArithmetic::momentDayCountChanges(Date from, Date now) const
{
    if (std::isnan(from.secondsSinceReferenceDate) || std::isnan(now.secondsSinceReferenceDate))
        return {std::numeric_limits<double>::infinity()};
    const int days = completeDays(from, now);
    UErrorCode status = U_ZERO_ERROR;
    const auto calendar = calendarAt(icuMoment(from));
    // Days that lie ahead are complete up to and including their hour: one fewer right after it.
    const bool ahead = days < 0;
    calendar->add(UCAL_DATE, ahead ? days : days + 1, status);
    return Date::fromUnixMilliseconds(calendar->getTime(status) + (ahead ? 1 : 0));
}

Date CalendarArithmetic::startOfNextDay(Date date) const
{
    UErrorCode status = U_ZERO_ERROR;
    const auto calendar = calendarAt(icuMoment(date));
    calendar->add(UCAL_DATE, 1, status);
    calendar->set(UCAL_MILLISECONDS_IN_DAY, 0);
    return Date::fromUnixMilliseconds(calendar->getTime(status));
}

} // namespace tembra
