#pragma once

#include "Store/Objects/ChangeSet.h"
#include "Store/Objects/LinkKey.h"

#include <QHash>

#include <memory>
#include <optional>
#include <vector>

namespace tembra {

class ManagedObject;

/// The edits of a context that its store does not have yet. Holds the objects that carry them.
class PendingEdits
{
public:
    struct RecordEdit
    {
        std::shared_ptr<ManagedObject> object;
        PropertyMask columns = 0; ///< The columns whose values the store does not have.
        bool isNew = false; ///< The store does not have the record at all.
    };

    void addInserted(std::shared_ptr<ManagedObject> object);
    void addUpdated(ManagedObject &object, PropertyMask columns);
    void addLink(const LinkKey &link, bool linked);
    void clear();

    bool isEmpty() const { return m_records.isEmpty() && m_links.isEmpty(); }
    qsizetype recordCount() const { return m_records.size(); }
    bool isNew(ObjectID id) const { return m_records.value(id).isNew; }
    PropertyMask columns(ObjectID id) const { return m_records.value(id).columns; }
    /// The entities whose records or links were edited.
    EntityMask entities() const;

    const QHash<ObjectID, RecordEdit> &records() const { return m_records; }
    /// New records first, each after those that it may refer to.
    std::vector<RecordEdit> recordsInWriteOrder() const;
    /// Links of join tables to add (true) and to remove (false).
    const QHash<LinkKey, bool> &links() const { return m_links; }

private:
    QHash<ObjectID, RecordEdit> m_records;
    QHash<LinkKey, bool> m_links;
};

} // namespace tembra
