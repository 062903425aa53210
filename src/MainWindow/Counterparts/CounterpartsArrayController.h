#pragma once

#include "Preferences/InputControls/AutoEditArrayController.h"

namespace tembra {

/// Lists the teammates. Column 0 is the name, the others are texts derived from the meetings.
class CounterpartsArrayController final : public AutoEditArrayController
{
    Q_OBJECT

public:
    explicit CounterpartsArrayController(QObject *parent = nullptr);

    /// Adds the text of the whole row for assistive technology.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};

} // namespace tembra
