#include "Store/Results/FetchedResultsModel.h"

#include "Foundation/Precondition.h"

#include <QHash>

#include <algorithm>

namespace tembra {

namespace {

/// Beyond this, telling views row after row takes longer than having them lay out everything anew.
constexpr int mostSingleSteps = 500;

using Type = RowChange::Type;

} // namespace

FetchedResultsModel::FetchedResultsModel(QObject *parent) : QAbstractListModel(parent) {}

FetchedResultsModel::~FetchedResultsModel() = default;

void FetchedResultsModel::setResultsController(FetchedResultsController *controller)
{
    if (m_results)
        disconnect(m_results, nullptr, this, nullptr);
    m_results = controller;
    if (controller) {
        connect(controller, &FetchedResultsController::objectDidChange, this,
                [this](const RowChange &step) { m_steps.push_back(step); });
        connect(controller, &FetchedResultsController::contentDidChange, this,
                &FetchedResultsModel::takeOver);
        connect(controller, &QObject::destroyed, this, &FetchedResultsModel::reset);
    }
    reset();
}

FetchedResultsController *FetchedResultsModel::resultsController() const
{
    return m_results;
}

void FetchedResultsModel::reset()
{
    beginResetModel();
    m_steps.clear();
    m_keys = m_results ? m_results->fetchedKeys() : std::vector<qint64>();
    m_entity = m_results ? m_results->entity() : -1;
    endResetModel();
}

int FetchedResultsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_keys.size());
}

ObjectID FetchedResultsModel::idAt(int row) const
{
    require(row >= 0 && row < rowCount(), "a row of the model");
    return {m_entity, m_keys[size_t(row)]};
}

int FetchedResultsModel::rowOf(ObjectID id) const
{
    const auto found = std::find(m_keys.begin(), m_keys.end(), id.key);
    return id.entity != m_entity || found == m_keys.end() ? -1 : int(found - m_keys.begin());
}

std::shared_ptr<ManagedObject> FetchedResultsModel::objectAt(int row) const
{
    require(row >= 0 && row < rowCount(), "a row of the model");
    return m_results ? m_results->objectAmong(m_keys, row) : nullptr;
}

void FetchedResultsModel::refresh(int row)
{
    if (row >= 0 && row < rowCount())
        Q_EMIT dataChanged(index(row), index(row));
}

void FetchedResultsModel::refreshAll()
{
    if (!m_keys.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

void FetchedResultsModel::takeOver()
{
    const auto isUpdate = [](const RowChange &step) { return step.type == Type::Update; };
    const auto updates = std::count_if(m_steps.begin(), m_steps.end(), isUpdate);
    if (m_steps.size() - size_t(updates) > mostSingleSteps)
        applyAtOnce();
    else
        applyOneByOne();
    if (updates > mostSingleSteps)
        refreshAll();
    else
        for (size_t i = m_steps.size() - size_t(updates); i < m_steps.size();)
            i = updateRange(i);
    m_steps.clear();
}

/// A view that is told of a step may show other results at once: then there are no steps left.
void FetchedResultsModel::applyOneByOne()
{
    size_t i = 0;
    while (i < m_steps.size() && m_steps[i].type != Type::Update) {
        const RowChange &step = m_steps[i];
        if (step.type == Type::Delete) {
            i = removeRange(i);
        } else if (step.type == Type::Insert) {
            i = insertRange(i);
        } else {
            move(step);
            ++i;
        }
    }
}

size_t FetchedResultsModel::removeRange(size_t first)
{
    size_t end = first + 1;
    while (end < m_steps.size() && m_steps[end].type == Type::Delete
           && m_steps[end].row == m_steps[end - 1].row - 1)
        ++end;
    const int top = m_steps[end - 1].row;
    const int bottom = m_steps[first].row;
    beginRemoveRows({}, top, bottom);
    m_keys.erase(m_keys.begin() + top, m_keys.begin() + bottom + 1);
    endRemoveRows();
    return end;
}

size_t FetchedResultsModel::insertRange(size_t first)
{
    size_t end = first + 1;
    while (end < m_steps.size() && m_steps[end].type == Type::Insert
           && m_steps[end].row == m_steps[end - 1].row + 1)
        ++end;
    const int row = rowAfterPredecessorOf(m_steps[first].row);
    std::vector<qint64> keys;
    for (size_t i = first; i < end; ++i)
        keys.push_back(m_steps[i].key);
    beginInsertRows({}, row, row + int(keys.size()) - 1);
    m_keys.insert(m_keys.begin() + row, keys.begin(), keys.end());
    endInsertRows();
    return end;
}

void FetchedResultsModel::move(const RowChange &step)
{
    const auto from = int(std::find(m_keys.begin(), m_keys.end(), step.key) - m_keys.begin());
    const int to = rowAfterPredecessorOf(step.newRow);
    // Views must not be told of a move to where the row already stands.
    if (!beginMoveRows({}, from, from, {}, to))
        return;
    const auto begin = m_keys.begin();
    if (from < to)
        std::rotate(begin + from, begin + from + 1, begin + to);
    else
        std::rotate(begin + to, begin + from, begin + from + 1);
    endMoveRows();
}

/// Where a row goes that is to be the @p newRow-th in the end: right behind the one that comes
/// before it. Rows that are yet to move down may still stand further up, and shift everything.
int FetchedResultsModel::rowAfterPredecessorOf(int newRow) const
{
    if (newRow == 0)
        return 0;
    const qint64 predecessor = m_results->fetchedKeys()[size_t(newRow - 1)];
    const auto place = std::find(m_keys.begin() + (newRow - 1), m_keys.end(), predecessor);
    return int(place - m_keys.begin()) + 1;
}

size_t FetchedResultsModel::updateRange(size_t first)
{
    size_t end = first + 1;
    while (end < m_steps.size() && m_steps[end].row == m_steps[end - 1].row + 1)
        ++end;
    Q_EMIT dataChanged(index(m_steps[first].row), index(m_steps[end - 1].row));
    return end;
}

void FetchedResultsModel::applyAtOnce()
{
    Q_EMIT layoutAboutToBeChanged();
    const std::vector<qint64> before = std::exchange(m_keys, m_results->fetchedKeys());
    QHash<qint64, int> rows;
    rows.reserve(qsizetype(m_keys.size()));
    for (size_t row = 0; row < m_keys.size(); ++row)
        rows.insert(m_keys[row], int(row));
    const QModelIndexList persistent = persistentIndexList();
    QModelIndexList moved;
    for (const QModelIndex &old : persistent) {
        const int row = rows.value(before[size_t(old.row())], -1);
        moved.append(row < 0 ? QModelIndex() : index(row, old.column()));
    }
    changePersistentIndexList(persistent, moved);
    Q_EMIT layoutChanged();
}

} // namespace tembra
