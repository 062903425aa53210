#pragma once

#include "Store/Results/FetchedResultsModel.h"

#include <memory>

namespace tembra {

class Session;

/// The fetched meetings of a teammate as rows of the strip.
class SessionTimelineModel final : public FetchedResultsModel
{
    Q_OBJECT

public:
    using FetchedResultsModel::FetchedResultsModel;

    enum Role {
        SessionRole = Qt::UserRole, ///< The meeting as std::shared_ptr<Session>.
    };

    /// Null for a row whose meeting is gone and which is about to go too.
    std::shared_ptr<Session> sessionAt(int row) const;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};

} // namespace tembra
