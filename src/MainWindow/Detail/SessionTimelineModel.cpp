#include "MainWindow/Detail/SessionTimelineModel.h"

#include "MainWindow/Session/SessionDescription.h"
#include "Model/Session.h"
#include "Toolkit/PlainToolTip.h"

namespace tembra {

std::shared_ptr<Session> SessionTimelineModel::sessionAt(int row) const
{
    return std::static_pointer_cast<Session>(objectAt(row));
}

QVariant SessionTimelineModel::data(const QModelIndex &index, int role) const
{
    if (role != SessionRole && role != Qt::DisplayRole && role != Qt::ToolTipRole
        && role != Qt::AccessibleTextRole)
        return {};
    const std::shared_ptr<Session> session = sessionAt(index.row());
    if (!session)
        return {};
    switch (role) {
    case SessionRole:
        return QVariant::fromValue(session);
    case Qt::DisplayRole:
        return session->sessionSummary();
    case Qt::ToolTipRole:
        return plainToolTip(SessionDescription::toolTip(*session));
    default:
        return SessionDescription::accessibleText(*session);
    }
}

} // namespace tembra
