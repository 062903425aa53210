#pragma once

#include "Bindings/FetchedContent.h"
#include "Model/Counterpart.h"
#include "Store/Results/FetchedResultsController.h"

#include <QWidget>

#include <memory>

class QAction;
class QStackedWidget;

namespace tembra {

class AutoEditArrayController;
class CoreDataInterface;
class CounterpartListView;
class CounterpartRowDelegate;
class CounterpartsArrayController;
class EmptyState;
class NotificationCenter;
class ViewCoordinator;

/// The left pane of the main window: the user's teammates, most neglected first.
///
/// The first selected teammate is the one the meeting pane shows. The list follows the store; it is
/// arranged at the start, when the meeting pane asks for it, and when teammates are inserted
/// elsewhere (by an undo, an import).
class CounterpartsPaneViewController : public QWidget
{
    Q_OBJECT

public:
    /// @p viewCoordinator must know the meeting pane by the time something is selected.
    CounterpartsPaneViewController(ViewCoordinator &viewCoordinator, CoreDataInterface &coreData,
                                   NotificationCenter &notifications, QWidget *parent = nullptr);
    ~CounterpartsPaneViewController() override;

    AutoEditArrayController &counterpartsArrayController() const;
    /// All teammates of the list, in its order.
    QList<std::shared_ptr<Counterpart>> counterparts() const;
    bool hasSelection() const;

    /// Selects a teammate, unless the meeting pane shows it already, and scrolls to it. A teammate
    /// that an undo is about to insert is selected as soon as it is listed.
    void reveal(ObjectID counterpart);
    /// Writes a name being typed into its record, unless an input method is composing it; the
    /// editing goes on. Always true: no name is refused.
    bool commitEditing();

public Q_SLOTS:
    /// Segment 0 adds a teammate; any other asks, then deletes the selected ones.
    void handleTeammateAddDelete(int segment);
    void handleDeleteFromMenu();
    void renameSelected();
    /// Requests a backup of all teammates, in the order of the list.
    void handleCreateBackup();
    void handleImportBackup();
    void handleTagsButton();

Q_SIGNALS:
    void selectionChanged();
    void backupRequested(const QList<tembra::ObjectID> &teammates);
    void importRequested();
    void tagBrowserRequested();

private:
    void buildLayout();
    QWidget *buildHeader();
    QWidget *buildSegments();
    QWidget *buildFooter();
    void buildList();
    void buildEmptyState();
    void buildUnreadableState();
    void createActions();
    void connectSignals();
    void viewDidLoad();

    void updateVisiblePage();
    void readErrorDidChange();
    void scrollToSelection();
    void tableViewSelectionDidChange();
    void setTimelineCounterpart(const std::shared_ptr<Counterpart> &counterpart);
    void focusMeetings();
    void askToDelete();
    void reload();

    ViewCoordinator &m_viewCoordinator;
    CoreDataInterface &m_coreData;
    NotificationCenter &m_notifications;
    CounterpartsArrayController *m_counterpartsArrayController;
    FetchedResultsController m_results;
    FetchedContent m_content;
    CounterpartListView *m_tableView = nullptr;
    CounterpartRowDelegate *m_rowDelegate = nullptr;
    QStackedWidget *m_stack = nullptr;
    EmptyState *m_emptyState = nullptr;
    EmptyState *m_unreadableState = nullptr;
    QAction *m_renameAction = nullptr;
};

} // namespace tembra
