#pragma once

#include <QHash>
#include <QString>

#include <memory>

namespace tembra {

class DefaultsManager;
class ManagedObjectContext;
class Tag;

/// The emoji that old journals showed for a numbered flag: the user's own, else the default of
/// 1 to 6, else empty for 0. Null for values that never had one.
QString legacyFlagEmoji(int flag, const DefaultsManager &defaults);

/// Finds or makes the tag that stands for each flag of an old journal, and looks each one up once.
class LegacyFlagTags
{
public:
    LegacyFlagTags(ManagedObjectContext &context, const DefaultsManager &defaults);

    std::shared_ptr<Tag> tagFor(int flag);

private:
    ManagedObjectContext &m_context;
    const DefaultsManager &m_defaults;
    QHash<int, std::shared_ptr<Tag>> m_tags;
};

} // namespace tembra
