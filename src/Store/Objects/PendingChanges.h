#pragma once

#include "Store/Objects/ChangeSet.h"

#include <QHash>

#include <vector>

namespace tembra {

/// Gathers what happens to records into one ChangeSet in which each record stands once: inserted
/// and deleted again vanishes, inserted and updated is inserted, deleted and brought back is
/// updated.
class PendingChanges
{
public:
    /// An entity with more changed records than that is changed in bulk: nobody wants to hear of
    /// each, and neither memory nor time is spent on them.
    static constexpr size_t bulkThreshold = 5000;

    bool isEmpty() const { return m_entries.empty() && m_bulk == 0; }

    void addInserted(ObjectChange change);
    void addUpdated(ObjectID id, PropertyMask properties);
    void addToOne(ObjectID id, const ToOneChange &change);
    void addDeleted(ObjectChange change);
    /// Any record of these entities may have come, gone or changed.
    void addBulk(EntityMask entities) { m_bulk |= entities; }
    void add(const ChangeSet &changes);

    ChangeSet take();

private:
    enum class Kind : quint8 { None, Inserted, Updated, Deleted };
    struct Entry
    {
        Kind kind;
        ObjectChange change;
    };

    Entry *entry(ObjectID id);
    Entry *updatedEntry(ObjectID id);
    bool isBulkChange(int entity) const { return (m_bulk & entityBit(entity)) != 0; }

    std::vector<Entry> m_entries;
    QHash<ObjectID, size_t> m_indexes;
    std::vector<size_t> m_counts; ///< How many records of each entity are listed.
    EntityMask m_bulk = 0;
};

} // namespace tembra
