#include "Store/Objects/ChangeSet.h"

#include "Store/Schema/ObjectModel.h"

namespace tembra {

namespace {

template<typename Change>
ObjectChange changeOf(ObjectID id, const std::vector<Value> &values, const EntityDescription &table,
                      const Change &change)
{
    ObjectChange made{id, allProperties, {}};
    for (const ToOneDescription &column : table.toOnes) {
        const auto *key = values.empty() ? nullptr
                                         : std::get_if<qint64>(&values[size_t(column.property)]);
        if (key)
            made.toOnes.append(change(column.property, *key));
    }
    return made;
}

} // namespace

ObjectChange insertionOf(ObjectID id, const std::vector<Value> &values,
                         const EntityDescription &table)
{
    return changeOf(id, values, table, [](int property, qint64 key) {
        return ToOneChange{property, 0, key};
    });
}

ObjectChange deletionOf(ObjectID id, const std::vector<Value> &values,
                        const EntityDescription &table)
{
    return changeOf(id, values, table, [](int property, qint64 key) {
        return ToOneChange{property, key, 0};
    });
}

} // namespace tembra
