#pragma once

#include <QHash>

#include <memory>
#include <vector>

namespace tembra {

class ManagedObject;
struct ToManyDescription;

/// A link of a join table, named by its canonical end.
struct LinkKey
{
    int entity;
    int property;
    qint64 owner;
    qint64 other;

    /// The link between @p owner and @p other through @p link, whichever end that is.
    static LinkKey of(const ToManyDescription &link, qint64 owner, qint64 other);

    friend bool operator==(const LinkKey &, const LinkKey &) = default;
    friend size_t qHash(const LinkKey &key, size_t seed = 0)
    {
        return qHashMulti(seed, key.entity, key.property, key.owner, key.other);
    }
};

/// The edits of a context that its store does not have yet. Holds the objects that carry them.
struct UnwrittenEdits
{
    std::vector<std::shared_ptr<ManagedObject>> objects;
    QHash<LinkKey, bool> links; ///< True: to be added; false: to be removed.

    bool isEmpty() const { return objects.empty() && links.isEmpty(); }
};

} // namespace tembra
