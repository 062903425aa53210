#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectID.h"

#include <QObject>
#include <QSet>

namespace tembra {

class ArrayController;
class FetchedResultsController;

/// Keeps the content of an array controller equal to a live result.
///
/// Rows come and go one by one, so that the selection, the scrolling and an open editor survive. The
/// array controller arranges the rows; among equals they stand in the order of the result.
class FetchedContent final : public QObject
{
    Q_OBJECT

public:
    /// @p results and @p list must outlive this object.
    FetchedContent(FetchedResultsController &results, ArrayController &list,
                   QObject *parent = nullptr);

    /// Runs the request, fills the list, and follows the result from here on.
    Result<void> fetch();

    /// The row in which a record is listed; −1 when it is not.
    int rowOf(ObjectID id) const;
    /// Selects a record with the next change of the result that brings it, as an undo is about to.
    void selectWhenListed(ObjectID id);

Q_SIGNALS:
    /// The list holds what the result holds. With @p hasNewRows some rows were appended, and the
    /// list is not arranged yet.
    void contentChanged(bool hasNewRows);
    /// A record of selectWhenListed() is listed and selected.
    void pendingRecordsSelected();

private:
    void update();
    void selectPendingRecords();

    FetchedResultsController &m_results;
    ArrayController &m_list;
    QSet<ObjectID> m_pendingSelection;
};

} // namespace tembra
