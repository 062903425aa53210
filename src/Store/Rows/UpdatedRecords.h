#pragma once

#include "Foundation/Result.h"
#include "Store/Objects/ChangeSet.h"
#include "Store/Query/FetchRequest.h"
#include "Store/Query/KeyPath.h"

#include <QSet>

namespace tembra {

class ManagedObjectContext;

/// Tells which records of a live result read differently after a change: those with a changed
/// attribute or to-one, a changed link of a prefetched relationship, or a changed record behind it.
class UpdatedRecords
{
public:
    /// Fails when the request prefetches what is not a to-many relationship.
    static Result<UpdatedRecords> of(const ObjectModel &model, const FetchRequest &request);

    struct Keys
    {
        bool all = false; ///< So many that they were not counted.
        QSet<qint64> keys;

        bool contains(qint64 key) const { return all || keys.contains(key); }
        bool isEmpty() const { return !all && keys.isEmpty(); }
    };

    /// May name records that are not among the results.
    Keys among(const ChangeSet &changes, ManagedObjectContext &context) const;

private:
    struct Prefetched
    {
        QByteArray name;
        int destination;
        PropertyMask destinationColumns;
        int toOneBack; ///< Property of the destination that stores the relationship; -1: a join table.
    };

    void addOwn(const ChangeSet &changes, Keys &found) const;
    void addRelinked(const std::vector<ObjectChange> &changes, Keys &found) const;
    void addRelated(const Prefetched &relationship, const ChangeSet &changes,
                    ManagedObjectContext &context, Keys &found) const;

    FetchRequest m_request;
    int m_entity = -1;
    PropertyMask m_shown = 0;
    std::vector<Prefetched> m_prefetched;
};

} // namespace tembra
