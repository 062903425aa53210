#include "Store/Objects/RelationshipCache.h"

#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Rows/RowReader.h"

#include <algorithm>
#include <iterator>

namespace tembra {

namespace {

void setContained(std::vector<qint64> &keys, qint64 key, bool contained)
{
    const auto place = std::lower_bound(keys.begin(), keys.end(), key);
    const bool known = place != keys.end() && *place == key;
    if (contained && !known)
        keys.insert(place, key);
    else if (!contained && known)
        keys.erase(place);
}

} // namespace

RelationshipCache::RelationshipCache(const ObjectModel &schema, RowReader &reader,
                                     const PendingEdits &edits)
    : m_schema(schema)
    , m_reader(reader)
    , m_edits(edits)
{
}

const std::vector<qint64> *RelationshipCache::find(ObjectID owner, int property) const
{
    const auto found = m_cached.constFind(owner);
    if (found == m_cached.cend())
        return nullptr;
    const auto cached = std::find_if(found->begin(), found->end(),
                                     [&](const Relationship &relationship) {
                                         return relationship.property == property;
                                     });
    return cached == found->end() ? nullptr : &cached->keys;
}

std::vector<qint64> *RelationshipCache::find(ObjectID owner, int property)
{
    return const_cast<std::vector<qint64> *>(std::as_const(*this).find(owner, property));
}

Result<std::vector<qint64>> RelationshipCache::keys(ObjectID owner, const ToManyDescription &link)
{
    if (!isCached(owner, link.property)) {
        if (const Result<void> done = read(link, std::span(&owner.key, 1)); !done)
            return failure(done.error());
    }
    return *find(owner, link.property);
}

Result<void> RelationshipCache::read(const ToManyDescription &link, std::span<const qint64> owners)
{
    QHash<qint64, std::vector<qint64>> found;
    for (const qint64 owner : owners)
        found.insert(owner, {});
    const Result<void> done = m_reader.related(link, owners, [&](qint64 owner, qint64 other) {
        found[owner].push_back(other);
    });
    if (!done)
        return done;
    for (auto it = found.begin(); it != found.end(); ++it) {
        std::sort(it->begin(), it->end());
        overlayEdits(link, it.key(), *it);
        m_cached[{link.entity, it.key()}].push_back({link.property, std::move(*it)});
    }
    return {};
}

void RelationshipCache::overlayEdits(const ToManyDescription &link, qint64 owner,
                                     std::vector<qint64> &keys) const
{
    if (!link.joined) {
        for (const PendingEdits::RecordEdit &edit : m_edits.records()) {
            const ObjectID id = edit.object->objectID();
            if (id.entity == link.destination && (edit.columns & propertyBit(link.inverse))
                && edit.object->isLive())
                setContained(keys, id.key, edit.object->value(link.inverse) == Value(owner));
        }
        return;
    }
    const LinkKey pattern = LinkKey::of(link, owner, 0);
    for (auto it = m_edits.links().cbegin(); it != m_edits.links().cend(); ++it) {
        const LinkKey &key = it.key();
        if (key.entity != pattern.entity || key.property != pattern.property)
            continue;
        if ((link.canonical ? key.owner : key.other) == owner)
            setContained(keys, link.canonical ? key.other : key.owner, it.value());
    }
}

bool RelationshipCache::isLinked(ObjectID owner, const ToManyDescription &link, ObjectID other)
{
    if (const auto *cached = find(owner, link.property))
        return std::binary_search(cached->begin(), cached->end(), other.key);
    if (const auto *cached = find(other, link.inverse))
        return std::binary_search(cached->begin(), cached->end(), owner.key);
    const auto edited = m_edits.links().constFind(LinkKey::of(link, owner.key, other.key));
    if (edited != m_edits.links().cend())
        return *edited;
    const Result<bool> linked = m_reader.isLinked(link, owner.key, other.key);
    return linked && *linked;
}

void RelationshipCache::insertEmpty(ObjectID owner)
{
    std::vector<Relationship> &cached = m_cached[owner];
    for (const ToManyDescription &link : m_schema.entity(owner.entity).toManys)
        cached.push_back({link.property, {}});
}

void RelationshipCache::setRelated(ObjectID owner, int property, qint64 key, bool related)
{
    if (auto *cached = find(owner, property))
        setContained(*cached, key, related);
}

void RelationshipCache::setRelated(ObjectID owner, int property, std::vector<qint64> keys,
                                   bool related)
{
    auto *cached = find(owner, property);
    if (!cached)
        return;
    std::sort(keys.begin(), keys.end());
    std::vector<qint64> result;
    if (related)
        std::set_union(cached->begin(), cached->end(), keys.begin(), keys.end(),
                       std::back_inserter(result));
    else
        std::set_difference(cached->begin(), cached->end(), keys.begin(), keys.end(),
                            std::back_inserter(result));
    *cached = std::move(result);
}

bool RelationshipCache::forget(ObjectID owner, int property)
{
    const auto found = m_cached.find(owner);
    return found != m_cached.end() && std::erase_if(*found, [&](const Relationship &relationship) {
                                          return relationship.property == property;
                                      }) > 0;
}

} // namespace tembra
