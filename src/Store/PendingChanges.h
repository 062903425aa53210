#pragma once

#include "Store/ChangeSet.h"

#include <QHash>

#include <vector>

namespace tembra {

/// Gathers what happens to records into one ChangeSet in which each record stands once: inserted
/// and deleted again vanishes, inserted and updated is inserted, deleted and brought back is
/// updated.
class PendingChanges
{
public:
    bool isEmpty() const { return m_entries.empty(); }
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
    void noteUpdate(const ObjectChange &change);

    std::vector<Entry> m_entries;
    QHash<ObjectID, size_t> m_indexes;
};

} // namespace tembra
