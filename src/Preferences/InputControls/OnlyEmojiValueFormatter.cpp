#include "Preferences/InputControls/OnlyEmojiValueFormatter.h"

#include <QChar>
#include <QList>

#include <algorithm>

namespace tembra {

namespace {

bool isAlphanumeric(uint character)
{
    return QChar::isLetterOrNumber(character) || QChar::isMark(character);
}

bool isPunctuation(uint character)
{
    return QChar::isPunct(character);
}

} // namespace

bool OnlyEmojiValueFormatter::isPartialStringValid(const QString &text)
{
    if (text.isEmpty())
        return true;
    const QList<uint> characters = text.toUcs4();
    return !std::ranges::all_of(characters, isAlphanumeric)
           && !std::ranges::all_of(characters, isPunctuation);
}

bool OnlyEmojiValueFormatter::getObjectValue(QVariant &object, const QString &text)
{
    object = text;
    return true;
}

QString OnlyEmojiValueFormatter::stringForObjectValue(const QVariant &object)
{
    return object.userType() == QMetaType::QString ? object.toString() : QString();
}

QValidator::State OnlyEmojiValueFormatter::validate(QString &text, int &) const
{
    return isPartialStringValid(text) ? Acceptable : Invalid;
}

} // namespace tembra
