#pragma once

#include <QObject>
#include <QPointer>

namespace tembra {

class ArrayController;
class CounterpartsPaneViewController;
class DetailPaneViewController;

/// Through it the teammate list and the meeting pane of a window reach each other.
class ViewCoordinator : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    QPointer<ArrayController> counterpartsArrayController;
    QPointer<DetailPaneViewController> detailPaneViewController;
    QPointer<CounterpartsPaneViewController> masterViewController;

    /// While true, the list's selection does not reach the meeting pane: the pane is having the
    /// list rearranged, and what that does to the list's selection is not the user's choice.
    bool suspendSync = false;

    /// Called once when the three above are set.
    void awakeFromNib();
};

} // namespace tembra
