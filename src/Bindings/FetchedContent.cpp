#include "Bindings/FetchedContent.h"

#include "Store/Results/FetchedResultsController.h"
#include "Toolkit/List/ArrayController.h"

#include <utility>

namespace tembra {

using namespace std::chrono_literals;

FetchedContent::FetchedContent(FetchedResultsController &results, ArrayController &list,
                               QObject *parent)
    : QObject(parent)
    , m_results(results)
    , m_list(list)
{
    m_retryTimer.setSingleShot(true);
    m_retryTimer.setInterval(2s);
    connect(&m_retryTimer, &QTimer::timeout, this, &FetchedContent::retry);
    connect(&m_results, &FetchedResultsController::contentDidChange, this, &FetchedContent::update);
}

void FetchedContent::fetch()
{
    const Result<void> fetched = m_results.performFetch();
    m_isFetched = fetched.has_value();
    if (m_isFetched)
        update();
    else
        setReadError(fetched.error());
}

void FetchedContent::retry()
{
    if (m_isFetched)
        update();
    else
        fetch();
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
    ArrayController::ObjectList content;
    if (objects) {
        content = {objects->begin(), objects->end()};
    } else {
        for (const ArrayController::Object &listed : m_list.content()) {
            if (!std::static_pointer_cast<ManagedObject>(listed)->isDeleted())
                content.append(listed);
        }
    }
    const bool hasNewRows = m_list.updateContent(content);
    setReadError(objects ? std::nullopt : std::optional(objects.error()));
    Q_EMIT contentChanged(hasNewRows);
    selectPendingRecords();
}

void FetchedContent::setReadError(const std::optional<Error> &error)
{
    if (error)
        m_retryTimer.start();
    else
        m_retryTimer.stop();
    const bool changes = m_readError.has_value() != error.has_value();
    m_readError = error;
    if (changes)
        Q_EMIT readErrorChanged();
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
