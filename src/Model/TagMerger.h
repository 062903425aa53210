#pragma once

#include <QHash>
#include <QString>

#include <memory>
#include <utility>

namespace tembra {

class ManagedObjectContext;
class Tag;
struct TagValues;

/// Merges the tags of a backup by name and emoji with those that are there, and with each other.
class TagMerger
{
public:
    explicit TagMerger(ManagedObjectContext &context);
    ~TagMerger();

    /// The first tag with this name and emoji in the context (missing equals missing), else a new one.
    std::shared_ptr<Tag> tagFor(const TagValues &values);

private:
    /// With a mark each, for a missing text and an empty one are two.
    using NameAndEmoji = std::pair<QString, QString>;
    static NameAndEmoji keyOf(const QString &name, const QString &emoji);

    ManagedObjectContext &m_context;
    QHash<NameAndEmoji, std::shared_ptr<Tag>> m_tags;
};

} // namespace tembra
