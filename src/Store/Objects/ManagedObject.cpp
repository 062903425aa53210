#include "Store/Objects/ManagedObject.h"

#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/NotifySignals.h"
#include "Store/Schema/ObjectModel.h"

#include <cmath>

namespace tembra {

ManagedObject::~ManagedObject()
{
    if (m_context)
        m_context->removeObject(*this);
}

const EntityDescription &ManagedObject::entity() const
{
    require(m_entity, "a managed object is made by its context");
    return *m_entity;
}

const Value &ManagedObject::value(int property) const
{
    static const Value missing;
    if (m_values.empty() && m_context)
        m_context->load(const_cast<ManagedObject &>(*this));
    return m_values.empty() ? missing : m_values[size_t(property)];
}

void ManagedObject::setValue(int property, Value value)
{
    if (m_context)
        m_context->setValue(*this, property, std::move(value));
}

ObjectID ManagedObject::toOneID(int toOneProperty) const
{
    const auto *key = std::get_if<qint64>(&value(toOneProperty));
    if (!key || !m_context)
        return {};
    const ToOneDescription *column = entity().toOne(toOneProperty);
    require(column, "the property is a to-one relationship");
    return {column->destination, *key};
}

std::vector<ObjectID> ManagedObject::relatedIDs(int toManyProperty) const
{
    std::vector<ObjectID> ids;
    if (!m_context)
        return ids;
    const ToManyDescription &link = entity().toMany(toManyProperty);
    const std::vector<qint64> keys = m_context->relatedKeys(*this, link);
    ids.reserve(keys.size());
    for (const qint64 key : keys)
        ids.push_back({link.destination, key});
    return ids;
}

QList<std::shared_ptr<ManagedObject>> ManagedObject::relatedObjects(int toManyProperty) const
{
    const std::vector<ObjectID> ids = relatedIDs(toManyProperty);
    if (ids.empty())
        return {};
    std::vector<qint64> keys;
    keys.reserve(ids.size());
    for (const ObjectID &id : ids)
        keys.push_back(id.key);
    return m_context->objects(ids.front().entity, keys)
        .value_or(QList<std::shared_ptr<ManagedObject>>());
}

void ManagedObject::addRelated(int toManyProperty, const ManagedObject &other)
{
    if (m_context)
        m_context->setRelated(*this, toManyProperty, const_cast<ManagedObject &>(other), true);
}

void ManagedObject::removeRelated(int toManyProperty, const ManagedObject &other)
{
    if (m_context)
        m_context->setRelated(*this, toManyProperty, const_cast<ManagedObject &>(other), false);
}

QString ManagedObject::text(int property) const
{
    const auto *stored = std::get_if<QString>(&value(property));
    return stored ? *stored : QString();
}

void ManagedObject::setText(int property, const QString &text)
{
    setValue(property, textValue(text));
}

qint16 ManagedObject::integer(int property) const
{
    const auto *stored = std::get_if<qint64>(&value(property));
    return stored ? qint16(*stored) : qint16(0);
}

void ManagedObject::setInteger(int property, qint16 number)
{
    setValue(property, Value(qint64(number)));
}

OptionalDate ManagedObject::date(int property) const
{
    const auto *stored = std::get_if<double>(&value(property));
    return stored ? OptionalDate(Date{*stored}) : OptionalDate();
}

void ManagedObject::setDate(int property, OptionalDate date)
{
    const bool storable = date && std::isfinite(date->secondsSinceReferenceDate);
    setValue(property, storable ? Value(date->secondsSinceReferenceDate) : Value());
}

std::shared_ptr<ManagedObject> ManagedObject::toOne(int property) const
{
    const auto *key = std::get_if<qint64>(&value(property));
    if (!key || !m_context)
        return nullptr;
    const ToOneDescription *column = entity().toOne(property);
    require(column, "the property is a to-one relationship");
    return m_context->object({column->destination, *key});
}

void ManagedObject::setToOne(int property, const std::shared_ptr<ManagedObject> &other)
{
    if (!m_context || (other && !other->isLive()))
        return;
    require(!other || other->m_context == m_context, "related records belong to one context");
    setValue(property, other ? Value(other->objectID().key) : Value());
}

void ManagedObject::setPinned(bool pinned)
{
    if (m_context)
        m_context->setPinned(*this, pinned);
}

void ManagedObject::emitChangeOf(int property)
{
    if (!m_context)
        return;
    const QMetaMethod &signal = m_context->notifySignals().signalOf(*this, property);
    // Most objects of an import have no listener; asking first is ten times faster.
    if (signal.isValid() && isSignalConnected(signal))
        signal.invoke(this, Qt::DirectConnection);
}

} // namespace tembra
