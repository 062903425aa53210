#pragma once

#include <QMetaMethod>

#include <vector>

namespace tembra {

class ManagedObject;
class ObjectModel;

/// The NOTIFY signals of the properties of managed objects, found by name in the meta object.
class NotifySignals
{
public:
    explicit NotifySignals(const ObjectModel &schema);

    /// Not valid when the class does not declare the property, or without NOTIFY.
    const QMetaMethod &signalOf(const ManagedObject &object, int property);

private:
    void resolve(const ManagedObject &object);

    const ObjectModel &m_schema;
    std::vector<std::vector<QMetaMethod>> m_signals; ///< By entity and property; empty: not resolved.
};

} // namespace tembra
