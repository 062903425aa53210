#include "Store/Objects/ChangeSet.h"

#include "Store/Schema/ObjectModel.h"

namespace tembra {

ObjectChange deletionOf(ObjectID id, const std::vector<Value> &values,
                        const EntityDescription &entity)
{
    ObjectChange change{id, allProperties, {}};
    for (const ToOneDescription &column : entity.toOnes) {
        const auto *key = values.empty() ? nullptr
                                         : std::get_if<qint64>(&values[size_t(column.property)]);
        if (key)
            change.toOnes.append({column.property, *key, 0});
    }
    return change;
}

} // namespace tembra
