#include "MainWindow/BackupCommands.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/EditCommands.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "Model/CoreDataInterface.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/Icons.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

// The menus of the main window.

namespace tembra {

using namespace Qt::StringLiterals;

void MainWindow::createMenus()
{
    createFileMenu();
    createEditMenu();
    createGoMenu();
    createDebugMenu();
}

QAction *MainWindow::addCommand(QMenu &menu, const QString &title, const QString &objectName,
                                const QKeySequence &shortcut, std::function<void()> perform)
{
    QAction *command = menu.addAction(title);
    command->setObjectName(objectName);
    command->setShortcut(shortcut);
    // None of them belongs into the application menu that some desktops have.
    command->setMenuRole(QAction::NoRole);
    connect(command, &QAction::triggered, this, std::move(perform));
    return command;
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
    QAction *save = addCommand(menu, tr("&Save", "File menu"), u"saveAction"_s, QKeySequence::Save,
                               [this] { m_coreData.save(); });
    save->setIcon(icons::icon(icons::Name::Save));
    menu.addSeparator();
    m_backupCommands->addTo(menu);
    menu.addSeparator();
    QAction *quit = addCommand(menu, tr("&Quit", "File menu"), u"quitAction"_s,
                               QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { m_quitRequested(); });
    quit->setMenuRole(QAction::QuitRole);
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

} // namespace tembra
