#pragma once

#include "Store/Schema/ObjectID.h"

#include <QHash>

#include <memory>

namespace tembra {

class ManagedObject;

/// The identity map of a context: one live object per record. Owns nothing; an object takes
/// itself out when it is destroyed.
class ObjectRegistry
{
public:
    /// The live object of a record; null when there is none.
    std::shared_ptr<ManagedObject> find(ObjectID id) const;
    void insert(ManagedObject &object);
    /// Takes @p object out, unless another one has taken its place.
    void remove(const ManagedObject &object);

    int count() const { return int(m_objects.size()); }
    bool isEmpty() const { return m_objects.isEmpty(); }

    template<typename Visitor>
    void forEach(const Visitor &visit) const
    {
        for (ManagedObject *object : m_objects)
            visit(*object);
    }

private:
    QHash<ObjectID, ManagedObject *> m_objects;
};

} // namespace tembra
