#include "Store/Schema/ObjectModel.h"

#include "Foundation/Precondition.h"

#include <QMetaEnum>
#include <QMetaProperty>

#include <algorithm>

namespace tembra {

namespace {

template<typename List>
int indexOfName(const List &list, const QByteArray &name)
{
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const auto &item) { return item.name == name; });
    return found == list.end() ? -1 : int(found - list.begin());
}

void requireOf(bool condition, const QByteArray &subject, const char *rule)
{
    if (!condition)
        fatal(QByteArray(subject + ": " + rule).constData());
}

void checkClass(const EntityDescription &entity)
{
    const QMetaObject &meta = *entity.metaObject;
    const QMetaEnum numbers = meta.enumerator(meta.indexOfEnumerator("Property"));
    requireOf(numbers.keyCount() == entity.propertyCount(), entity.name,
              "the class has an enumerator for each property");
    for (int property = 0; property < entity.propertyCount(); ++property) {
        const QByteArray name = entity.propertyName(property);
        const QByteArray subject = entity.name + '.' + name;
        const int index = meta.indexOfProperty(name.constData());
        requireOf(index >= 0 && meta.property(index).hasNotifySignal(), subject,
                  "the class has a Q_PROPERTY with a NOTIFY signal");
        const QByteArray enumerator = name + "Property";
        requireOf(numbers.keyToValue(enumerator.constData()) == property, subject,
                  "the enumerator of a property is its position in the description");
    }
}

} // namespace

PropertyKind EntityDescription::kindOf(int property) const
{
    if (property < attributes.size())
        return PropertyKind::Attribute;
    return property < columnCount() ? PropertyKind::ToOne : PropertyKind::ToMany;
}

QByteArray EntityDescription::propertyName(int property) const
{
    switch (kindOf(property)) {
    case PropertyKind::Attribute:
        return attributeAt(property).name;
    case PropertyKind::ToOne:
        return toOne(property)->name;
    case PropertyKind::ToMany:
        break;
    }
    return toMany(property).name;
}

int EntityDescription::propertyIndex(const QByteArray &propertyName) const
{
    if (const int index = indexOfName(attributes, propertyName); index >= 0)
        return index;
    if (const int index = indexOfName(toOnes, propertyName); index >= 0)
        return int(attributes.size()) + index;
    const int index = indexOfName(toManys, propertyName);
    return index < 0 ? -1 : columnCount() + index;
}

const AttributeDescription &EntityDescription::attributeAt(int property) const
{
    return attributes.at(property);
}

const ToOneDescription *EntityDescription::toOne(int property) const
{
    return kindOf(property) == PropertyKind::ToOne ? &toOnes.at(property - attributes.size())
                                                   : nullptr;
}

const ToManyDescription &EntityDescription::toMany(int property) const
{
    require(kindOf(property) == PropertyKind::ToMany, "the property is a to-many relationship");
    return toManys.at(property - columnCount());
}

ObjectModel::ObjectModel(QList<EntityDescription> entities, QList<SchemaMigration> migrations)
    : m_entities(std::move(entities))
    , m_migrations(std::move(migrations))
{
    for (int index = 0; index < entityCount(); ++index) {
        EntityDescription &entity = m_entities[index];
        requireOf(entity.columnCount() > 0, entity.name, "every entity has a column");
        requireOf(entity.propertyCount() <= 64, entity.name,
                  "a property mask has a bit for every property");
        if (entity.metaObject)
            checkClass(entity);
        entity.columns.clear();
        entity.references.clear();
        for (int property = 0; property < entity.columnCount(); ++property)
            entity.columns.push_back(entity.propertyName(property));
    }
    for (int entity = 0; entity < entityCount(); ++entity) {
        resolveToOnes(entity);
        resolveToManys(entity);
    }
}

void ObjectModel::resolveToOnes(int index)
{
    EntityDescription &entity = m_entities[index];
    for (ToOneDescription &toOne : entity.toOnes) {
        toOne.entity = index;
        toOne.property = entity.propertyIndex(toOne.name);
        toOne.destination = entityIndex(toOne.destinationName);
        requireOf(toOne.destination >= 0 && toOne.destination < index,
                  entity.name + '.' + toOne.name, "a to-one points to an entity listed before it");
        EntityDescription &destination = m_entities[toOne.destination];
        toOne.inverse = toOne.inverseName.isEmpty() ? -1
                                                    : destination.propertyIndex(toOne.inverseName);
        destination.references.push_back(toOne);
    }
}

void ObjectModel::resolveToManys(int index)
{
    EntityDescription &entity = m_entities[index];
    for (ToManyDescription &toMany : entity.toManys) {
        const QByteArray subject = entity.name + '.' + toMany.name;
        toMany.entity = index;
        toMany.property = entity.propertyIndex(toMany.name);
        toMany.destination = entityIndex(toMany.destinationName);
        requireOf(toMany.destination >= 0, subject, "a to-many has a destination");
        const EntityDescription &destination = m_entities.at(toMany.destination);
        toMany.inverse = destination.propertyIndex(toMany.inverseName);
        requireOf(toMany.inverse >= 0, subject, "a to-many has an inverse");
        toMany.joined = !toMany.joinTable.isEmpty();
        requireOf(toMany.joined == (destination.kindOf(toMany.inverse) == PropertyKind::ToMany),
                  subject, "a to-many has a join table unless its inverse is a to-one");
        toMany.canonical = index < toMany.destination
                           || (index == toMany.destination && toMany.property <= toMany.inverse);
    }
}

int ObjectModel::entityIndex(const QByteArray &entityName) const
{
    return indexOfName(m_entities, entityName);
}

} // namespace tembra
