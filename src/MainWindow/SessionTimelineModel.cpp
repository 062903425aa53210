#include "MainWindow/SessionTimelineModel.h"

#include "MainWindow/SessionDescription.h"
#include "Model/Session.h"

namespace tembra {

namespace {

/// Beyond this, moving row after row costs a view more than starting over.
constexpr int mostSingleSteps = 500;

} // namespace

void SessionTimelineModel::setResultsController(FetchedResultsController *controller)
{
    if (m_controller)
        m_controller->disconnect(this);
    m_controller = controller;
    m_changes.clear();
    if (controller) {
        connect(controller, &FetchedResultsController::objectDidChange, this,
                &SessionTimelineModel::collect);
        connect(controller, &FetchedResultsController::contentDidChange, this,
                &SessionTimelineModel::applyChanges);
    }
    reset();
}

void SessionTimelineModel::reset()
{
    beginResetModel();
    m_keys = m_controller ? m_controller->fetchedKeys() : std::vector<qint64>();
    endResetModel();
}

void SessionTimelineModel::refreshAll()
{
    if (!m_keys.empty())
        Q_EMIT dataChanged(index(0), index(int(m_keys.size()) - 1));
}

void SessionTimelineModel::refresh(int row)
{
    if (row >= 0 && row < rowCount())
        Q_EMIT dataChanged(index(row), index(row));
}

void SessionTimelineModel::collect(const RowChange &change)
{
    m_changes.append(change);
}

void SessionTimelineModel::applyChanges()
{
    const QList<RowChange> changes = std::exchange(m_changes, {});
    if (changes.size() > mostSingleSteps) {
        reset();
        return;
    }
    for (const RowChange &change : changes)
        apply(change);
}

void SessionTimelineModel::apply(const RowChange &change)
{
    switch (change.type) {
    case RowChange::Type::Delete:
        beginRemoveRows({}, change.row, change.row);
        m_keys.erase(m_keys.begin() + change.row);
        endRemoveRows();
        break;
    case RowChange::Type::Insert:
        beginInsertRows({}, change.row, change.row);
        m_keys.insert(m_keys.begin() + change.row, change.key);
        endInsertRows();
        break;
    case RowChange::Type::Move: {
        const int from = int(std::ranges::find(m_keys, change.key) - m_keys.begin());
        const int to = change.newRow;
        // A move to where the row already stands is none, and the views must not be told of it.
        if (beginMoveRows({}, from, from, {}, to > from ? to + 1 : to)) {
            m_keys.erase(m_keys.begin() + from);
            m_keys.insert(m_keys.begin() + to, change.key);
            endMoveRows();
        }
        refresh(to);
        break;
    }
    case RowChange::Type::Update:
        refresh(change.row);
        break;
    }
}

std::shared_ptr<Session> SessionTimelineModel::sessionAt(int row) const
{
    if (!m_controller || row < 0 || row >= rowCount() || m_controller->count() == 0)
        return {};
    const qint64 key = m_keys[size_t(row)];
    int fetchedRow = row;
    // In the middle of a change the controller is ahead of the rows that the views know.
    if (row >= m_controller->count() || m_controller->fetchedKeys()[size_t(row)] != key)
        fetchedRow = m_controller->rowOf({m_controller->idAt(0).entity, key});
    if (fetchedRow < 0)
        return {};
    return std::static_pointer_cast<Session>(m_controller->objectAt(fetchedRow));
}

int SessionTimelineModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_keys.size());
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
        return SessionDescription::toolTip(*session);
    default:
        return SessionDescription::spoken(*session);
    }
}

} // namespace tembra
