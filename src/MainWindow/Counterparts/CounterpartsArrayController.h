#pragma once

#include "Preferences/InputControls/AutoEditArrayController.h"

namespace tembra {

/// The list of teammates: column 0 is the name, the others are what its row derives from meetings.
class CounterpartsArrayController final : public AutoEditArrayController
{
    Q_OBJECT

public:
    explicit CounterpartsArrayController(QObject *parent = nullptr);

    /// Besides the usual roles the text of the whole row for whoever hears the list.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};

} // namespace tembra
