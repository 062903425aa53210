#include "Application/AppDelegate.h"

#include "Application/AuxiliaryWindows.h"
#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Backup/Backup.h"
#include "Backup/DetachedCall.h"
#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "MainWindow/BackupCommands.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/StatusLine.h"
#include "MainWindow/ViewCoordinator.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Toolkit/Alert.h"
#include "Toolkit/WindowActivation.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QFileInfo>
#include <QProgressDialog>
#include <QScopedValueRollback>
#include <QSessionManager>

#include <chrono>
#include <optional>
#include <utility>

namespace tembra {

using namespace std::chrono_literals;

namespace {

/// For a backup that is being written when the program is to quit.
constexpr auto backupTimeout = 10s;

QString savingErrorAdvice(const Error &error)
{
    return AppDelegate::tr(
               "%1\n\nYour changes are still in this window. Tembra tries again with every save.",
               "What an alert about a failed save says; %1 is the reason")
        .arg(error.message);
}

} // namespace

AppDelegate::AppDelegate(ProgramServices &services, const DataFolder &folder, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_presentError([this](const Error &error) { return showSavingError(error); })
    , m_windowStateFile(folder.windowStateFile())
    , m_hasRunBefore(QFileInfo::exists(m_windowStateFile))
{
    m_services.coreData.setPresentError([this](const Error &error) { presentError(error); });
    m_services.coreData.setCommitEditing([this] { return commitEditing(); });
    m_services.coreData.setEndEditing([this] { endEditing(); });
    qApp->installEventFilter(this);
}

AppDelegate::~AppDelegate()
{
    m_services.coreData.setPresentError([](const Error &) {});
    m_services.coreData.setCommitEditing([] { return true; });
    m_services.coreData.setEndEditing([] {});
}

void AppDelegate::applicationDidFinishLaunching(const std::function<void()> &prepareStore)
{
    m_services.derivedTexts.follow(m_services.coreData.viewContext());
    const auto migrated = migrateFlags();
    if (prepareStore)
        prepareStore();
    m_services.defaults.registerDefaults();

    m_auxiliaryWindows = std::make_unique<AuxiliaryWindows>(m_services, m_windowStateFile,
                                                            [this] { terminate(); });
    m_window = std::make_unique<MainWindow>(m_services.coreData, m_services.journal,
                                            m_services.notifications, m_windowStateFile,
                                            [this] { terminate(); });
    connect(m_window.get(), &MainWindow::tagBrowserRequested, m_auxiliaryWindows.get(),
            &AuxiliaryWindows::showTags);
    m_window->show();
    showWhatHappenedToStore();
    checkBackupFolder();
    if (!migrated)
        showMigrationError(migrated.error());
    if (!m_packagesToOpen.isEmpty())
        QMetaObject::invokeMethod(
            this, [this] { openFiles(std::exchange(m_packagesToOpen, {})); }, Qt::QueuedConnection);
    if (m_terminationRequested)
        QMetaObject::invokeMethod(this, &AppDelegate::terminate, Qt::QueuedConnection);
}

/// The only thing at a start that takes time in a large journal, and only once in its life.
Result<void> AppDelegate::migrateFlags()
{
    std::optional<QProgressDialog> progress; // Hardly any start needs one.
    return m_services.coreData.migrateFlagsToTags([&](qsizetype done, qsizetype total) {
        if (!progress) {
            progress.emplace(tr("Turning the flags of your meetings into tags …",
                                "Says what is going on"),
                             QString(), 0, 0);
            progress->setWindowModality(Qt::ApplicationModal);
            progress->setMinimumDuration(int(m_progressDelay.count()));
        }
        progress->setMaximum(int(total));
        progress->setValue(int(done));
    });
}

void AppDelegate::showMigrationError(const Error &error)
{
    const AlertContents contents{
        .messageText = tr("The flags of your meetings are tags now, but this could not be saved.",
                          "Alert when saving the tags that flags became fails"),
        .informativeText =
            tr("%1\n\nTembra tries again with every save. If none succeeds before you quit, the "
               "flags become tags again at the next start.",
               "What an alert about tags that could not be saved says; %1 is the reason")
                .arg(error.message),
        .buttons = {tr("OK", "Closes the alert about a failed save")},
        .style = AlertContents::Style::Critical};
    Alert::beginSheet(contents, m_window.get(), [](int) {});
}

/// A journal that is empty for another reason than that the user has just begun, or lacks its log.
void AppDelegate::showWhatHappenedToStore()
{
    const PersistentContainer &container = persistentContainer();
    const StoreOrigin origin = container.storeOrigin();
    if (origin == StoreOrigin::MadeForAnEmptyFile
        || (origin == StoreOrigin::Made && m_hasRunBefore)) {
        const QString folder = QFileInfo(container.storeFile()).path();
        m_window->statusLine().showMessage(
            tr("No journal was found in “%1”, so a new one was begun. If you have a backup, import "
               "it.",
               "Says that the journal is empty because its file was missing")
                .arg(folder),
            tr("Import …", "Button that asks which backup to import"),
            [this] { m_window->backupCommands().importBackup(); });
        qCWarning(applicationLog, "No journal was found, although the program has run before.");
    } else if (!container.logSetAside().isEmpty()) {
        m_window->statusLine().showMessage(
            tr("The log of another file lay beside the journal. It was not used, and is now “%1”.",
               "Says that a file beside the journal was renamed")
                .arg(container.logSetAside()));
    }
}

void AppDelegate::checkBackupFolder()
{
    if (!m_services.defaults.shouldBackUpData())
        return;
    // None is the same as one that is not there.
    const QUrl folder = m_services.defaults.backupFolder().value_or(QUrl());
    // It may be on a disk far away.
    callDetached<bool>(
        this, [folder] { return DefaultsManager::isAvailable(folder); },
        [this](bool isAvailable) {
            if (!isAvailable)
                showBackupFolderAlert();
        });
}

void AppDelegate::showBackupFolderAlert()
{
    const AlertContents contents{
        .messageText = tr("Your specified backup location is not available. Update your "
                          "preferences to continue making backups.",
                          "Alert when backup directory unavailable."),
        .informativeText = {},
        .buttons = {tr("Continue", "Ignore warning for missing backup directory")},
        .style = AlertContents::Style::Warning};
    Alert::beginSheet(contents, m_window.get(), [](int) {});
}

void AppDelegate::openFiles(const QStringList &packagePaths)
{
    bringForward();
    if (m_window)
        m_window->openPackages(packagePaths);
    else
        m_packagesToOpen += packagePaths;
}

void AppDelegate::endTasksAndBackUp()
{
    m_window->backupCommands().endTasks(backupTimeout,
                                        progressPainter(tr("Finishing the backup before quitting …",
                                                           "Says what is going on")));
    const QString programName = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    Backup(m_services.coreData.viewContext(), m_services.defaults, programName)
        .backUp(counterpartsViewController()->counterparts(),
                progressPainter(
                    tr("Writing the backup before quitting …", "Says what is going on")));
    m_window->statusLine().endProgress();
}

/// A function to be called again and again while something is waited for. It paints the windows but
/// takes no input, and shows the activity once it takes long.
std::function<void()> AppDelegate::progressPainter(const QString &activity)
{
    return [this, activity, delay = QDeadlineTimer(m_progressDelay), isShown = false]() mutable {
        if (!isShown && delay.hasExpired()) {
            isShown = true;
            m_window->statusLine().showProgress(activity, false);
        }
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };
}

bool AppDelegate::commitEditing()
{
    const bool auxiliariesCommitted = !m_auxiliaryWindows || m_auxiliaryWindows->commitEditing();
    return (!m_window || m_window->commitEditing()) && auxiliariesCommitted;
}

void AppDelegate::endEditing()
{
    if (m_auxiliaryWindows)
        m_auxiliaryWindows->endEditing();
    if (m_window)
        m_window->endEditing();
}

void AppDelegate::terminate()
{
    // A start that goes on has no event loop yet that could be ended.
    m_terminationRequested = !m_window;
    if (applicationShouldTerminate())
        QCoreApplication::exit(0);
}

bool AppDelegate::applicationShouldTerminate()
{
    if (!m_window)
        return true; // Still starting: there is nothing to lose.
    if (m_terminating)
        return false;
    const QScopedValueRollback terminating(m_terminating, true);
    endEditing();
    endTasksAndBackUp();
    if (!m_services.coreData.commitEditing()) {
        qCWarning(applicationLog, "AppDelegate unable to commit editing to terminate");
        return false;
    }
    if (!m_services.coreData.viewContext().hasChanges())
        return true;
    const auto saved = m_services.coreData.saveChanges();
    if (saved)
        return true;
    // A minimised window would keep the questions to itself.
    bringForward();
    return !presentError(saved.error()) && askQuitAnyway();
}

bool AppDelegate::isEnding() const
{
    return m_terminating && !QApplication::activeModalWidget();
}

bool AppDelegate::presentError(const Error &error)
{
    if (m_presentingError)
        return false;
    const QScopedValueRollback presenting(m_presentingError, true);
    return m_presentError(error);
}

bool AppDelegate::showSavingError(const Error &error)
{
    Alert::runModal({.messageText = tr("Your changes could not be saved.",
                                       "Alert when saving fails"),
                     .informativeText = savingErrorAdvice(error),
                     .buttons = {tr("OK", "Closes the alert about a failed save")},
                     .style = AlertContents::Style::Critical},
                    m_window.get());
    return false;
}

bool AppDelegate::askQuitAnyway()
{
    const AlertContents question{
        .messageText = tr("Could not save changes while quitting. Quit anyway?",
                          "Quit without saves error question message"),
        .informativeText = tr(
            "Quitting now will lose any changes you have made since the last successful save",
            "Quit without saves error question info"),
        .buttons = {tr("Quit anyway", "Quit anyway button title"),
                    tr("Cancel", "Cancel button title")},
        .firstButtonDestroys = true,
    };
    return Alert::runModal(question, m_window.get()) == 0;
}

void AppDelegate::commitDataForLogout(QSessionManager &manager)
{
    const bool mayAsk = manager.allowsInteraction();
    if (!prepareForLogout(mayAsk))
        manager.cancel();
    if (mayAsk)
        manager.release();
}

bool AppDelegate::prepareForLogout(bool mayAsk)
{
    m_readyForLogout = false;
    if (mayAsk) {
        m_readyForLogout = applicationShouldTerminate();
        return m_readyForLogout;
    }
    if (!m_window)
        return true; // Still starting: there is nothing to lose.
    endEditing();
    endTasksAndBackUp();
    m_services.coreData.commitEditing();
    if (const auto saved = m_services.coreData.saveChanges(); !saved)
        qCWarning(applicationLog, "Could not save at log-out: %s",
                  qUtf8Printable(saved.error().description()));
    return true;
}

bool AppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Quit || watched != qApp)
        return QObject::eventFilter(watched, event);
    // Whoever was asked at the log-out is not asked again when the log-out then happens.
    if (m_readyForLogout)
        QCoreApplication::exit(0);
    else
        terminate();
    return true;
}

void AppDelegate::bringForward()
{
    if (m_window)
        bringToFront(*m_window);
    if (QWidget *alert = QApplication::activeModalWidget())
        bringToFront(*alert);
}

MainWindow *AppDelegate::window() const
{
    return m_window.get();
}

CounterpartsPaneViewController *AppDelegate::counterpartsViewController() const
{
    return m_window ? m_window->viewCoordinator().masterViewController.data() : nullptr;
}

TagWindowController &AppDelegate::tagsWindowController()
{
    require(m_auxiliaryWindows != nullptr, "windows are asked for after the launch");
    return m_auxiliaryWindows->tagsWindowController();
}

WindowManager &AppDelegate::windowManager()
{
    require(m_auxiliaryWindows != nullptr, "windows are asked for after the launch");
    return m_auxiliaryWindows->windowManager();
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
