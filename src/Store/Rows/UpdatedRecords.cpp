#include "Store/Rows/UpdatedRecords.h"

#include "Foundation/Logging.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// Looking up who is related to more changed records than this takes longer than showing all anew.
constexpr size_t mostLookUps = 32;

PropertyMask columnsOf(const EntityDescription &entity)
{
    return entity.columnCount() < 64 ? propertyBit(entity.columnCount()) - 1 : allProperties;
}

} // namespace

Result<UpdatedRecords> UpdatedRecords::of(const ObjectModel &model, const FetchRequest &request)
{
    UpdatedRecords made;
    made.m_request = {.entityName = request.entityName, .predicate = request.predicate};
    made.m_entity = model.entityIndex(request.entityName);
    if (made.m_entity < 0)
        return failure(
            u"There are no records of the kind “%1”."_s.arg(QString::fromUtf8(request.entityName)));
    const EntityDescription &entity = model.entity(made.m_entity);
    made.m_shown = columnsOf(entity);
    for (const QByteArray &name : request.relationshipKeyPathsForPrefetching) {
        const int property = entity.propertyIndex(name);
        if (property < 0 || entity.kindOf(property) != PropertyKind::ToMany)
            return failure(u"“%1” cannot be prefetched: it is not a to-many relationship."_s.arg(
                QString::fromUtf8(name)));
        const ToManyDescription &toMany = entity.toMany(property);
        const int toOneBack = toMany.joined ? -1 : toMany.inverse;
        made.m_shown |= propertyBit(property);
        made.m_prefetched.push_back(
            {name, toMany.destination, columnsOf(model.entity(toMany.destination)), toOneBack});
    }
    return made;
}

UpdatedRecords::Keys UpdatedRecords::among(const ChangeSet &changes,
                                           ManagedObjectContext &context) const
{
    Keys found;
    found.all = changes.isBulkChange(m_entity)
                || std::ranges::any_of(m_prefetched, [&](const Prefetched &relationship) {
                       return changes.isBulkChange(relationship.destination);
                   });
    addOwn(changes, found);
    addRelinked(changes.inserted, found);
    addRelinked(changes.updated, found);
    addRelinked(changes.deleted, found);
    for (const Prefetched &relationship : m_prefetched)
        addRelated(relationship, changes, context, found);
    return found;
}

void UpdatedRecords::addOwn(const ChangeSet &changes, Keys &found) const
{
    for (const ObjectChange &change : changes.updated) {
        if (change.id.entity == m_entity && (change.properties & m_shown))
            found.keys.insert(change.id.key);
    }
}

/// A relationship that is stored at its other end: whoever lost or gained a record there.
void UpdatedRecords::addRelinked(const std::vector<ObjectChange> &changes, Keys &found) const
{
    for (const Prefetched &relationship : m_prefetched) {
        for (const ObjectChange &change : changes) {
            if (change.id.entity != relationship.destination)
                continue;
            for (const ToOneChange &toOne : change.toOnes) {
                if (toOne.property == relationship.toOneBack)
                    found.keys << toOne.oldKey << toOne.newKey;
            }
        }
    }
}

void UpdatedRecords::addRelated(const Prefetched &relationship, const ChangeSet &changes,
                                ManagedObjectContext &context, Keys &found) const
{
    std::vector<ObjectID> changed;
    for (const ObjectChange &change : changes.updated) {
        if (change.id.entity == relationship.destination
            && (change.properties & relationship.destinationColumns))
            changed.push_back(change.id);
    }
    if (changed.size() > mostLookUps) {
        found.all = true;
        return;
    }
    for (const ObjectID &id : changed) {
        FetchRequest owners = m_request;
        const QString format = u"ANY %1 == %@"_s.arg(QString::fromUtf8(relationship.name));
        owners.predicate = Predicate::andPredicate(
            {m_request.predicate, Predicate::fixed(format, {id})});
        const Result<std::vector<qint64>> keys = context.fetchKeys(owners);
        if (!keys) {
            qCWarning(storeLog, "Not known which rows changed: %s",
                      qUtf8Printable(keys.error().description()));
            found.all = true;
            return;
        }
        for (const qint64 key : *keys)
            found.keys.insert(key);
    }
}

} // namespace tembra
