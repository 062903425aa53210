#include "Store/Objects/PropertyNotifications.h"

#include "Store/Objects/ManagedObject.h"

namespace tembra {

void PropertyNotifications::add(std::shared_ptr<ManagedObject> object, int property)
{
    if (object && property >= 0)
        m_notifications.emplace_back(std::move(object), property);
}

void PropertyNotifications::emitAll() const
{
    for (const auto &[object, property] : m_notifications)
        object->emitChangeOf(property);
}

} // namespace tembra
