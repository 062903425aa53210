#pragma once

#include "Foundation/Result.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

namespace tembra {

class DefaultsManager;
class ManagedObjectContext;
class PersistentContainer;
struct ChangeSet;

/// The one object through which the program reaches its store: owns the container, saves it every
/// two minutes and on request, merges what other contexts saved, and turns old flags into tags.
///
/// The program's root makes the one there is and hands it to whoever needs it. What it cannot do
/// itself (ending edits in windows, showing an alert, stopping the program) comes in as functions.
class CoreDataInterface : public QObject
{
    Q_OBJECT

public:
    /// Gets the container that could not be loaded.
    using StopProgram =
        std::function<void(const QString &message, const PersistentContainer &container)>;
    using ContainerMaker = std::function<std::unique_ptr<PersistentContainer>()>;

    /// @p makeContainer is called when the container is first asked for; what it returns is not
    /// loaded yet.
    CoreDataInterface(ContainerMaker makeContainer, const DefaultsManager &defaults,
                      QObject *parent = nullptr);
    ~CoreDataInterface() override;

    /// Seconds between two looks of the autosave.
    double saveInterval() const { return 120.0; }

    /// The store, loaded at the first call; until that has succeeded there is nothing to save. One that cannot be loaded ends in the function set with
    /// setStopProgram(), which gets "Unresolved error " and the error and does not return.
    PersistentContainer &persistentContainer();
    /// Puts another container, already loaded, in its place; before anything uses the first one.
    void setPersistentContainer(std::unique_ptr<PersistentContainer> container);
    ManagedObjectContext &viewContext();

    /// Ends or stores edits that are still in a control; false when one refuses. None by default.
    void setCommitEditing(std::function<bool()> commitEditing);
    /// Ends edits that are still in a control, so that focus leaving it later changes nothing. None by
    /// default.
    void setEndEditing(std::function<void()> endEditing);
    /// Shows a failed save to the user and returns when it was read. Logs by default.
    void setPresentError(std::function<void(const Error &)> presentError);
    void setStopProgram(StopProgram stopProgram);

    /// Asks the controls to commit; true unless one refuses.
    bool commitEditing();
    /// Ends editing in all controls.
    void endEditing();
    /// Commits edits in progress, then saves the main context if it has changes. A failure is shown
    /// once at a time; the changes stay for the next attempt.
    void save();
    /// Saves the main context as it is and shows nothing: the caller tells the user.
    Result<void> saveChanges();
    /// The autosave: saves when the store is loaded and there are changes. A failure that goes on is
    /// not shown again.
    void handleTimer();
    /// While it is paused, the autosave does nothing; one that was due happens when the pause ends.
    void setAutosavePaused(bool paused);
    /// Merges what another context has saved into the main context.
    void handleSave(ManagedObjectContext *savedContext, const ChangeSet &changes);
    /// Turns the flags of old journals into tags, then saves; fails when that cannot be saved: the
    /// tags are there all the same, for the next save. Does nothing where no flag is left.
    /// @p progress hears now and then how many of how many meetings are done.
    using MigrationProgress = std::function<void(qsizetype done, qsizetype total)>;
    Result<void> migrateFlagsToTags(const MigrationProgress &progress = {});

    /// True from a save that failed until the next one that succeeds.
    bool isSaveFailing() const { return m_saveFailing; }

Q_SIGNALS:
    void saveFailingChanged(bool failing);

private:
    enum class Reporting { EveryFailure, FirstFailure };

    void save(Reporting reporting);
    void reportFailure(const Error &error);
    void setSaveFailing(bool failing);
    void adoptContainer();

    ContainerMaker m_makeContainer;
    const DefaultsManager &m_defaults;
    std::function<bool()> m_commitEditing;
    std::function<void()> m_endEditing;
    std::function<void(const Error &)> m_presentError;
    StopProgram m_stopProgram;
    QTimer m_timer;
    std::unique_ptr<PersistentContainer> m_container;
    bool m_autosavePaused = false;
    bool m_autosaveDue = false; ///< The timer fired during the pause.
    bool m_saveFailing = false;
    bool m_presentingError = false;
};

} // namespace tembra
