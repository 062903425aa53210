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

void PendingChanges::reserve(size_t count)
{
    const size_t needed = m_entries.size() + count;
    // Never less than doubling: many small reservations must not copy everything each time.
    if (needed > m_entries.capacity())
        m_entries.reserve(std::max(needed, 2 * m_entries.capacity()));
    m_indexes.reserve(qsizetype(m_entries.capacity()));
}

PendingChanges::Entry &PendingChanges::entry(ObjectID id)
{
    const auto known = m_indexes.constFind(id);
    if (known != m_indexes.cend())
        return m_entries[*known];
    if (m_entries.size() >= m_mostRecords)
        becomeWholesale();
    m_indexes.insert(id, m_entries.size());
    m_entries.push_back({Kind::None, {id, 0, {}}});
    return m_entries.back();
}

void PendingChanges::becomeWholesale()
{
    EntityMask entities = 0;
    for (const Entry &known : m_entries)
        entities |= entityBit(known.change.id.entity);
    noteWholesale(entities);
    m_entries.clear();
    m_indexes.clear();
}

void PendingChanges::noteWholesale(EntityMask entities)
{
    m_wholesale |= entities;
}

void PendingChanges::noteInserted(ObjectChange change)
{
    Entry &known = entry(change.id);
    if (known.kind == Kind::Deleted) {
        known.kind = Kind::Updated;
        chain(known.change, change);
        return;
    }
    known.kind = Kind::Inserted;
    known.change = std::move(change);
}

void PendingChanges::noteUpdated(ObjectID id, PropertyMask properties)
{
    Entry &known = entry(id);
    if (known.kind == Kind::None)
        known.kind = Kind::Updated;
    known.change.properties |= properties;
}

void PendingChanges::noteToOne(ObjectID id, const ToOneChange &change)
{
    Entry &known = entry(id);
    if (known.kind == Kind::None)
        known.kind = Kind::Updated;
    chain(known.change, change);
}

void PendingChanges::noteDeleted(ObjectChange change)
{
    Entry &known = entry(change.id);
    switch (known.kind) {
    case Kind::Inserted:
        known = {Kind::None, {change.id, 0, {}}};
        return;
    case Kind::None:
        known.change = std::move(change);
        break;
    case Kind::Updated:
    case Kind::Deleted:
        chain(known.change, change);
        break;
    }
    known.kind = Kind::Deleted;
}

void PendingChanges::note(const ChangeSet &changes)
{
    noteWholesale(changes.wholesale);
    reserve(changes.inserted.size() + changes.updated.size() + changes.deleted.size());
    for (const ObjectChange &change : changes.inserted)
        noteInserted(change);
    for (const ObjectChange &change : changes.updated)
        noteUpdate(change);
    for (const ObjectChange &change : changes.deleted)
        noteDeleted(change);
}

void PendingChanges::noteAsUpdates(const ChangeSet &changes)
{
    for (const ObjectChange &change : changes.inserted)
        noteUpdate(change);
    note({{}, changes.updated, changes.deleted, changes.wholesale});
}

void PendingChanges::noteUpdate(const ObjectChange &change)
{
    noteUpdated(change.id, change.properties);
    for (const ToOneChange &toOne : change.toOnes)
        noteToOne(change.id, toOne);
}

ChangeSet PendingChanges::take()
{
    ChangeSet changes;
    changes.wholesale = std::exchange(m_wholesale, 0);
    const auto countOf = [&](Kind kind) {
        return size_t(std::count_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry &known) { return known.kind == kind; }));
    };
    changes.inserted.reserve(countOf(Kind::Inserted));
    changes.updated.reserve(countOf(Kind::Updated));
    changes.deleted.reserve(countOf(Kind::Deleted));
    for (Entry &known : m_entries) {
        if (changes.isWholesale(known.change.id.entity))
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
    m_entries = {}; // Gives back what a large deletion took.
    m_indexes = {};
    return changes;
}

} // namespace tembra
