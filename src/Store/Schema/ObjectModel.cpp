#include "Store/Schema/ObjectModel.h"

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
        return toOneAt(property).name;
    case PropertyKind::ToMany:
        break;
    }
    return toManyAt(property).name;
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

const ToOneDescription &EntityDescription::toOneAt(int property) const
{
    return toOnes.at(property - attributes.size());
}

const ToManyDescription &EntityDescription::toManyAt(int property) const
{
    return toManys.at(property - columnCount());
}

int ObjectModel::entityIndex(const QByteArray &entityName) const
{
    return indexOfName(entities, entityName);
}

} // namespace tembra
