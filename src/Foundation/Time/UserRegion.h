#pragma once

#include <QString>

namespace tembra {

/// Where and how the user reads dates, by the names ICU knows.
struct UserRegion
{
    QString localeName; ///< "de_DE"
    QString timeZoneId; ///< "Europe/Berlin"

    /// As the desktop is set: the environment's LC_ALL, LC_TIME or LANG, and the system's time zone.
    static UserRegion current();
};

} // namespace tembra
