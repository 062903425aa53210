#pragma once

#include "Store/Schema/ObjectModel.h"

#include <QHash>

namespace tembra {

/// A link of a join table, named by its canonical end, so that both ends name it alike.
struct LinkKey
{
    int entity;
    int property;
    qint64 owner;
    qint64 other;

    /// The link between @p owner and @p other through @p link, whichever end that is.
    static LinkKey of(const ToManyDescription &link, qint64 owner, qint64 other)
    {
        if (link.canonical)
            return {link.entity, link.property, owner, other};
        return {link.destination, link.inverse, other, owner};
    }

    friend auto operator<=>(const LinkKey &, const LinkKey &) = default;
    friend size_t qHash(const LinkKey &key, size_t seed = 0)
    {
        return qHashMulti(seed, key.entity, key.property, key.owner, key.other);
    }
};

} // namespace tembra
