#include "Store/Objects/ObjectRegistry.h"

#include "Store/Objects/ManagedObject.h"

namespace tembra {

std::shared_ptr<ManagedObject> ObjectRegistry::find(ObjectID id) const
{
    ManagedObject *object = m_objects.value(id);
    // An object whose destructor runs right now is still listed, but cannot be held any more.
    return object ? object->weak_from_this().lock() : nullptr;
}

void ObjectRegistry::insert(ManagedObject &object)
{
    m_objects.insert(object.objectID(), &object);
}

void ObjectRegistry::remove(const ManagedObject &object)
{
    const auto found = m_objects.constFind(object.objectID());
    if (found != m_objects.cend() && *found == &object)
        m_objects.erase(found);
}

} // namespace tembra
