#include "Tags/TypedTag.h"

#include "Foundation/Text/TrailingEmoji.h"

namespace tembra {

TypedTag TypedTag::of(const QString &text)
{
    TypedTag typed{.name = text, .emoji = {}};
    const QString last = lastGraphemeCluster(text);
    if (passesForEmoji(last)) {
        typed.emoji = last;
        typed.name.chop(last.size());
    }
    if (!typed.name.isEmpty() && typed.name.back().isSpace())
        typed.name.chop(1);
    return typed;
}

} // namespace tembra
