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

QAction *addCommand(QMenu &menu, const QString &title, const QString &objectName,
                    const QKeySequence &shortcut, std::function<void()> perform)
{
    QAction *command = menu.addAction(title);
    command->setObjectName(objectName);
    command->setShortcut(shortcut);
    // None of them belongs into the application menu that some desktops have.
    command->setMenuRole(QAction::NoRole);
    QObject::connect(command, &QAction::triggered, &menu, std::move(perform));
    return command;
}

QAction *addSaveCommand(QMenu &menu, CoreDataInterface &coreData)
{
    QAction *save = addCommand(menu,
                               QCoreApplication::translate("JournalMenus", "&Save", "File menu"),
                               u"saveAction"_s, QKeySequence::Save,
                               [&coreData] { coreData.save(); });
    save->setIcon(icons::icon(icons::Name::Save));
    return save;
}

QAction *addQuitCommand(QMenu &menu, std::function<void()> quitRequested)
{
    return addCommand(menu, QCoreApplication::translate("JournalMenus", "&Quit", "File menu"),
                      u"quitAction"_s, QKeySequence(Qt::CTRL | Qt::Key_Q),
                      std::move(quitRequested));
}

void addJournalMenus(QMainWindow &window, CoreDataInterface &coreData,
                     std::function<bool()> commitEditing, std::function<void()> quitRequested)
{
    QMenu &file = *window.menuBar()->addMenu(
        QCoreApplication::translate("tembra::MainWindow", "&File", "Menu"));
    addSaveCommand(file, coreData);
    addCommand(file, QCoreApplication::translate("JournalMenus", "&Close Window", "File menu"),
               u"closeAction"_s, QKeySequence(Qt::CTRL | Qt::Key_W), [&window] { window.close(); });
    file.addSeparator();
    addQuitCommand(file, std::move(quitRequested));
    QMenu &edit = *window.menuBar()->addMenu(
        QCoreApplication::translate("tembra::MainWindow", "&Edit", "Menu"));
    auto *commands = new EditCommands(*coreData.viewContext().undoManager(),
                                      std::move(commitEditing), &window);
    commands->addUndoTo(edit);
    edit.addSeparator();
    commands->addClipboardTo(edit);
}

} // namespace tembra
