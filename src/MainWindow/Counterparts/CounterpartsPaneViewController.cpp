#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"

#include "Bindings/RecordDeletion.h"
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
#include "Preferences/InputControls/RowNameEditor.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/PlainLabel.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<Counterpart> asCounterpart(const ArrayController::Object &object)
{
    return std::static_pointer_cast<Counterpart>(object);
}

constexpr int narrowestPane = 220;

QToolButton *segment(icons::Name icon, const QString &name, const QString &objectName)
{
    auto *button = new QToolButton;
    button->setObjectName(objectName);
    button->setIcon(icons::icon(icon));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(name);
    setPlainToolTip(button, name);
    return button;
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
    , m_results(coreData.viewContext(), JournalQueries::counterparts())
    , m_content(m_results, *m_counterpartsArrayController)
{
    buildLayout();
    createActions();
    connectSignals();
    viewDidLoad();
}

CounterpartsPaneViewController::~CounterpartsPaneViewController() = default;

void CounterpartsPaneViewController::buildLayout()
{
    setObjectName(u"counterpartsPane"_s);
    setMinimumWidth(narrowestPane);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    buildList();
    buildEmptyState();
    buildUnreadableState();
    m_stack = new QStackedWidget;
    m_stack->addWidget(m_tableView);
    m_stack->addWidget(m_emptyState);
    m_stack->addWidget(m_unreadableState);
    setFocusProxy(m_tableView);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(m_stack, 1);
    layout->addWidget(buildFooter());
}

QWidget *CounterpartsPaneViewController::buildHeader()
{
    auto *title = new PlainLabel(tr("Teammates", "Title of the list of teammates"));
    title->setObjectName(u"teammatesTitle"_s);
    title->setFont(theme::titleFont(font()));
    auto *header = new QWidget;
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(theme::wideMargin, theme::margin, theme::relatedSpacing,
                               theme::relatedSpacing);
    layout->addWidget(title, 1);
    layout->addWidget(buildSegments());
    return header;
}

QWidget *CounterpartsPaneViewController::buildSegments()
{
    auto *segments = new QWidget;
    segments->setObjectName(u"addDeleteSegments"_s);
    auto *layout = new QHBoxLayout(segments);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    const QList<QToolButton *> buttons{
        segment(icons::Name::Add, tr("Add a teammate", "Tooltip and accessible name"),
                u"addTeammateButton"_s),
        segment(icons::Name::Remove,
                tr("Delete the selected teammates", "Tooltip and accessible name"),
                u"deleteTeammatesButton"_s)};
    for (int index = 0; index < buttons.size(); ++index) {
        layout->addWidget(buttons.at(index));
        connect(buttons.at(index), &QToolButton::clicked, this,
                [this, index] { handleTeammateAddDelete(index); });
    }
    return segments;
}

void CounterpartsPaneViewController::buildList()
{
    m_tableView = new CounterpartListView;
    m_tableView->setObjectName(u"tableView"_s);
    m_tableView->setAccessibleName(tr("Teammates", "Title of the list of teammates"));
    m_tableView->setModel(m_counterpartsArrayController);
    m_rowDelegate = new CounterpartRowDelegate(m_tableView);
    m_tableView->setItemDelegate(m_rowDelegate);
}

void CounterpartsPaneViewController::buildEmptyState()
{
    m_emptyState = new EmptyState(tr("No teammates yet", "Stands in the empty list of teammates"),
                                  tr("Add the people you meet one-on-one.",
                                     "Stands in the empty list of teammates"),
                                  tr("Add Teammate", "Button in the empty list of teammates"));
    m_emptyState->setObjectName(u"noTeammates"_s);
    connect(m_emptyState, &EmptyState::triggered, this, [this] { handleTeammateAddDelete(0); });
}

void CounterpartsPaneViewController::buildUnreadableState()
{
    m_unreadableState = new EmptyState(tr("The teammates could not be read",
                                          "Stands in the list of teammates after a failure"),
                                       QString(),
                                       tr("Try Again", "Button: reads the teammates once more"));
    m_unreadableState->setObjectName(u"unreadableTeammates"_s);
    connect(m_unreadableState, &EmptyState::triggered, &m_content, &FetchedContent::retry);
}

QWidget *CounterpartsPaneViewController::buildFooter()
{
    auto *tags = new QPushButton(tr("Tags", "Button: opens the window of all tags"));
    tags->setObjectName(u"tagsButton"_s);
    setPlainToolTip(tags, tr("Show all tags and the meetings that carry them"));
    tags->setFocusPolicy(Qt::TabFocus);
    connect(tags, &QPushButton::clicked, this, &CounterpartsPaneViewController::handleTagsButton);
    auto *footer = new QWidget;
    auto *layout = new QHBoxLayout(footer);
    layout->setContentsMargins(theme::margin, theme::relatedSpacing, theme::margin,
                               theme::relatedSpacing);
    layout->setSpacing(theme::relatedSpacing);
    layout->addWidget(tags);
    layout->addStretch();
    return footer;
}

void CounterpartsPaneViewController::createActions()
{
    m_renameAction = new QAction(tr("&Rename…", "Context menu of a teammate"), m_tableView);
    m_renameAction->setObjectName(u"renameAction"_s);
    m_renameAction->setEnabled(false);
    connect(m_renameAction, &QAction::triggered, this,
            &CounterpartsPaneViewController::renameSelected);

    auto *deleteAction = new QAction(tr("&Delete…", "Context menu of a teammate"), m_tableView);
    deleteAction->setObjectName(u"deleteAction"_s);
    deleteAction->setShortcut(QKeySequence::Delete);
    deleteAction->setShortcutContext(Qt::WidgetShortcut);
    connect(deleteAction, &QAction::triggered, this,
            &CounterpartsPaneViewController::handleDeleteFromMenu);

    m_tableView->addActions({m_renameAction, deleteAction});
    m_tableView->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, m_tableView, nullptr, nullptr, Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                &CounterpartsPaneViewController::focusMeetings);
    }
}

void CounterpartsPaneViewController::connectSignals()
{
    connect(&m_content, &FetchedContent::readErrorChanged, this,
            &CounterpartsPaneViewController::readErrorDidChange);
    connect(&m_content, &FetchedContent::contentChanged, this, [this](bool hasNewRows) {
        if (hasNewRows)
            m_counterpartsArrayController->rearrangeObjects();
    });
    connect(&m_content, &FetchedContent::pendingRecordsSelected, this,
            &CounterpartsPaneViewController::scrollToSelection);
    connect(m_counterpartsArrayController, &ArrayController::selectionChanged, this,
            &CounterpartsPaneViewController::tableViewSelectionDidChange);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(m_counterpartsArrayController, signal, this,
                &CounterpartsPaneViewController::updateVisiblePage);
    connect(&m_notifications, &NotificationCenter::didChangeStaleness, this,
            &CounterpartsPaneViewController::reload);
    connect(&m_notifications, &NotificationCenter::didChangeEmoji, this,
            &CounterpartsPaneViewController::reload);
}

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

void CounterpartsPaneViewController::viewDidLoad()
{
    m_counterpartsArrayController->setNewObject(
        [this] { return m_coreData.viewContext().insert<Counterpart>(); });
    m_counterpartsArrayController->setTableView(m_tableView);
    m_counterpartsArrayController->bindSelection(m_tableView->selectionModel());
    m_content.fetch();
    updateVisiblePage();
}

void CounterpartsPaneViewController::readErrorDidChange()
{
    if (const std::optional<Error> &error = m_content.readError()) {
        qCWarning(windowLog, "Failed to fetch entities: %s", qUtf8Printable(error->description()));
        m_unreadableState->setSentence(error->message);
    }
    updateVisiblePage();
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
    const int row = m_content.rowOf(counterpart);
    if (row < 0) {
        m_content.selectWhenListed(counterpart);
        return;
    }
    if (row != m_counterpartsArrayController->selectionIndex())
        m_counterpartsArrayController->setSelectionIndex(row);
    scrollToSelection();
}

void CounterpartsPaneViewController::scrollToSelection()
{
    m_tableView->scrollTo(
        m_counterpartsArrayController->index(m_counterpartsArrayController->selectionIndex(), 0));
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
    if (row >= 0)
        editInPlace(*m_tableView, m_counterpartsArrayController->index(row, 0));
}

void CounterpartsPaneViewController::askToDelete()
{
    QList<std::shared_ptr<ManagedObject>> selected;
    for (const ArrayController::Object &object : m_counterpartsArrayController->selectedObjects())
        selected.append(asCounterpart(object));
    const DeletionTexts texts{.question = tr("Do you really want to delete these teammates?",
                                             "Asks before teammates are deleted"),
                              .details = tr("%1 will be removed.",
                                            "Number of teammates to be deleted")
                                             .arg(QString::number(selected.size())),
                              .failure = tr("The teammates could not be deleted.",
                                            "Alert when a deletion fails")};
    confirmDeletion(*this, m_coreData.viewContext(), selected, texts, [this] {
        if (!m_viewCoordinator.suspendSync && !hasSelection())
            setTimelineCounterpart(nullptr);
        reload();
    });
}

void CounterpartsPaneViewController::reload()
{
    m_tableView->viewport()->update();
}

void CounterpartsPaneViewController::updateVisiblePage()
{
    QWidget *page = m_tableView;
    QWidget *focusProxy = m_tableView;
    if (m_counterpartsArrayController->rowCount() == 0) {
        EmptyState *state = m_content.readError() ? m_unreadableState : m_emptyState;
        page = state;
        focusProxy = state->button();
    }
    if (m_stack->currentWidget() == page)
        return;
    const bool hadFocus = m_stack->isAncestorOf(QApplication::focusWidget());
    m_stack->setCurrentWidget(page);
    setFocusProxy(focusProxy);
    if (hadFocus)
        setFocus();
}

} // namespace tembra
