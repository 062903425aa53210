#include "Store/Objects/RelationshipChanges.h"

#include "Store/Objects/IdentityMap.h"
#include "Store/Objects/PropertyNotifications.h"
#include "Store/Objects/RelationshipCache.h"

namespace tembra {

void RelationshipChanges::apply(bool related, RelationshipCache &relationships,
                                const IdentityMap &objects,
                                PropertyNotifications &notifications) const
{
    for (const auto &[relationship, keys] : m_keys) {
        const auto &[owner, property] = relationship;
        relationships.setRelated(owner, property, keys, related);
        notifications.add(objects.find(owner), property);
    }
}

} // namespace tembra
