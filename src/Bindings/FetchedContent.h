#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectID.h"

#include <QObject>
#include <QSet>
#include <QTimer>

#include <optional>

namespace tembra {

class ArrayController;
class FetchedResultsController;

/// Keeps the content of an array controller equal to a live result.
///
/// Rows come and go one by one, so that the selection, the scrolling and an open editor survive. The
/// array controller arranges the rows; among equals they stand in the order of the result.
///
/// A result that cannot be read is not an empty one: the list keeps the rows it has, but for those
/// that are known to be gone, and reading is retried every two seconds.
class FetchedContent final : public QObject
{
    Q_OBJECT

public:
    /// @p results and @p list must outlive this object.
    FetchedContent(FetchedResultsController &results, ArrayController &list,
                   QObject *parent = nullptr);

    /// Runs the request, fills the list, and follows the result from here on.
    void fetch();
    /// Reads once more, without waiting for the next attempt.
    void retry();
    /// Why the list cannot be read at present; null when it was read.
    const std::optional<Error> &readError() const { return m_readError; }

    /// The row in which a record is listed; −1 when it is not.
    int rowOf(ObjectID id) const;
    /// Selects a record with the next change of the result that brings it, as an undo is about to.
    void selectWhenListed(ObjectID id);

Q_SIGNALS:
    /// readError() begins or ends.
    void readErrorChanged();
    /// The list holds what the result holds. With @p hasNewRows some rows were appended, and the
    /// list is not arranged yet.
    void contentChanged(bool hasNewRows);
    /// A record of selectWhenListed() is listed and selected.
    void pendingRecordsSelected();

private:
    void update();
    void setReadError(const std::optional<Error> &error);
    void selectPendingRecords();

    FetchedResultsController &m_results;
    ArrayController &m_list;
    QSet<ObjectID> m_pendingSelection;
    std::optional<Error> m_readError;
    bool m_isFetched = false; ///< The result follows the store.
    QTimer m_retryTimer;
};

} // namespace tembra
