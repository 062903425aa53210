// Taking over what another context has saved.

#include "Foundation/Logging.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Undo/UndoManager.h"

#include <set>

namespace tembra {

namespace {

/// The to-manys that a change of these to-ones or links touches, each once.
using TouchedEnds = std::set<std::pair<ObjectID, int>>;

void touchOwners(TouchedEnds &touched, const ObjectChange &change, const ObjectModel &schema)
{
    for (const ToOneChange &toOne : change.toOnes) {
        const ToOneDescription *column = schema.entity(change.id.entity).toOne(toOne.property);
        if (!column || column->inverse < 0)
            continue;
        for (const qint64 owner : {toOne.oldKey, toOne.newKey}) {
            if (owner != 0)
                touched.insert({{column->destination, owner}, column->inverse});
        }
    }
}

} // namespace

void ManagedObjectContext::Private::merge(const ChangeSet &changes)
{
    TouchedEnds touched;
    Announcements announcements;
    ObjectList gone;
    for (const ObjectChange &change : changes.inserted)
        touchOwners(touched, change, schema);
    for (const ObjectChange &change : changes.updated) {
        touchOwners(touched, change, schema);
        for (const ToManyDescription &link : schema.entity(change.id.entity).toManys) {
            if (change.properties & propertyBit(link.property))
                touched.insert({change.id, link.property});
        }
        if (const auto live = registry.find(change.id))
            refresh(*live, change.properties, announcements);
    }
    for (const ObjectChange &change : changes.deleted) {
        touchOwners(touched, change, schema);
        if (auto object = becomeDeleted(change.id))
            gone.push_back(std::move(object));
    }
    if (changes.wholesale != 0)
        mergeWholesale(changes.wholesale, announcements, gone);
    turn.note(changes);
    for (const auto &[owner, property] : touched) {
        if (auto live = registry.find(owner)) {
            std::erase_if(live->m_related,
                          [p = property](const auto &related) { return related.property == p; });
            announcements.emplace_back(std::move(live), property);
        }
    }
    scheduleTurnEnd();
    announceDeleted(gone);
    announce(announcements);
}

/// Whether the live records of these entities still are there, and what is related to them, has to
/// be asked anew.
void ManagedObjectContext::Private::mergeWholesale(EntityMask entities,
                                                   Announcements &announcements, ObjectList &gone)
{
    ObjectList live;
    registry.forEach([&](ManagedObject &object) {
        if (auto held = registry.find(object.m_id))
            live.push_back(std::move(held));
    });
    for (std::shared_ptr<ManagedObject> &object : live) {
        const int entity = object->m_id.entity;
        if ((entities & entityBit(entity)) && !object->m_isNew && hasVanished(object->m_id)) {
            if (auto vanished = becomeDeleted(object->m_id))
                gone.push_back(std::move(vanished));
            continue;
        }
        for (const ToManyDescription &link : schema.entity(entity).toManys) {
            if (!(entities & entityBit(link.destination)))
                continue;
            const auto forgotten = std::erase_if(object->m_related, [&](const auto &related) {
                return related.property == link.property;
            });
            if (forgotten > 0)
                announcements.emplace_back(object, link.property);
        }
    }
}

bool ManagedObjectContext::Private::hasVanished(ObjectID id)
{
    const Result<bool> found = reader.exists(id);
    return found && !*found;
}

/// Edits that the store does not have yet stay as they are: the later one wins.
void ManagedObjectContext::Private::refresh(ManagedObject &object, PropertyMask properties,
                                            Announcements &announcements)
{
    if (object.m_values.empty() || object.m_isNew)
        return;
    const Result<std::optional<RowReader::Row>> row = reader.row(object.m_id);
    if (!row || !*row) {
        if (!row)
            qCWarning(storeLog, "A record could not be read: %s",
                      qUtf8Printable(row.error().description()));
        return;
    }
    const PropertyMask taken = properties & ~object.m_unwritten;
    for (int property = 0; property < int(object.m_values.size()); ++property) {
        const Value &stored = (**row)[size_t(property)];
        if (!(taken & propertyBit(property)) || object.m_values[size_t(property)] == stored)
            continue;
        object.m_values[size_t(property)] = stored;
        announcements.emplace_back(object.shared_from_this(), property);
    }
}

} // namespace tembra
