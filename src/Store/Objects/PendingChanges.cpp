#include "Store/Objects/PendingChanges.h"

#include <algorithm>
#include <utility>

namespace tembra {

namespace {

/// Chains a later change of a to-one to what is known: the first old key, the last new one.
void chain(ObjectChange &change, const ToOneChange &later)
{
    change.properties |= propertyBit(later.property);
    const auto known = std::find_if(change.toOnes.begin(), change.toOnes.end(),
                                    [&](const ToOneChange &toOne) {
                                        return toOne.property == later.property;
                                    });
    if (known == change.toOnes.end())
        change.toOnes.append(later);
    else
        known->newKey = later.newKey;
}

void chain(ObjectChange &change, const ObjectChange &later)
{
    change.properties |= later.properties;
    for (const ToOneChange &toOne : later.toOnes)
        chain(change, toOne);
}

} // namespace

/// Null when the record's entity is changed in bulk.
PendingChanges::Entry *PendingChanges::entry(ObjectID id)
{
    if (isBulkChange(id.entity))
        return nullptr;
    if (const auto known = m_indexes.constFind(id); known != m_indexes.cend())
        return &m_entries[*known];
    m_counts.resize(std::max(m_counts.size(), size_t(id.entity) + 1));
    if (++m_counts[size_t(id.entity)] > bulkThreshold) {
        addBulk(entityBit(id.entity));
        return nullptr;
    }
    m_indexes.insert(id, m_entries.size());
    m_entries.push_back({Kind::None, {id, 0, {}}});
    return &m_entries.back();
}

PendingChanges::Entry *PendingChanges::updatedEntry(ObjectID id)
{
    Entry *known = entry(id);
    if (known && known->kind == Kind::None)
        known->kind = Kind::Updated;
    return known;
}

void PendingChanges::addInserted(ObjectChange change)
{
    Entry *known = entry(change.id);
    if (!known)
        return;
    if (known->kind == Kind::Deleted) {
        known->kind = Kind::Updated;
        chain(known->change, change);
        return;
    }
    known->kind = Kind::Inserted;
    known->change = std::move(change);
}

void PendingChanges::addUpdated(ObjectID id, PropertyMask properties)
{
    if (Entry *known = updatedEntry(id))
        known->change.properties |= properties;
}

void PendingChanges::addToOne(ObjectID id, const ToOneChange &change)
{
    if (Entry *known = updatedEntry(id))
        chain(known->change, change);
}

void PendingChanges::addDeleted(ObjectChange change)
{
    Entry *known = entry(change.id);
    if (!known)
        return;
    switch (known->kind) {
    case Kind::Inserted:
        *known = {Kind::None, {change.id, 0, {}}};
        return;
    case Kind::None:
        known->change = std::move(change);
        break;
    case Kind::Updated:
    case Kind::Deleted:
        chain(known->change, change);
        break;
    }
    known->kind = Kind::Deleted;
}

void PendingChanges::add(const ChangeSet &changes)
{
    addBulk(changes.bulk);
    for (const ObjectChange &change : changes.inserted)
        addInserted(change);
    for (const ObjectChange &change : changes.updated) {
        if (Entry *known = updatedEntry(change.id))
            chain(known->change, change);
    }
    for (const ObjectChange &change : changes.deleted)
        addDeleted(change);
}

ChangeSet PendingChanges::take()
{
    ChangeSet changes;
    changes.bulk = std::exchange(m_bulk, 0);
    for (Entry &known : m_entries) {
        if (changes.isBulkChange(known.change.id.entity))
            continue;
        switch (known.kind) {
        case Kind::None:
            break;
        case Kind::Inserted:
            changes.inserted.push_back(std::move(known.change));
            break;
        case Kind::Updated:
            changes.updated.push_back(std::move(known.change));
            break;
        case Kind::Deleted:
            changes.deleted.push_back(std::move(known.change));
            break;
        }
    }
    m_entries.clear();
    m_indexes.clear();
    m_counts.clear();
    return changes;
}

} // namespace tembra
