#include "Foundation/Time/UserRegion.h"

#include <QTimeZone>

#include <unicode/locid.h>

namespace tembra {

namespace {

/// The first of the variables that is set decides; an empty one counts as not set.
QByteArray localeOfEnvironment()
{
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        QByteArray value = qgetenv(variable);
        if (!value.isEmpty())
            return value;
    }
    return "C";
}

} // namespace

UserRegion UserRegion::current()
{
    // "de_DE.UTF-8@euro": the language and country are all that counts here.
    const QByteArray name = localeOfEnvironment().split('.').first().split('@').first();
    // ICU knows these two only as the default of a program.
    const bool isPosix = name == "C" || name == "POSIX";
    const auto locale = icu::Locale::createCanonical(isPosix ? "en_US_POSIX" : name.constData());
    return {QString::fromLatin1(locale.getName()),
            QString::fromLatin1(QTimeZone::systemTimeZoneId())};
}

} // namespace tembra
