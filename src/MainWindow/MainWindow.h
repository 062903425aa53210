#pragma once

#include "MainWindow/ViewCoordinator.h"
#include "MainWindow/WindowState.h"
#include "Store/Schema/ObjectID.h"

#include <QMainWindow>

#include <functional>
#include <memory>

class QAction;
class QMenu;
class QSplitter;

namespace tembra {

class BackupCommands;
class CoreDataInterface;
class CounterpartsPaneViewController;
class DetailPaneViewController;
class NotificationCenter;
class SaveFailureBanner;
class StatusLine;
class Tag;
struct JournalServices;

/// The window of the journal: the teammates on the left, the meetings of one of them on the right,
/// and the menus. Closing it asks to quit.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// @p windowStateFile keeps where the window stood. @p quitRequested is what Quit and closing
    /// the window call; it must not destroy the window before it returns.
    MainWindow(CoreDataInterface &coreData, const JournalServices &services,
               NotificationCenter &notifications, const QString &windowStateFile,
               std::function<void()> quitRequested, QWidget *parent = nullptr);
    /// Writes down where the window stood.
    ~MainWindow() override;

    CounterpartsPaneViewController &counterpartsViewController() const
    {
        return *m_counterpartsPane;
    }
    DetailPaneViewController &detailPaneViewController() const { return *m_detailPane; }
    ViewCoordinator &viewCoordinator() { return m_viewCoordinator; }
    /// Commands for development; hidden.
    QMenu *debugMenu() const { return m_debugMenu; }

    /// Asks for each of these packages whether it is to be imported.
    void openPackages(const QStringList &packagePaths);
    BackupCommands &backupCommands() const { return *m_backupCommands; }
    StatusLine &statusLine() const { return *m_statusLine; }

    /// Writes edits in progress into their records; the editing goes on. False when a control refuses.
    bool commitEditing();
    /// Commits edits in progress and ends the editing; a half-typed tag becomes a tag.
    void endEditing();

public Q_SLOTS:
    /// Shows a record: its teammate, its meeting, its note field, as far as it has them.
    void reveal(const tembra::ObjectID &id);

Q_SIGNALS:
    /// The user asked for the tag browser, with @p tag selected unless it is null.
    void tagBrowserRequested(const std::shared_ptr<tembra::Tag> &tag);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildLayout();
    void connectSignals();
    void restoreState();

    void createMenus();
    void createFileMenu();
    void createEditMenu();
    void createGoMenu();
    void createDebugMenu();
    void updateCommands();
    void revealSession(const tembra::ObjectID &id);

    CoreDataInterface &m_coreData;
    WindowState m_windowState;
    std::function<void()> m_quitRequested;
    ViewCoordinator m_viewCoordinator;
    CounterpartsPaneViewController *m_counterpartsPane;
    DetailPaneViewController *m_detailPane;
    QSplitter *m_splitter = nullptr;
    SaveFailureBanner *m_saveFailureBanner = nullptr;
    StatusLine *m_statusLine = nullptr;
    BackupCommands *m_backupCommands = nullptr;
    QMenu *m_debugMenu = nullptr;
    QAction *m_rename = nullptr;
    QList<QAction *> m_teammateCommands; ///< Enabled while a teammate's meetings are shown.
    QList<QAction *> m_meetingCommands; ///< Enabled while the editor has a meeting.
};

} // namespace tembra
