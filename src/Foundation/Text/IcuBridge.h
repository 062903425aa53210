#pragma once

#include "Foundation/Time/Date.h"

#include <QString>

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <memory>

namespace tembra {

// What passes between Qt and ICU. For .cpp files only, so that no header spreads ICU's.

/// @p text for as long as it lives: nothing is copied.
icu::UnicodeString icuView(const QString &text);
QString fromIcu(const icu::UnicodeString &text);

/// The zone named @p id ("Europe/Berlin"): the system's if that is empty, UTC if there is none.
std::unique_ptr<icu::TimeZone> icuTimeZone(const QString &id);

/// The moment as ICU counts: whole milliseconds since 1970. Brought within 100 million days
/// (273,790 years) of 1970, so that no calendar overflows; NaN becomes 1970.
double icuMoment(Date date);

} // namespace tembra
