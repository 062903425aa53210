#include "Store/Objects/ChangeTracker.h"

#include "Store/Objects/TurnNotifier.h"

namespace tembra {

ChangeTracker::ChangeTracker(TurnNotifier *turns) : m_turns(turns) {}

void ChangeTracker::addInserted(const ObjectChange &change)
{
    m_sinceSave.addInserted(change);
    if (m_turns)
        m_turns->changes().addInserted(change);
}

void ChangeTracker::addUpdated(ObjectID id, PropertyMask properties)
{
    m_sinceSave.addUpdated(id, properties);
    if (m_turns)
        m_turns->changes().addUpdated(id, properties);
}

void ChangeTracker::addToOne(ObjectID id, const ToOneChange &change)
{
    m_sinceSave.addToOne(id, change);
    if (m_turns)
        m_turns->changes().addToOne(id, change);
}

void ChangeTracker::addDeleted(const ObjectChange &change)
{
    m_sinceSave.addDeleted(change);
    if (m_turns)
        m_turns->changes().addDeleted(change);
}

void ChangeTracker::addBulk(EntityMask entities)
{
    m_sinceSave.addBulk(entities);
    if (m_turns)
        m_turns->changes().addBulk(entities);
}

void ChangeTracker::add(const ChangeSet &changes)
{
    m_sinceSave.add(changes);
    if (m_turns)
        m_turns->changes().add(changes);
}

ChangeSet ChangeTracker::takeSaved()
{
    ChangeSet saved = m_sinceSave.take();
    setHasChanges(false);
    return saved;
}

void ChangeTracker::setHasChanges(bool hasChanges)
{
    if (m_hasChanges == hasChanges)
        return;
    m_hasChanges = hasChanges;
    Q_EMIT hasChangesChanged(hasChanges);
}

} // namespace tembra
