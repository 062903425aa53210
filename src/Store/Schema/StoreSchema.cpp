#include "Store/Schema/StoreSchema.h"

#include "Foundation/Precondition.h"

#include <algorithm>

namespace tembra {

const ToOneColumn *EntityTable::toOne(int property) const
{
    const auto found = std::find_if(toOnes.begin(), toOnes.end(), [&](const ToOneColumn &column) {
        return column.property == property;
    });
    return found == toOnes.end() ? nullptr : &*found;
}

const ToManyLink &EntityTable::toMany(int property) const
{
    const auto found = std::find_if(toManys.begin(), toManys.end(), [&](const ToManyLink &link) {
        return link.property == property;
    });
    require(found != toManys.end(), "the property is a to-many relationship");
    return *found;
}

StoreSchema::StoreSchema(const ObjectModel &model)
    : m_model(&model)
    , m_tables(size_t(model.entities.size()))
{
    for (int entity = 0; entity < entityCount(); ++entity)
        resolveToOnes(entity);
    for (int entity = 0; entity < entityCount(); ++entity)
        resolveToManys(entity);
    for (const EntityTable &table : m_tables) {
        for (const ToOneColumn &column : table.toOnes)
            m_tables[size_t(column.destination)].references.push_back(column);
    }
}

void StoreSchema::resolveToOnes(int entity)
{
    const EntityDescription &description = m_model->entity(entity);
    EntityTable &table = m_tables[size_t(entity)];
    require(description.columnCount() > 0, "every entity has a column");
    require(description.propertyCount() <= 64, "a property mask has a bit for every property");
    table.table = description.table;
    for (int property = 0; property < description.columnCount(); ++property) {
        table.columns.push_back(description.propertyName(property));
        if (description.kindOf(property) != PropertyKind::ToOne)
            continue;
        const ToOneDescription &toOne = description.toOneAt(property);
        const int destination = m_model->entityIndex(toOne.destination);
        require(destination >= 0 && destination < entity,
                "a to-one points to an entity listed before it");
        const EntityDescription &other = m_model->entity(destination);
        const int inverse = toOne.inverse.isEmpty() ? -1 : other.propertyIndex(toOne.inverse);
        const DeleteRule rule = inverse < 0 ? DeleteRule::Nullify
                                            : other.toManyAt(inverse).deleteRule;
        table.toOnes.push_back({entity, property, destination, inverse, rule});
    }
}

void StoreSchema::resolveToManys(int entity)
{
    const EntityDescription &description = m_model->entity(entity);
    for (int property = description.columnCount(); property < description.propertyCount();
         ++property) {
        const ToManyDescription &toMany = description.toManyAt(property);
        const int destination = m_model->entityIndex(toMany.destination);
        require(destination >= 0, "a to-many has a destination");
        const int inverse = m_model->entity(destination).propertyIndex(toMany.inverse);
        require(inverse >= 0, "a to-many has an inverse");
        const bool joined = !toMany.joinTable.isEmpty();
        require(!joined || toMany.deleteRule == DeleteRule::Nullify,
                "only a to-many whose inverse is a to-one cascades");
        const bool canonical = entity < destination
                               || (entity == destination && property <= inverse);
        m_tables[size_t(entity)].toManys.push_back({entity, property, destination, inverse, joined,
                                                    canonical, toMany.joinTable, toMany.ownColumn,
                                                    toMany.destinationColumn});
    }
}

} // namespace tembra
