#pragma once

#include "Store/Objects/PendingChanges.h"

#include <QObject>

namespace tembra {

/// Collects what changes in a turn of the event loop and tells it once, at the end of the turn.
class TurnNotifier : public QObject
{
    Q_OBJECT

public:
    /// What changed in this turn, to add to: a turn with changes has an end.
    PendingChanges &changes();
    /// Emits what changed so far now, instead of at the end of the turn.
    void notify();

Q_SIGNALS:
    /// Before the changes of the turn are emitted.
    void turnWillEnd();
    void changed(const tembra::ChangeSet &changes);

private:
    void endTurn();

    PendingChanges m_changes;
    bool m_isEndScheduled = false;
};

} // namespace tembra
