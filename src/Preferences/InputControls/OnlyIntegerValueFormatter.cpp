#include "Preferences/InputControls/OnlyIntegerValueFormatter.h"

#include <algorithm>

namespace tembra {

bool OnlyIntegerValueFormatter::isPartialStringValid(const QString &text)
{
    if (text.isEmpty())
        return true;
    const bool hasSign = text.front() == u'+' || text.front() == u'-';
    const QStringView digits = QStringView(text).mid(hasSign ? 1 : 0);
    const bool onlyDigits = std::all_of(digits.begin(), digits.end(), [](QChar character) {
        return character >= u'0' && character <= u'9';
    });
    if (digits.isEmpty() || !onlyDigits)
        return false;
    bool fits = false;
    text.toLongLong(&fits);
    return fits;
}

QValidator::State OnlyIntegerValueFormatter::validate(QString &text, int &) const
{
    return isPartialStringValid(text) ? Acceptable : Invalid;
}

} // namespace tembra
