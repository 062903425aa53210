#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectID.h"
#include "Store/Schema/ObjectModel.h"

#include <QHash>

#include <span>
#include <vector>

namespace tembra {

class PendingEdits;
class RowReader;

/// The to-many relationships of a context that were read, with its pending edits laid over what the
/// store has. Of live objects only: IdentityMap forgets those of an object that leaves.
class RelationshipCache
{
public:
    RelationshipCache(const ObjectModel &schema, RowReader &reader, const PendingEdits &edits);

    bool isCached(ObjectID owner, int property) const { return find(owner, property) != nullptr; }
    /// The related keys, ascending; read when they are not cached.
    Result<std::vector<qint64>> keys(ObjectID owner, const ToManyDescription &link);
    /// Reads a relationship of several owners together.
    Result<void> read(const ToManyDescription &link, std::span<const qint64> owners);
    /// Whether two records are linked by a join table. Reads what is not cached.
    bool isLinked(ObjectID owner, const ToManyDescription &link, ObjectID other);

    /// Nothing can be related to a record that did not exist before.
    void insertEmpty(ObjectID owner);
    /// Brings a relationship up to date if it is cached.
    void setRelated(ObjectID owner, int property, qint64 key, bool related);
    void setRelated(ObjectID owner, int property, std::vector<qint64> keys, bool related);
    /// False when it was not cached.
    bool forget(ObjectID owner, int property);
    void forget(ObjectID owner) { m_cached.remove(owner); }

private:
    struct Relationship
    {
        int property;
        std::vector<qint64> keys; ///< Ascending.
    };

    const std::vector<qint64> *find(ObjectID owner, int property) const;
    std::vector<qint64> *find(ObjectID owner, int property);
    void overlayEdits(const ToManyDescription &link, qint64 owner, std::vector<qint64> &keys) const;

    const ObjectModel &m_schema;
    RowReader &m_reader;
    const PendingEdits &m_edits;
    QHash<ObjectID, std::vector<Relationship>> m_cached;
};

} // namespace tembra
