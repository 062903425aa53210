#pragma once

#include <QList>
#include <QString>

namespace tembra {

/// A stretch of a text, in UTF-16 units, that is all emoji or has none.
struct EmojiRun
{
    qsizetype start = 0;
    qsizetype length = 0;
    bool isEmoji = false;

    friend bool operator==(const EmojiRun &, const EmojiRun &) = default;
};

/// @p text in runs that alternate between emoji and other text and leave nothing out. A visible
/// character is an emoji if it begins with a pictograph (also ©, ® and ™) or a flag letter, or is
/// a keycap; a digit by itself is none.
QList<EmojiRun> emojiRuns(const QString &text);

/// @p text without U+FE0F, which breaks colour emoji apart on the screen. For display only, never
/// for what is stored.
QString withoutVariationSelectors(const QString &text);

} // namespace tembra
