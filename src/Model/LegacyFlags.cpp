#include "Model/LegacyFlags.h"

#include "Model/DefaultsManager.h"
#include "Model/Tag.h"

#include <array>

namespace tembra {

using namespace Qt::StringLiterals;

QString legacyFlagEmoji(int flag, const DefaultsManager &defaults)
{
    static const std::array<QString, 7> emoji{
        u"-"_s, u"🏳\uFE0F"_s, u"🚩"_s, u"🏴"_s, u"⭐\uFE0F"_s, u"♥\uFE0F"_s, u"⚠\uFE0F"_s,
    };
    if (flag < 0 || flag >= int(emoji.size()))
        return {};
    if (const auto own = defaults.flagOverride(flag))
        return *own;
    // The "-" of the table was never shown: no flag had no emoji.
    return flag == 0 ? u""_s : emoji.at(size_t(flag));
}

LegacyFlagTags::LegacyFlagTags(ManagedObjectContext &context, const DefaultsManager &defaults)
    : m_context(context)
    , m_defaults(defaults)
{
}

std::shared_ptr<Tag> LegacyFlagTags::tagFor(int flag)
{
    std::shared_ptr<Tag> &tag = m_tags[flag];
    if (!tag)
        tag = Tag::findOrCreate(m_context, u"Flag %1"_s.arg(flag),
                                legacyFlagEmoji(flag, m_defaults));
    return tag;
}

} // namespace tembra
