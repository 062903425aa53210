#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "MainWindow/Counterparts/CounterpartListView.h"
#include "MainWindow/Counterparts/CounterpartRowDelegate.h"
#include "MainWindow/Counterparts/CounterpartsArrayController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/ViewCoordinator.h"
#include "Model/CoreDataInterface.h"
#include "Model/JournalQueries.h"
#include "Model/NotificationCenter.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Toolkit/Alert.h"
#include "Toolkit/EmptyState.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>

#include <utility>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<Counterpart> asCounterpart(const ArrayController::Object &object)
{
    return std::static_pointer_cast<Counterpart>(object);
}

} // namespace

CounterpartsPaneViewController::CounterpartsPaneViewController(ViewCoordinator &viewCoordinator,
                                                               CoreDataInterface &coreData,
                                                               NotificationCenter &notifications,
                                                               QWidget *parent)
    : QWidget(parent)
    , m_viewCoordinator(viewCoordinator)
    , m_coreData(coreData)
    , m_notifications(notifications)
    , m_counterpartsArrayController(new CounterpartsArrayController(this))
{
    buildLayout();
    createActions();
    connectSignals();
    viewDidLoad();
}

CounterpartsPaneViewController::~CounterpartsPaneViewController() = default;

AutoEditArrayController &CounterpartsPaneViewController::counterpartsArrayController() const
{
    return *m_counterpartsArrayController;
}

QList<std::shared_ptr<Counterpart>> CounterpartsPaneViewController::counterparts() const
{
    QList<std::shared_ptr<Counterpart>> listed;
    for (const ArrayController::Object &object : m_counterpartsArrayController->arrangedObjects())
        listed.append(asCounterpart(object));
    return listed;
}

void CounterpartsPaneViewController::handleCreateBackup()
{
    QList<ObjectID> teammates;
    for (const std::shared_ptr<Counterpart> &counterpart : counterparts())
        teammates.append(counterpart->objectID());
    Q_EMIT backupRequested(teammates);
}

void CounterpartsPaneViewController::handleTagsButton()
{
    Q_EMIT tagBrowserRequested();
}

void CounterpartsPaneViewController::handleImportBackup()
{
    Q_EMIT importRequested();
}

bool CounterpartsPaneViewController::hasSelection() const
{
    return m_counterpartsArrayController->selectionIndex() >= 0;
}

void CounterpartsPaneViewController::connectSignals()
{
    connect(&m_coreData.viewContext(), &ManagedObjectContext::objectsDidChange, this,
            &CounterpartsPaneViewController::followStore);
    connect(m_counterpartsArrayController, &ArrayController::selectionChanged, this,
            &CounterpartsPaneViewController::tableViewSelectionDidChange);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(m_counterpartsArrayController, signal, this,
                &CounterpartsPaneViewController::showWhatThereIs);
    connect(&m_notifications, &NotificationCenter::didChangeStaleness, this,
            &CounterpartsPaneViewController::reload);
    connect(&m_notifications, &NotificationCenter::didChangeEmoji, this,
            &CounterpartsPaneViewController::reload);
}

void CounterpartsPaneViewController::viewDidLoad()
{
    m_counterpartsArrayController->setNewObject(
        [this] { return m_coreData.viewContext().insert<Counterpart>(); });
    m_counterpartsArrayController->setDeleteObjects(
        [this](const ArrayController::ObjectList &objects) { removeFromStore(objects); });
    m_counterpartsArrayController->setTableView(m_tableView);
    m_counterpartsArrayController->bindSelection(m_tableView->selectionModel());
    fetchCounterparts();
}

void CounterpartsPaneViewController::fetchCounterparts()
{
    const auto found = m_coreData.viewContext().fetchObjects(JournalQueries::counterparts());
    if (!found) {
        qCWarning(windowLog, "Failed to fetch entities: %s",
                  qUtf8Printable(found.error().description()));
        return;
    }
    // A new content ends what is being typed and scrolls to the top.
    commitEditing();
    const int scrolledTo = m_tableView->verticalScrollBar()->value();
    m_counterpartsArrayController->setContent({found->begin(), found->end()});
    m_tableView->verticalScrollBar()->setValue(scrolledTo);
    showWhatThereIs();
}

void CounterpartsPaneViewController::followStore(const ChangeSet &changes)
{
    ArrayController::ObjectList vanished;
    for (const ArrayController::Object &object : m_counterpartsArrayController->content()) {
        if (asCounterpart(object)->isDeleted())
            vanished.append(object);
    }
    m_counterpartsArrayController->removeObjects(vanished);

    const ArrayController::ObjectList unlisted = unlistedInsertions(changes);
    const QSet<ObjectID> awaited = std::exchange(m_awaited, {});
    if (unlisted.isEmpty() && !changes.isWholesale(counterpartEntity()))
        return;
    fetchCounterparts();
    ArrayController::ObjectList revealed = unlisted;
    revealed.removeIf(
        [&](const auto &object) { return !awaited.contains(asCounterpart(object)->objectID()); });
    if (revealed.isEmpty())
        return;
    m_counterpartsArrayController->setSelectedObjects(revealed);
    m_tableView->scrollTo(
        m_counterpartsArrayController->index(m_counterpartsArrayController->selectionIndex(), 0));
}

int CounterpartsPaneViewController::counterpartEntity() const
{
    return m_coreData.viewContext().container().model().entityIndex(Counterpart::entityName());
}

ArrayController::ObjectList CounterpartsPaneViewController::unlistedInsertions(
    const ChangeSet &changes) const
{
    ManagedObjectContext &context = m_coreData.viewContext();
    const int entity = counterpartEntity();
    ArrayController::ObjectList unlisted;
    for (const ObjectChange &change : changes.inserted) {
        if (change.id.entity != entity)
            continue;
        const auto counterpart = context.object<Counterpart>(change.id);
        if (counterpart && m_counterpartsArrayController->rowOf(counterpart.get()) < 0)
            unlisted.append(counterpart);
    }
    return unlisted;
}

void CounterpartsPaneViewController::tableViewSelectionDidChange()
{
    const ArrayController::ObjectList selected = m_counterpartsArrayController->selectedObjects();
    m_renameAction->setEnabled(!selected.isEmpty());
    if (!m_viewCoordinator.suspendSync)
        setTimelineCounterpart(selected.isEmpty() ? nullptr : asCounterpart(selected.first()));
    Q_EMIT selectionChanged();
}

void CounterpartsPaneViewController::setTimelineCounterpart(
    const std::shared_ptr<Counterpart> &counterpart)
{
    require(m_viewCoordinator.detailPaneViewController, "The list knows the meeting pane");
    m_viewCoordinator.detailPaneViewController->setProperty("selectedCounterpart",
                                                            QVariant::fromValue(counterpart));
}

void CounterpartsPaneViewController::focusMeetings()
{
    require(m_viewCoordinator.detailPaneViewController, "The list knows the meeting pane");
    if (hasSelection())
        m_viewCoordinator.detailPaneViewController->setFocus(Qt::OtherFocusReason);
}

void CounterpartsPaneViewController::reveal(ObjectID counterpart)
{
    const auto object = m_coreData.viewContext().object<Counterpart>(counterpart);
    const int row = m_counterpartsArrayController->rowOf(object.get());
    if (row < 0) {
        m_awaited.insert(counterpart);
        return;
    }
    if (row != m_counterpartsArrayController->selectionIndex())
        m_counterpartsArrayController->setSelectionIndex(row);
    m_tableView->scrollTo(m_counterpartsArrayController->index(row, 0));
}

bool CounterpartsPaneViewController::commitEditing()
{
    m_rowDelegate->commitOpenEditor();
    return true;
}

void CounterpartsPaneViewController::handleTeammateAddDelete(int segment)
{
    if (segment == 0)
        m_counterpartsArrayController->add();
    else
        askToDelete();
}

void CounterpartsPaneViewController::handleDeleteFromMenu()
{
    askToDelete();
}

void CounterpartsPaneViewController::renameSelected()
{
    const int row = m_counterpartsArrayController->selectionIndex();
    if (row < 0)
        return;
    const QModelIndex index = m_counterpartsArrayController->index(row, 0);
    if (m_tableView->isPersistentEditorOpen(index))
        return;
    m_tableView->scrollTo(index);
    m_tableView->setFocus();
    m_tableView->edit(index);
}

void CounterpartsPaneViewController::askToDelete()
{
    const ArrayController::ObjectList selected = m_counterpartsArrayController->selectedObjects();
    const AlertContents contents{.messageText = tr("Do you really want to delete these teammates?",
                                                   "Asks before teammates are deleted"),
                                 .informativeText = tr("%1 will be removed.",
                                                       "Number of teammates to be deleted")
                                                        .arg(QString::number(selected.size())),
                                 .buttons = {tr("Delete", "Button that deletes"),
                                             tr("Cancel", "Button that leaves things as they are")},
                                 .firstButtonDestroys = true};
    Alert::beginSheet(contents, window(), [guard = QPointer(this), selected](int button) {
        if (guard && button == 0)
            guard->deleteCounterparts(selected);
    });
}

void CounterpartsPaneViewController::deleteCounterparts(
    const ArrayController::ObjectList &counterparts)
{
    // Those that were counted, whatever became of the selection in the meantime.
    m_counterpartsArrayController->setSelectedObjects(counterparts);
    m_counterpartsArrayController->remove();
    if (!m_viewCoordinator.suspendSync && !hasSelection())
        setTimelineCounterpart(nullptr);
    reload();
}

void CounterpartsPaneViewController::removeFromStore(const ArrayController::ObjectList &counterparts)
{
    QList<std::shared_ptr<ManagedObject>> records;
    for (const ArrayController::Object &object : counterparts)
        records.append(asCounterpart(object));
    const auto removed = m_coreData.viewContext().deleteObjects(records);
    if (removed)
        return;
    m_counterpartsArrayController->addObjects(counterparts);
    fetchCounterparts();
    m_counterpartsArrayController->setSelectedObjects(counterparts);
    qCWarning(windowLog, "Could not delete teammates: %s",
              qUtf8Printable(removed.error().description()));
    Alert::beginSheet({.messageText = tr("The teammates could not be deleted.",
                                         "Alert when a deletion fails"),
                       .informativeText = removed.error().description(),
                       .buttons = {tr("OK", "Button that closes an alert")}},
                      window(), [](int) {});
}

void CounterpartsPaneViewController::reload()
{
    m_tableView->viewport()->update();
}

void CounterpartsPaneViewController::showWhatThereIs()
{
    const bool isEmpty = m_counterpartsArrayController->rowCount() == 0;
    QWidget *page = isEmpty ? static_cast<QWidget *>(m_emptyState) : m_tableView;
    if (m_stack->currentWidget() == page)
        return;
    const bool hadFocus = m_stack->isAncestorOf(QApplication::focusWidget());
    m_stack->setCurrentWidget(page);
    setFocusProxy(isEmpty ? static_cast<QWidget *>(m_emptyState->button()) : m_tableView);
    if (hadFocus)
        setFocus();
}

} // namespace tembra
