#include "Store/Query/Region.h"

#include "Store/Query/PredicateNode.h"

#include <algorithm>

namespace tembra {

namespace {

Result<Region> regionOf(const ObjectModel &model, int entity, const PredicateNode &node)
{
    if (const auto *comparison = std::get_if<Comparison>(&node.content)) {
        return KeyPath::resolve(model, entity, comparison->keyPath).map([&](const KeyPath &path) {
            return Region::along(model, path);
        });
    }
    if (const auto *negation = std::get_if<Negation>(&node.content))
        return regionOf(model, entity, *negation->operand);
    Region all;
    for (const PredicateNodePointer &operand : std::get<Compound>(node.content).operands) {
        const Result<Region> part = regionOf(model, entity, *operand);
        if (!part)
            return part;
        all.unite(*part);
    }
    return all;
}

} // namespace

Result<Region> Region::of(const ObjectModel &model, const FetchRequest &request)
{
    const int entity = model.entityIndex(request.entityName);
    if (entity < 0)
        return failure(QStringLiteral("There are no records of the kind “%1”.")
                           .arg(QString::fromUtf8(request.entityName)));
    Region all = records(entity);
    if (const PredicateNode *root = request.predicate.root()) {
        const Result<Region> part = regionOf(model, entity, *root);
        if (!part)
            return part;
        all.unite(*part);
    }
    for (const SortDescriptor &descriptor : request.sortDescriptors) {
        const Result<KeyPath> path = KeyPath::resolve(model, entity, descriptor.key.split('.'));
        if (!path)
            return failure(path.error());
        all.unite(along(model, *path));
    }
    return all;
}

Region Region::records(int entity)
{
    Region region;
    region.m_parts[entity].records = true;
    return region;
}

Region Region::properties(int entity, PropertyMask properties)
{
    Region region;
    if (properties != 0)
        region.m_parts[entity].properties = properties;
    return region;
}

/// A relationship that is stored at its owner, or in a join table, changes with the owner's
/// property. One that is stored at the other end changes with the records there.
Region Region::along(const ObjectModel &model, const KeyPath &path)
{
    Region region;
    for (const KeyPathStep &step : path.steps) {
        region.unite(properties(step.entity, propertyBit(step.property)));
        if (step.kind != PropertyKind::ToMany)
            continue;
        const ToManyDescription &toMany = model.entity(step.entity).toMany(step.property);
        if (toMany.joined)
            continue;
        region.unite(records(step.destination))
            .unite(properties(step.destination, propertyBit(toMany.inverse)));
    }
    return region;
}

Region &Region::unite(const Region &other)
{
    for (auto it = other.m_parts.cbegin(); it != other.m_parts.cend(); ++it) {
        Part &part = m_parts[it.key()];
        part.properties |= it->properties;
        part.records = part.records || it->records;
    }
    return *this;
}

bool Region::touches(const ChangeSet &changes) const
{
    if (touchesAnyOf(changes.bulk) || touchesRecords(changes.inserted)
        || touchesRecords(changes.deleted))
        return true;
    return std::any_of(changes.updated.begin(), changes.updated.end(),
                       [this](const ObjectChange &change) {
                           const auto part = m_parts.constFind(change.id.entity);
                           return part != m_parts.cend()
                                  && (part->properties & change.properties) != 0;
                       });
}

bool Region::touchesAnyOf(EntityMask entities) const
{
    return std::any_of(m_parts.keyBegin(), m_parts.keyEnd(),
                       [entities](int entity) { return (entities & entityBit(entity)) != 0; });
}

bool Region::touchesRecords(const std::vector<ObjectChange> &changes) const
{
    return std::any_of(changes.begin(), changes.end(), [this](const ObjectChange &change) {
        const auto part = m_parts.constFind(change.id.entity);
        return part != m_parts.cend() && part->records;
    });
}

} // namespace tembra
