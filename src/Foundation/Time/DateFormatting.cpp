#include "Foundation/Time/DateFormatting.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/IcuBridge.h"
#include "Foundation/Time/Clock.h"

#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <cmath>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

// Some languages have a word for three days from now, none for more.
constexpr int farthestRelativeDay = 4;

std::unique_ptr<icu::Calendar> dayCalendar(const icu::TimeZone &zone)
{
    UErrorCode status = U_ZERO_ERROR;
    auto calendar = std::make_unique<icu::GregorianCalendar>(zone, icu::Locale::getRoot(), status);
    require(U_SUCCESS(status), "ICU brings its calendar data");
    return calendar;
}

int dayNumber(const icu::Calendar &calendar, double moment)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> copy(calendar.clone());
    copy->setTime(moment, status);
    return copy->get(UCAL_JULIAN_DAY, status);
}

std::unique_ptr<icu::DateFormat> dateFormat(icu::DateFormat::EStyle style,
                                            const icu::Locale &locale, const icu::TimeZone &zone)
{
    std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateInstance(style, locale));
    require(format != nullptr, "ICU brings the data of its date formats");
    UErrorCode status = U_ZERO_ERROR;
    format->setContext(UDISPCTX_CAPITALIZATION_FOR_STANDALONE, status);
    format->setTimeZone(zone);
    return format;
}

std::unique_ptr<icu::DateFormat> formatOfTemplate(const char *fields, const icu::Locale &locale,
                                                  const icu::TimeZone &zone)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, status));
    require(U_SUCCESS(status), "ICU brings the data of its date patterns");
    const icu::UnicodeString pattern = generator->getBestPattern(fields, status);
    auto format = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
    require(U_SUCCESS(status), "ICU understands its own date pattern");
    format->setTimeZone(zone);
    return format;
}

QString formatted(const icu::DateFormat &format, double moment)
{
    icu::UnicodeString text;
    return fromIcu(format.format(moment, text));
}

/// The locale's words for the days around today. ICU's relative format measures from the
/// computer's clock and takes no other: so it is asked once, for days around the computer's own.
QMap<int, QString> relativeWords(const icu::Locale &locale)
{
    constexpr double millisecondsPerDay = 86'400'000;
    const icu::TimeZone &utc = *icu::TimeZone::getGMT();
    const auto calendar = dayCalendar(utc);
    const auto relative = dateFormat(icu::DateFormat::kMediumRelative, locale, utc);
    const auto plain = dateFormat(icu::DateFormat::kMedium, locale, utc);
    QMap<int, QString> words;
    double now = 0;
    do {
        words.clear();
        now = icu::Calendar::getNow();
        for (int day = -farthestRelativeDay; day <= farthestRelativeDay; ++day) {
            const double moment = now + day * millisecondsPerDay;
            const QString text = formatted(*relative, moment);
            if (text != formatted(*plain, moment))
                words.insert(day, text);
        }
    } while (dayNumber(*calendar, now)
             != dayNumber(*calendar, icu::Calendar::getNow())); // midnight passed
    return words;
}

/// ICU crashes on what is no locale name at all: that gives the formats of no language in particular.
icu::Locale namedLocale(const QString &name)
{
    const icu::Locale locale(name.toLatin1().constData());
    return locale.isBogus() ? icu::Locale::getRoot() : locale;
}

} // namespace

DateFormatting::DateFormatting(const QString &localeName, const QString &timeZoneId,
                               const Clock &clock)
    : m_clock(clock)
{
    const icu::Locale locale = namedLocale(localeName);
    const auto zone = icuTimeZone(timeZoneId);
    m_calendar = dayCalendar(*zone);
    m_mediumFormat = dateFormat(icu::DateFormat::kMedium, locale, *zone);
    m_dayAndMonthFormat = formatOfTemplate("ddMM", locale, *zone);
    m_relativeWords = relativeWords(locale);
}

DateFormatting::~DateFormatting() = default;

int DateFormatting::daysFromToday(Date date) const
{
    return dayNumber(*m_calendar, icuMoment(date))
           - dayNumber(*m_calendar, icuMoment(m_clock.now()));
}

QString DateFormatting::displayDate(Date date) const
{
    if (!std::isfinite(date.secondsSinceReferenceDate))
        return u""_s;
    const auto word = m_relativeWords.constFind(daysFromToday(date));
    return word != m_relativeWords.constEnd() ? *word : formatted(*m_mediumFormat, icuMoment(date));
}

QString DateFormatting::dayAndMonth(Date date) const
{
    if (!std::isfinite(date.secondsSinceReferenceDate))
        return u""_s;
    return formatted(*m_dayAndMonthFormat, icuMoment(date));
}

} // namespace tembra
