#include "Model/EmojiMapping.h"

#include "Foundation/Precondition.h"

namespace tembra {

void EmojiMapping::setEmojiOverride(const std::optional<QString> &emojiOverride)
{
    m_emojiOverride = emojiOverride;
    if (enabled && mappingClosure) {
        require(identifier.has_value(), "an emoji row that reports its edits has an identifier");
        mappingClosure(*identifier, m_emojiOverride);
    }
    Q_EMIT emojiOverrideChanged();
}

} // namespace tembra
