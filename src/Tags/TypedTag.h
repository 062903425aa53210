#pragma once

#include <QString>

namespace tembra {

/// What a text that was typed says about a tag: an emoji at its end is the tag's own.
struct TypedTag
{
    QString name;
    QString emoji; ///< Null when the text does not end in one.

    static TypedTag of(const QString &text);
};

} // namespace tembra
