#pragma once

#include "Store/Objects/PendingChanges.h"

#include <QObject>

namespace tembra {

class TurnNotifier;

/// Knows what changed in a context since its last save, and passes each change on to the
/// notification at the end of the turn.
class ChangeTracker : public QObject
{
    Q_OBJECT

public:
    /// Without @p turns nothing is told at the end of a turn.
    explicit ChangeTracker(TurnNotifier *turns);

    void addInserted(const ObjectChange &change);
    void addUpdated(ObjectID id, PropertyMask properties);
    void addToOne(ObjectID id, const ToOneChange &change);
    void addDeleted(const ObjectChange &change);
    void addBulk(EntityMask entities);
    void add(const ChangeSet &changes);

    bool hasChanges() const { return m_hasChanges; }
    /// To be called once an edit is complete.
    void didEdit() { setHasChanges(true); }
    /// The changes since the last call; from here on there are none.
    ChangeSet takeSaved();

Q_SIGNALS:
    void hasChangesChanged(bool hasChanges);

private:
    void setHasChanges(bool hasChanges);

    TurnNotifier *m_turns;
    PendingChanges m_sinceSave;
    bool m_hasChanges = false;
};

} // namespace tembra
