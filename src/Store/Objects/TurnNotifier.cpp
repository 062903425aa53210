#include "Store/Objects/TurnNotifier.h"

#include <utility>

namespace tembra {

PendingChanges &TurnNotifier::changes()
{
    if (!std::exchange(m_isEndScheduled, true))
        QMetaObject::invokeMethod(this, &TurnNotifier::endTurn, Qt::QueuedConnection);
    return m_changes;
}

void TurnNotifier::notify()
{
    if (m_changes.isEmpty())
        return;
    const ChangeSet changes = m_changes.take();
    if (!changes.isEmpty())
        Q_EMIT changed(changes);
}

void TurnNotifier::endTurn()
{
    m_isEndScheduled = false;
    Q_EMIT turnWillEnd();
    notify();
}

} // namespace tembra
