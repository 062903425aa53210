#include "Tags/ParsedTagTitle.h"

#include "Foundation/Text/TrailingEmoji.h"

namespace tembra {

ParsedTagTitle ParsedTagTitle::parse(const QString &text)
{
    ParsedTagTitle title{.name = text, .emoji = {}};
    const QString last = lastGraphemeCluster(text);
    if (passesForEmoji(last)) {
        title.emoji = last;
        title.name.chop(last.size());
    }
    if (!title.name.isEmpty() && title.name.back().isSpace())
        title.name.chop(1);
    return title;
}

} // namespace tembra
