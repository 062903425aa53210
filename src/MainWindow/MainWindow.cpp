#include "MainWindow/MainWindow.h"

#include "MainWindow/BackupCommands.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/EditCommands.h"
#include "MainWindow/HairlineSplitter.h"
#include "MainWindow/JournalMenus.h"
#include "MainWindow/SaveFailureBanner.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "MainWindow/StatusLine.h"
#include "Model/CoreDataInterface.h"
#include "Model/Note.h"
#include "Preferences/InputControls/AutoEditArrayController.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"
#include "Toolkit/Icons.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize smallestSize(900, 560);
constexpr QSize usualSize(1100, 720);
constexpr int usualListWidth = 300;

const QString stateName = u"mainWindow"_s;

} // namespace

MainWindow::MainWindow(CoreDataInterface &coreData, const JournalServices &services,
                       NotificationCenter &notifications, const QString &windowStateFile,
                       std::function<void()> quitRequested, QWidget *parent)
    : QMainWindow(parent)
    , m_coreData(coreData)
    , m_windowState(windowStateFile)
    , m_quitRequested(std::move(quitRequested))
    , m_counterpartsPane(
          new CounterpartsPaneViewController(m_viewCoordinator, coreData, notifications))
    , m_detailPane(
          new DetailPaneViewController(m_viewCoordinator, coreData, services, notifications))
{
    m_viewCoordinator.counterpartsArrayController = &m_counterpartsPane
                                                         ->counterpartsArrayController();
    m_viewCoordinator.detailPaneViewController = m_detailPane;
    m_viewCoordinator.masterViewController = m_counterpartsPane;
    m_viewCoordinator.awakeFromNib();
    buildLayout();
    m_backupCommands = new BackupCommands(coreData, services, *m_statusLine, this);
    createMenus();
    connectSignals();
    restoreState();
    m_counterpartsPane->setFocus();
}

MainWindow::~MainWindow()
{
    m_windowState.saveWindow(stateName, *this);
    m_windowState.saveSplit(stateName, *m_splitter);
    // An import tells the status line of its end.
    delete m_backupCommands;
    // The panes use the coordinator, a member, which is destroyed before the children.
    delete centralWidget();
}

void MainWindow::buildLayout()
{
    setObjectName(u"mainWindow"_s);
    setWindowTitle(u"Tembra"_s);
    setWindowIcon(icons::application());
    setMinimumSize(smallestSize);
    setAcceptDrops(true);
    m_splitter = new HairlineSplitter(Qt::Horizontal);
    m_splitter->setObjectName(u"splitter"_s);
    m_splitter->addWidget(m_counterpartsPane);
    m_splitter->addWidget(m_detailPane);
    m_splitter->setStretchFactor(1, 1);
    m_saveFailureBanner = new SaveFailureBanner;
    m_statusLine = new StatusLine;
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_splitter, 1);
    layout->addWidget(m_statusLine);
    layout->addWidget(m_saveFailureBanner);
    setCentralWidget(content);
}

void MainWindow::createMenus()
{
    createFileMenu();
    createEditMenu();
    createGoMenu();
    createDebugMenu();
}

void MainWindow::createFileMenu()
{
    QMenu &menu = *menuBar()->addMenu(tr("&File", "Menu"));
    QAction *newTeammate = addCommand(menu, tr("New &Teammate", "File menu"),
                                      u"newTeammateAction"_s,
                                      QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N),
                                      [this] { m_counterpartsPane->handleTeammateAddDelete(0); });
    newTeammate->setIcon(icons::icon(icons::Name::Add));
    m_teammateCommands += addCommand(menu, tr("&New Meeting", "File menu"), u"newMeetingAction"_s,
                                     QKeySequence::New,
                                     [this] { m_detailPane->addSessionFileMenu(); });
    m_rename = addCommand(menu, tr("&Rename Teammate…", "File menu"), u"renameTeammateAction"_s,
                          QKeySequence(Qt::Key_F2),
                          [this] { m_counterpartsPane->renameSelected(); });
    menu.addSeparator();
    addSaveCommand(menu, m_coreData);
    menu.addSeparator();
    m_backupCommands->addTo(menu);
    menu.addSeparator();
    addQuitCommand(menu, [this] { m_quitRequested(); })->setMenuRole(QAction::QuitRole);
}

void MainWindow::createEditMenu()
{
    QMenu &menu = *menuBar()->addMenu(tr("&Edit", "Menu"));
    auto *commands = new EditCommands(
        *m_coreData.viewContext().undoManager(), [this] { return commitEditing(); }, this);
    commands->addUndoTo(menu);
    menu.addSeparator();
    commands->addClipboardTo(menu);
    menu.addSeparator();
    m_meetingCommands += addCommand(menu, tr("Delete &Meeting…", "Edit menu"),
                                    u"deleteMeetingAction"_s, {},
                                    [this] { m_detailPane->handleDelete(); });
    addCommand(menu, tr("&Delete Teammates…", "Edit menu"), u"deleteTeammatesAction"_s, {},
               [this] { m_counterpartsPane->handleDeleteFromMenu(); });
    menu.addSeparator();
    QAction *find = addCommand(menu, tr("&Find in Notes", "Edit menu"), u"findInNotesAction"_s,
                               QKeySequence::Find, [this] { m_detailPane->focusSearchField(); });
    find->setIcon(icons::icon(icons::Name::Search));
    m_teammateCommands += find;
}

void MainWindow::createGoMenu()
{
    QMenu &menu = *menuBar()->addMenu(tr("&Go", "Menu"));
    addCommand(menu, tr("Ta&gs", "Go menu: shows the window of all tags"), u"tagsAction"_s,
               QKeySequence(Qt::CTRL | Qt::Key_T),
               [this] { m_counterpartsPane->handleTagsButton(); });
    menu.addSeparator();
    QAction *next = addCommand(
        menu, tr("&Next Note Field", "Go menu"), u"nextNoteFieldAction"_s,
        QKeySequence(Qt::CTRL | Qt::Key_PageDown),
        [this] { m_detailPane->sessionDetailViewController().handleNextNoteButton(); });
    QAction *previous = addCommand(
        menu, tr("&Previous Note Field", "Go menu"), u"previousNoteFieldAction"_s,
        QKeySequence(Qt::CTRL | Qt::Key_PageUp),
        [this] { m_detailPane->sessionDetailViewController().handlePreviousNoteButton(); });
    next->setIcon(icons::icon(icons::Name::Next));
    previous->setIcon(icons::icon(icons::Name::Previous));
    menu.addSeparator();
    addCommand(menu, tr("To the &Teammates", "Go menu"), u"goToTeammatesAction"_s,
               QKeySequence(Qt::CTRL | Qt::Key_1),
               [this] { m_counterpartsPane->setFocus(Qt::ShortcutFocusReason); });
    m_teammateCommands += addCommand(menu, tr("To the &Meetings", "Go menu"),
                                     u"goToMeetingsAction"_s, QKeySequence(Qt::CTRL | Qt::Key_2),
                                     [this] { m_detailPane->setFocus(Qt::ShortcutFocusReason); });
    QAction *toNotes = addCommand(menu, tr("To the N&otes", "Go menu"), u"goToNotesAction"_s,
                                  QKeySequence(Qt::CTRL | Qt::Key_3), [this] {
                                      m_detailPane->sessionDetailViewController().focusNoteInput();
                                  });
    m_meetingCommands += {next, previous, toNotes};
}

void MainWindow::createDebugMenu()
{
    m_debugMenu = menuBar()->addMenu(tr("&Debug", "Menu"));
    m_debugMenu->setObjectName(u"debugMenu"_s);
    addCommand(*m_debugMenu, tr("&Stuff Sessions", "Debug menu"), u"stuffSessionsAction"_s, {},
               [this] { m_detailPane->stuffSessions(); });
    m_debugMenu->menuAction()->setVisible(false);
}

void MainWindow::connectSignals()
{
    connect(m_saveFailureBanner, &SaveFailureBanner::saveAgainRequested, this,
            [this] { m_coreData.save(); });
    connect(&m_coreData, &CoreDataInterface::saveFailingChanged, m_saveFailureBanner,
            &SaveFailureBanner::setFailing);
    m_saveFailureBanner->setFailing(m_coreData.isSaveFailing());
    connect(m_coreData.viewContext().undoManager(), &UndoManager::willChangeObject, this,
            [this](const ObjectID &id, int) { reveal(id); });
    connect(m_backupCommands, &BackupCommands::createBackupRequested, m_counterpartsPane,
            &CounterpartsPaneViewController::handleCreateBackup);
    connect(m_backupCommands, &BackupCommands::importBackupRequested, m_counterpartsPane,
            &CounterpartsPaneViewController::handleImportBackup);
    connect(m_counterpartsPane, &CounterpartsPaneViewController::backupRequested, m_backupCommands,
            &BackupCommands::createBackup);
    connect(m_counterpartsPane, &CounterpartsPaneViewController::importRequested, m_backupCommands,
            &BackupCommands::importBackup);
    connect(m_counterpartsPane, &CounterpartsPaneViewController::tagBrowserRequested, this,
            [this] { Q_EMIT tagBrowserRequested({}); });
    connect(m_detailPane, &DetailPaneViewController::tagBrowserRequested, this,
            &MainWindow::tagBrowserRequested);
    connect(m_counterpartsPane, &CounterpartsPaneViewController::selectionChanged, this,
            &MainWindow::updateCommands);
    connect(m_detailPane, &DetailPaneViewController::selectedCounterpartChanged, this,
            &MainWindow::updateCommands);
    connect(m_detailPane, &DetailPaneViewController::selectedSessionChanged, this,
            &MainWindow::updateCommands);
    updateCommands();
}

void MainWindow::endEditing()
{
    m_counterpartsPane->commitEditing();
    m_detailPane->endEditing();
}

void MainWindow::openPackages(const QStringList &packagePaths)
{
    m_backupCommands->openPackages(packagePaths);
}

void MainWindow::restoreState()
{
    m_windowState.restoreWindow(stateName, *this, usualSize);
    m_windowState.restoreSplit(stateName, *m_splitter, {usualListWidth, width() - usualListWidth});
}

void MainWindow::updateCommands()
{
    m_rename->setEnabled(m_counterpartsPane->hasSelection());
    for (QAction *command : std::as_const(m_teammateCommands))
        command->setEnabled(m_detailPane->selectedCounterpart() != nullptr);
    for (QAction *command : std::as_const(m_meetingCommands))
        command->setEnabled(m_detailPane->selectedSession() != nullptr);
}

bool MainWindow::commitEditing()
{
    const bool listCommitted = m_counterpartsPane->commitEditing();
    return m_detailPane->commitEditing() && listCommitted;
}

void MainWindow::reveal(const ObjectID &id)
{
    ManagedObjectContext &context = m_coreData.viewContext();
    const ObjectModel &model = context.container().model();
    if (id.entity == model.entityIndex(Counterpart::entityName())) {
        m_counterpartsPane->reveal(id);
    } else if (id.entity == model.entityIndex(Session::entityName())) {
        revealSession(id);
    } else if (id.entity == model.entityIndex(Note::entityName())) {
        const auto note = context.object<Note>(id);
        if (!note)
            return;
        revealSession(note->toOneID(Note::sessionProperty));
        m_detailPane->sessionDetailViewController().showField(note->identifier());
    }
}

void MainWindow::revealSession(const ObjectID &id)
{
    const auto session = m_coreData.viewContext().object<Session>(id);
    if (!session || !session->counterpart())
        return;
    m_counterpartsPane->reveal(session->toOneID(Session::counterpartProperty));
    if (m_detailPane->selectedSession() != session)
        m_detailPane->setSelectedSession(session);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!BackupCommands::packagesIn(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    // The program that dragged the packages must not wait for the answer to a question.
    QMetaObject::invokeMethod(
        this,
        [this, packages = BackupCommands::packagesIn(*event->mimeData())] {
            openPackages(packages);
        },
        Qt::QueuedConnection);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // Quitting can still be cancelled; until then the window stays.
    event->ignore();
    m_quitRequested();
}

} // namespace tembra
