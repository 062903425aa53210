#pragma once

#include "Store/Schema/ObjectID.h"

#include <map>
#include <utility>
#include <vector>

namespace tembra {

class IdentityMap;
class PropertyNotifications;
class RelationshipCache;

/// The keys that come to, or go from, to-many relationships of records that stay.
class RelationshipChanges
{
public:
    void add(ObjectID owner, int property, qint64 key) { m_keys[{owner, property}].push_back(key); }
    /// Brings cached relationships up to date; their objects are to be notified.
    void apply(bool related, RelationshipCache &relationships, const IdentityMap &objects,
               PropertyNotifications &notifications) const;

private:
    std::map<std::pair<ObjectID, int>, std::vector<qint64>> m_keys; ///< By owner and property.
};

} // namespace tembra
