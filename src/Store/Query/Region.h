#pragma once

#include "Foundation/Result.h"
#include "Store/Objects/ChangeSet.h"
#include "Store/Query/FetchRequest.h"
#include "Store/Query/KeyPath.h"

#include <QMap>

namespace tembra {

/// The part of a store that something depends on: properties of entities, and which records of an
/// entity there are.
class Region
{
public:
    Region() = default; ///< Nothing.

    /// All that can change which records answer @p request, and in which order.
    static Result<Region> of(const ObjectModel &model, const FetchRequest &request);

    /// Which records of the entity there are.
    static Region records(int entity);
    /// The values of these properties, of records that are there before and after.
    static Region properties(int entity, PropertyMask properties);
    /// What lies along a key path.
    static Region along(const ObjectModel &model, const KeyPath &path);

    Region &unite(const Region &other);

    bool touches(const ChangeSet &changes) const;

    friend bool operator==(const Region &, const Region &) = default;

private:
    struct Part
    {
        PropertyMask properties = 0;
        bool records = false;

        friend bool operator==(const Part &, const Part &) = default;
    };

    bool touchesAnyOf(EntityMask entities) const;
    bool touchesRecords(const std::vector<ObjectChange> &changes) const;

    QMap<int, Part> m_parts; ///< By entity.
};

} // namespace tembra
