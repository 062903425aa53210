#include "Store/Objects/PendingEdits.h"

#include "Store/Objects/ManagedObject.h"

#include <algorithm>
#include <utility>

namespace tembra {

void PendingEdits::addInserted(std::shared_ptr<ManagedObject> object)
{
    const ObjectID id = object->objectID();
    m_records.insert(id, {std::move(object), allProperties, true});
}

void PendingEdits::addUpdated(ManagedObject &object, PropertyMask columns)
{
    RecordEdit &edit = m_records[object.objectID()];
    if (!edit.object)
        edit.object = object.shared_from_this();
    edit.columns |= columns;
}

void PendingEdits::addLink(const LinkKey &link, bool linked)
{
    m_links.insert(link, linked);
}

void PendingEdits::clear()
{
    // Objects that nobody else holds are destroyed here, and must find an empty list.
    const auto records = std::exchange(m_records, {});
    m_links.clear();
}

EntityMask PendingEdits::entities() const
{
    EntityMask entities = 0;
    for (auto it = m_records.cbegin(); it != m_records.cend(); ++it)
        entities |= entityBit(it.key().entity);
    for (auto it = m_links.cbegin(); it != m_links.cend(); ++it)
        entities |= entityBit(it.key().entity);
    return entities;
}

std::vector<PendingEdits::RecordEdit> PendingEdits::recordsInWriteOrder() const
{
    std::vector<RecordEdit> edits(m_records.cbegin(), m_records.cend());
    std::sort(edits.begin(), edits.end(), [](const RecordEdit &a, const RecordEdit &b) {
        if (a.isNew != b.isNew)
            return a.isNew;
        return a.object->objectID() < b.object->objectID();
    });
    return edits;
}

} // namespace tembra
