#pragma once

#include "Foundation/Time/Date.h"

#include <QMap>
#include <QString>

#include <unicode/uversion.h>

#include <memory>

U_NAMESPACE_BEGIN
class Calendar;
class DateFormat;
U_NAMESPACE_END

namespace tembra {

class Clock;

/// The formats in which the user reads dates. Costly to make and cheap to use: keep one.
///
/// A date that is none (NaN, infinite) is the empty text; one beyond 273,790 years is shown as
/// the farthest one.
class DateFormatting
{
public:
    /// @p localeName as ICU names locales ("de_DE"); @p timeZoneId as "Europe/Berlin", the system's
    /// time zone when empty; @p clock decides which day is today and outlives this.
    DateFormatting(const QString &localeName, const QString &timeZoneId, const Clock &clock);
    ~DateFormatting();
    DateFormatting(const DateFormatting &) = delete;
    DateFormatting &operator=(const DateFormatting &) = delete;

    /// "Nov 19, 2026" in the locale's medium style, or its word for a day near today ("Yesterday").
    QString displayDate(Date date) const;
    /// Day and month in two digits each, in the locale's order: "07/03", "07.03.".
    QString dayAndMonth(Date date) const;

private:
    int daysFromToday(Date date) const;

    const Clock &m_clock;
    std::unique_ptr<const icu::Calendar> m_calendar;
    std::unique_ptr<const icu::DateFormat> m_mediumFormat;
    std::unique_ptr<const icu::DateFormat> m_dayAndMonthFormat;
    QMap<int, QString> m_relativeWords; ///< By the number of days from today.
};

} // namespace tembra
