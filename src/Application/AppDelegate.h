#pragma once

#include "Foundation/Result.h"
#include "Toolkit/PlaceholderColor.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

class QMenu;
class QSessionManager;

namespace tembra {

class AuxiliaryWindows;
class CounterpartsPaneViewController;
class DataFolder;
class MainWindow;
class PersistentContainer;
class ProgramServices;
class TagWindowController;
class ViewCoordinator;
class WindowManager;

/// Starts and ends the program: prepares the store and the settings, owns the main window, and at
/// the end saves or asks the user.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    AppDelegate(ProgramServices &services, const DataFolder &folder, QObject *parent = nullptr);
    ~AppDelegate() override;

    /// Opens the store, turns old flags into tags, registers the settings' defaults and shows the
    /// main window, in this order. @p prepareStore is called with the store open and nothing shown.
    void applicationDidFinishLaunching(const std::function<void()> &prepareStore = {});

    /// Ends the program if applicationShouldTerminate() lets it; the one way out for menu, window,
    /// signals and QApplication::quit(). Does nothing while it is already asking.
    void terminate();
    /// Commits and saves; where that fails, asks the user. False when the program goes on.
    bool applicationShouldTerminate();
    /// True while the program saves and backs up for its end, unless it waits for the user's answer.
    bool isEnding() const;
    /// The desktop's log-out.
    void commitDataForLogout(QSessionManager &manager);
    /// What it does: the same as quitting, but without questions where it @p mayAsk none. False when
    /// the user wants to stay. The desktop ends the program later, if nobody else stops it.
    bool prepareForLogout(bool mayAsk);

    /// Asks for each of these backups whether it is to be imported; the window comes forward.
    void openFiles(const QStringList &packagePaths);

    /// Shows the window, or the alert that is open over it, in front of everything else.
    void bringForward();

    MainWindow *window() const;
    CounterpartsPaneViewController *counterpartsViewController() const;
    /// The tag browser; made when first asked for.
    TagWindowController &tagsWindowController();
    WindowManager &windowManager();
    QMenu *debugMenu() const;
    ViewCoordinator *viewCoordinator() const;
    PersistentContainer &persistentContainer() const;

    /// Replaces the alert about an error that kept the program from saving; the function answers
    /// true when the user resolved it meanwhile.
    void setPresentError(std::function<bool(const Error &)> presentError);
    /// How long work may take before its progress is shown; 300 ms unless told otherwise.
    void setProgressDelay(std::chrono::milliseconds delay) { m_progressDelay = delay; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void endTasksAndBackUp();
    std::function<void()> progressPainter(const QString &activity);
    bool commitEditing();
    void endEditing();
    void showWhatHappenedToStore();
    Result<void> migrateFlags();
    void showMigrationError(const Error &error);
    void checkBackupFolder();
    void showBackupFolderAlert();
    bool presentError(const Error &error);
    bool showSavingError(const Error &error);
    bool askQuitAnyway();

    ProgramServices &m_services;
    PlaceholderColor m_placeholderColor;
    std::function<bool(const Error &)> m_presentError;
    std::unique_ptr<AuxiliaryWindows> m_auxiliaryWindows;
    std::unique_ptr<MainWindow> m_window;
    QString m_windowStateFile;
    std::chrono::milliseconds m_progressDelay{300};
    bool m_hasRunBefore; ///< The window has written where it stood.
    QStringList m_packagesToOpen; ///< Asked for before the window was there.
    bool m_presentingError = false;
    bool m_terminationRequested = false; ///< Before the window was there.
    bool m_terminating = false;
    bool m_readyForLogout = false;
};

} // namespace tembra
