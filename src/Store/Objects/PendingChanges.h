#pragma once

#include "Store/Objects/ChangeSet.h"

#include <QHash>

#include <limits>
#include <vector>

namespace tembra {

/// Gathers what happens to records into one ChangeSet in which each record stands once: inserted
/// and deleted again vanishes, inserted and updated is inserted, deleted and brought back is
/// updated.
class PendingChanges
{
public:
    bool isEmpty() const { return m_entries.empty() && m_wholesale == 0; }
    /// With more records than that the changes become wholesale, so that they stay small.
    void setMostRecords(size_t count) { m_mostRecords = count; }
    void noteWholesale(EntityMask entities);
    /// Makes room for @p count records more.
    void reserve(size_t count);

    void noteInserted(ObjectChange change);
    void noteUpdated(ObjectID id, PropertyMask properties);
    void noteToOne(ObjectID id, const ToOneChange &change);
    void noteDeleted(ObjectChange change);
    void note(const ChangeSet &changes);
    /// Notes insertions as updates, for those who heard of them before.
    void noteAsUpdates(const ChangeSet &changes);

    ChangeSet take();

private:
    enum class Kind : quint8 { None, Inserted, Updated, Deleted };
    struct Entry
    {
        Kind kind;
        ObjectChange change;
    };

    Entry &entry(ObjectID id);
    void becomeWholesale();
    void noteUpdate(const ObjectChange &change);

    std::vector<Entry> m_entries;
    EntityMask m_wholesale = 0;
    size_t m_mostRecords = std::numeric_limits<size_t>::max();
    QHash<ObjectID, size_t> m_indexes;
};

} // namespace tembra
