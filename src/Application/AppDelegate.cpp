#include "Application/AppDelegate.h"

#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Foundation/Logging.h"
#include "MainWindow/CounterpartsPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/ViewCoordinator.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/UndoManager.h"
#include "Toolkit/Alert.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <QSessionManager>

namespace tembra {

namespace {

QString savingErrorAdvice(const Error &error)
{
    return AppDelegate::tr("%1\n\nYour changes are still in this window. Tembra tries again with every save.",
                           "What an alert about a failed save says; %1 is the reason")
        .arg(error.message);
}

} // namespace

AppDelegate::AppDelegate(ProgramServices &services, const DataFolder &folder, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_windowStateFile(folder.windowStateFile())
{
    m_presentError = [this](const Error &error) {
        Alert::runModal({.messageText = tr("Your changes could not be saved.", "Alert when saving fails"),
                         .informativeText = savingErrorAdvice(error),
                         .buttons = {tr("OK", "Closes the alert about a failed save")},
                         .style = AlertContents::Style::Critical},
                        m_window.get());
        return false;
    };
    m_services.coreData.setPresentError([this](const Error &error) { m_presentError(error); });
    m_services.coreData.setCommitEditing([this] { return !m_window || m_window->commitEditing(); });
}

AppDelegate::~AppDelegate()
{
    m_services.coreData.setPresentError([](const Error &) {});
    m_services.coreData.setCommitEditing([] { return true; });
}

void AppDelegate::applicationDidFinishLaunching(const std::function<void()> &prepareStore)
{
    m_services.derivedTexts.follow(m_services.coreData.viewContext());
    m_services.coreData.migrateFlagsToTags();
    if (prepareStore)
        prepareStore();
    m_services.defaults.registerDefaults();

    m_window = std::make_unique<MainWindow>(m_services.coreData, m_services.journal, m_services.notifications,
                                            m_windowStateFile, [this] { terminate(); });
    connectUndo();
    m_window->show();
}

void AppDelegate::connectUndo()
{
    UndoManager *undo = m_services.coreData.viewContext().undoManager();
    connect(undo, &UndoManager::willChangeObject, m_window.get(), &MainWindow::reveal);
}

void AppDelegate::terminate()
{
    if (applicationShouldTerminate())
        QCoreApplication::exit(0);
}

bool AppDelegate::applicationShouldTerminate()
{
    if (m_terminating)
        return false;
    const QScopedValueRollback terminating(m_terminating, true);
    if (!m_services.coreData.commitEditing()) {
        qCWarning(applicationLog, "AppDelegate unable to commit editing to terminate");
        return false;
    }
    ManagedObjectContext &context = m_services.coreData.viewContext();
    if (!context.hasChanges())
        return true;
    const auto saved = context.save();
    if (saved)
        return true;
    return !m_presentError(saved.error()) && askQuitAnyway();
}

bool AppDelegate::askQuitAnyway()
{
    const AlertContents question{
        .messageText = tr("Could not save changes while quitting. Quit anyway?",
                          "Quit without saves error question message"),
        .informativeText = tr("Quitting now will lose any changes you have made since the last successful save",
                              "Quit without saves error question info"),
        .buttons = {tr("Quit anyway", "Quit anyway button title"), tr("Cancel", "Cancel button title")},
        .firstButtonDestroys = true,
    };
    return Alert::runModal(question, m_window.get()) == 0;
}

void AppDelegate::commitDataForLogout(QSessionManager &manager)
{
    if (manager.allowsInteraction()) {
        if (!applicationShouldTerminate())
            manager.cancel();
        manager.release();
        return;
    }
    m_services.coreData.commitEditing();
    if (const auto saved = m_services.coreData.viewContext().save(); !saved)
        qCWarning(applicationLog, "Could not save at log-out: %s", qUtf8Printable(saved.error().description()));
}

void AppDelegate::bringForward()
{
    if (!m_window)
        return;
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

MainWindow *AppDelegate::window() const
{
    return m_window.get();
}

CounterpartsPaneViewController *AppDelegate::counterpartsViewController() const
{
    return m_window ? m_window->viewCoordinator().masterViewController.data() : nullptr;
}

QMenu *AppDelegate::debugMenu() const
{
    return m_window ? m_window->debugMenu() : nullptr;
}

ViewCoordinator *AppDelegate::viewCoordinator() const
{
    return m_window ? &m_window->viewCoordinator() : nullptr;
}

PersistentContainer &AppDelegate::persistentContainer() const
{
    return m_services.coreData.persistentContainer();
}

void AppDelegate::setPresentError(std::function<bool(const Error &)> presentError)
{
    m_presentError = std::move(presentError);
}

} // namespace tembra
