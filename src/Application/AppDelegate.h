#pragma once

#include "Foundation/Result.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QMenu;
class QSessionManager;

namespace tembra {

class CounterpartsPaneViewController;
class DataFolder;
class MainWindow;
class PersistentContainer;
class ProgramServices;
class ViewCoordinator;

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
    /// signals and log-out. Does nothing while it is already asking.
    void terminate();
    /// Commits and saves; where that fails, asks the user. False when the program goes on.
    bool applicationShouldTerminate();
    /// The desktop's log-out: the same, without questions where it allows none.
    void commitDataForLogout(QSessionManager &manager);

    void bringForward();

    MainWindow *window() const;
    CounterpartsPaneViewController *counterpartsViewController() const;
    QMenu *debugMenu() const;
    ViewCoordinator *viewCoordinator() const;
    PersistentContainer &persistentContainer() const;

    /// Shows an error that kept the program from saving; true when the user resolved it meanwhile.
    void setPresentError(std::function<bool(const Error &)> presentError);

private:
    bool askQuitAnyway();
    void connectUndo();

    ProgramServices &m_services;
    std::function<bool(const Error &)> m_presentError;
    std::unique_ptr<MainWindow> m_window;
    QString m_windowStateFile;
    bool m_terminating = false;
};

} // namespace tembra
