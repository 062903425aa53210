#pragma once

#include "Toolkit/List/ArrayController.h"

namespace tembra {

/// The rows of the recent tags, each a `TagListViewModel`: what is read aloud of a row is its title
/// and, as its description, the shortcut; a row whose tag the meeting has already is disabled.
class RecentTagsArrayController final : public ArrayController
{
    Q_OBJECT

public:
    explicit RecentTagsArrayController(QObject *parent = nullptr);

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
};

} // namespace tembra
