#pragma once

#include "Store/FetchedResultsController.h"

#include <QAbstractListModel>
#include <QList>
#include <QPointer>

#include <memory>
#include <vector>

namespace tembra {

class Session;

/// The fetched meetings of a teammate as rows of the strip.
///
/// Keeps the rows' keys only; a meeting is loaded when it is looked at, with those around it, by
/// the results controller.
class SessionTimelineModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    enum Role {
        SessionRole = Qt::UserRole, ///< The meeting as std::shared_ptr<Session>.
    };

    /// Shows the rows of @p controller, which has fetched already; null shows none.
    void setResultsController(FetchedResultsController *controller);
    /// The rows stay, but what they show may read differently.
    void refreshAll();
    void refresh(int row);

    /// Null for a row whose meeting is gone and which is about to go too.
    std::shared_ptr<Session> sessionAt(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    void collect(const RowChange &change);
    void applyChanges();
    void apply(const RowChange &change);
    void reset();

    QPointer<FetchedResultsController> m_controller;
    std::vector<qint64> m_keys;
    QList<RowChange> m_changes;
};

} // namespace tembra
