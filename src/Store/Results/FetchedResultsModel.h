#pragma once

#include "Store/Results/FetchedResultsController.h"

#include <QAbstractListModel>
#include <QPointer>

#include <memory>
#include <vector>

namespace tembra {

/// A live result as rows for views; a subclass says what a row shows.
///
/// Keeps a list of keys of its own, which is always what the views know of: the results may be
/// ahead of it while they tell a change. data() of a subclass reads rows by objectAt() and idAt()
/// only. Persistent indexes, and so selections, stay with their records.
class FetchedResultsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit FetchedResultsModel(QObject *parent = nullptr);
    ~FetchedResultsModel() override;

    /// Shows the rows of @p controller, which has fetched already and may go at any time; null
    /// shows none.
    void setResultsController(FetchedResultsController *controller);
    FetchedResultsController *resultsController() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    ObjectID idAt(int row) const;
    int rowOf(ObjectID id) const; ///< -1 when there is no such row.
    /// The object of a row, loaded with its neighbours. Null when the record has vanished.
    std::shared_ptr<ManagedObject> objectAt(int row) const;

    /// The rows stay, but what they show may read differently.
    void refresh(int row);
    void refreshAll();

private:
    void reset();
    void takeOver();
    void applyOneByOne();
    void applyAtOnce();
    /// Applies the steps from @p first on that make one range, and returns the first one after it.
    size_t removeRange(size_t first);
    size_t insertRange(size_t first);
    size_t updateRange(size_t first);
    void move(const RowChange &step);
    int rowAfterPredecessorOf(int newRow) const;

    QPointer<FetchedResultsController> m_results;
    int m_entity = -1;
    std::vector<qint64> m_keys;
    std::vector<RowChange> m_steps; ///< Told, not yet applied.
};

} // namespace tembra
