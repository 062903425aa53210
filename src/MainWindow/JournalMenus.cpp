#include "MainWindow/JournalMenus.h"

#include "MainWindow/EditCommands.h"
#include "Model/CoreDataInterface.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/Icons.h"

#include <QAction>
#include <QCoreApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

void addFileMenu(QMainWindow &window, CoreDataInterface &coreData,
                 std::function<void()> quitRequested)
{
    QMenu &menu = *window.menuBar()->addMenu(
        QCoreApplication::translate("MainWindow", "&File", "Menu"));
    QAction *save = menu.addAction(QCoreApplication::translate("MainWindow", "&Save", "File menu"));
    save->setObjectName(u"saveAction"_s);
    save->setShortcut(QKeySequence::Save);
    save->setIcon(icons::icon(icons::Name::Save));
    QObject::connect(save, &QAction::triggered, &window, [&coreData] { coreData.save(); });
    QAction *close = menu.addAction(
        QCoreApplication::translate("JournalMenus", "&Close Window", "File menu"));
    close->setObjectName(u"closeAction"_s);
    close->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
    QObject::connect(close, &QAction::triggered, &window, &QWidget::close);
    menu.addSeparator();
    QAction *quit = menu.addAction(QCoreApplication::translate("MainWindow", "&Quit", "File menu"));
    quit->setObjectName(u"quitAction"_s);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    // The main window's is the one that some desktops show in their own menu.
    quit->setMenuRole(QAction::NoRole);
    QObject::connect(quit, &QAction::triggered, &window, std::move(quitRequested));
}

} // namespace

void addJournalMenus(QMainWindow &window, CoreDataInterface &coreData,
                     std::function<bool()> commitEditing, std::function<void()> quitRequested)
{
    addFileMenu(window, coreData, std::move(quitRequested));
    QMenu &edit = *window.menuBar()->addMenu(
        QCoreApplication::translate("MainWindow", "&Edit", "Menu"));
    auto *commands = new EditCommands(*coreData.viewContext().undoManager(),
                                      std::move(commitEditing), &window);
    commands->addUndoTo(edit);
    edit.addSeparator();
    commands->addClipboardTo(edit);
}

} // namespace tembra
