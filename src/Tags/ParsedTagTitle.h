#pragma once

#include <QString>

namespace tembra {

/// The name and the emoji that a typed text gives to a tag. An emoji at its end is the tag's emoji.
struct ParsedTagTitle
{
    QString name;
    QString emoji; ///< Null when the text does not end in one.

    static ParsedTagTitle parse(const QString &text);
};

} // namespace tembra
