#include "Bindings/FetchedContent.h"

#include "Store/Results/FetchedResultsController.h"
#include "Toolkit/List/ArrayController.h"

#include <utility>

namespace tembra {

FetchedContent::FetchedContent(FetchedResultsController &results, ArrayController &list,
                               QObject *parent)
    : QObject(parent)
    , m_results(results)
    , m_list(list)
{
    connect(&m_results, &FetchedResultsController::contentDidChange, this, &FetchedContent::update);
}

Result<void> FetchedContent::fetch()
{
    const auto fetched = m_results.performFetch();
    const auto objects = m_results.fetchedObjects();
    m_list.setContent({objects.begin(), objects.end()});
    return fetched;
}

int FetchedContent::rowOf(ObjectID id) const
{
    const int row = m_results.rowOf(id);
    return row < 0 ? -1 : m_list.rowOf(m_results.objectAt(row).get());
}

void FetchedContent::selectWhenListed(ObjectID id)
{
    m_pendingSelection.insert(id);
}

void FetchedContent::update()
{
    const auto objects = m_results.fetchedObjects();
    const bool hasNewRows = m_list.updateContent({objects.begin(), objects.end()});
    Q_EMIT contentChanged(hasNewRows);
    selectPendingRecords();
}

void FetchedContent::selectPendingRecords()
{
    ArrayController::ObjectList listed;
    for (const ObjectID &id : std::exchange(m_pendingSelection, {})) {
        if (const int row = rowOf(id); row >= 0)
            listed.append(m_list.objectAt(row));
    }
    if (listed.isEmpty())
        return;
    m_list.setSelectedObjects(listed);
    Q_EMIT pendingRecordsSelected();
}

} // namespace tembra
