#include "Store/Objects/NotifySignals.h"

#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Schema/ObjectModel.h"

#include <QMetaProperty>

namespace tembra {

NotifySignals::NotifySignals(const ObjectModel &schema)
    : m_schema(schema)
    , m_signals(size_t(schema.entityCount()))
{
}

void NotifySignals::resolve(const ManagedObject &object)
{
    const int entity = object.objectID().entity;
    const EntityDescription &description = m_schema.entity(entity);
    std::vector<QMetaMethod> &found = m_signals[size_t(entity)];
    for (int property = 0; property < description.propertyCount(); ++property) {
        const QMetaObject *meta = object.metaObject();
        const int index = meta->indexOfProperty(description.propertyName(property).constData());
        const QMetaMethod signal = index < 0 ? QMetaMethod() : meta->property(index).notifySignal();
        require(signal.parameterCount() == 0,
                "the NOTIFY signals of a managed object carry no value");
        found.push_back(signal);
    }
}

const QMetaMethod &NotifySignals::signalOf(const ManagedObject &object, int property)
{
    const size_t entity = size_t(object.objectID().entity);
    if (m_signals[entity].empty())
        resolve(object);
    return m_signals[entity][size_t(property)];
}

} // namespace tembra
