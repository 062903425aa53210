#pragma once

#include <QObject>
#include <QPointer>

namespace tembra {

class ArrayController;
class CounterpartsPaneViewController;
class DetailPaneViewController;

/// Connects the teammate list and the meeting pane of a window with each other.
class ViewCoordinator : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    QPointer<ArrayController> counterpartsArrayController;
    QPointer<DetailPaneViewController> detailPaneViewController;
    QPointer<CounterpartsPaneViewController> masterViewController;

    /// While true, a change of the list's selection does not reach the meeting pane: the pane is
    /// rearranging the list, and the user selects nothing.
    bool suspendSync = false;

    /// Called once when the three above are set.
    void awakeFromNib();
};

} // namespace tembra
