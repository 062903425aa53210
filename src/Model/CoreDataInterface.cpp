#include "Model/CoreDataInterface.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Model/DefaultsManager.h"
#include "Model/JournalQueries.h"
#include "Model/LegacyFlags.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"

#include <QScopedValueRollback>

#include <chrono>
#include <utility>

namespace tembra {

using namespace Qt::StringLiterals;

CoreDataInterface::CoreDataInterface(ContainerMaker makeContainer, const DefaultsManager &defaults,
                                     QObject *parent)
    : QObject(parent)
    , m_makeContainer(std::move(makeContainer))
    , m_defaults(defaults)
    , m_commitEditing([] { return true; })
    , m_endEditing([] {})
    , m_presentError([](const Error &error) {
        qCWarning(modelLog, "Could not save: %s", qUtf8Printable(error.description()));
    })
    , m_stopProgram([](const QString &message, const PersistentContainer &) {
        fatal(qUtf8Printable(message));
    })
    , m_timer(this)
{
    m_timer.setInterval(std::chrono::milliseconds(qint64(saveInterval() * 1000)));
    connect(&m_timer, &QTimer::timeout, this, &CoreDataInterface::handleTimer);
    m_timer.start();
}

CoreDataInterface::~CoreDataInterface() = default;

PersistentContainer &CoreDataInterface::persistentContainer()
{
    if (!m_container) {
        auto container = m_makeContainer();
        if (const auto loaded = container->loadPersistentStores(); !loaded)
            m_stopProgram(u"Unresolved error "_s + loaded.error().description(), *container);
        m_container = std::move(container);
        adoptContainer();
    }
    return *m_container;
}

void CoreDataInterface::setPersistentContainer(std::unique_ptr<PersistentContainer> container)
{
    m_container = std::move(container);
    adoptContainer();
}

void CoreDataInterface::adoptContainer()
{
    connect(m_container.get(), &PersistentContainer::contextDidSave, this,
            &CoreDataInterface::handleSave);
}

ManagedObjectContext &CoreDataInterface::viewContext()
{
    return persistentContainer().viewContext();
}

void CoreDataInterface::setCommitEditing(std::function<bool()> commitEditing)
{
    m_commitEditing = std::move(commitEditing);
}

void CoreDataInterface::setEndEditing(std::function<void()> endEditing)
{
    m_endEditing = std::move(endEditing);
}

void CoreDataInterface::setPresentError(std::function<void(const Error &)> presentError)
{
    m_presentError = std::move(presentError);
}

void CoreDataInterface::setStopProgram(StopProgram stopProgram)
{
    m_stopProgram = std::move(stopProgram);
}

bool CoreDataInterface::commitEditing()
{
    return m_commitEditing();
}

void CoreDataInterface::endEditing()
{
    m_endEditing();
}

void CoreDataInterface::save()
{
    save(Reporting::EveryFailure);
}

void CoreDataInterface::handleTimer()
{
    if (m_autosavePaused) {
        m_autosaveDue = true;
        return;
    }
    // Not while an alert says that the store cannot be opened.
    if (m_container && viewContext().hasChanges())
        save(Reporting::FirstFailure);
}

void CoreDataInterface::save(Reporting reporting)
{
    if (!commitEditing())
        qCWarning(modelLog, "CoreDataInterface unable to commit editing before saving");
    if (!m_container || !viewContext().hasChanges())
        return;
    const bool alreadyKnown = m_saveFailing && reporting == Reporting::FirstFailure;
    const auto saved = saveChanges();
    if (!saved && !alreadyKnown)
        reportFailure(saved.error());
}

Result<void> CoreDataInterface::saveChanges()
{
    if (!m_container)
        return {};
    const auto saved = viewContext().save();
    setSaveFailing(!saved);
    return saved;
}

void CoreDataInterface::setAutosavePaused(bool paused)
{
    m_autosavePaused = paused;
    if (!paused && std::exchange(m_autosaveDue, false))
        handleTimer();
}

void CoreDataInterface::reportFailure(const Error &error)
{
    if (m_presentingError)
        return;
    const QScopedValueRollback presenting(m_presentingError, true);
    m_presentError(error);
}

void CoreDataInterface::setSaveFailing(bool failing)
{
    if (m_saveFailing == failing)
        return;
    m_saveFailing = failing;
    Q_EMIT saveFailingChanged(failing);
}

void CoreDataInterface::handleSave(ManagedObjectContext *savedContext, const ChangeSet &changes)
{
    if (savedContext != &viewContext())
        viewContext().mergeChanges(changes);
}

Result<void> CoreDataInterface::migrateFlagsToTags(const MigrationProgress &progress)
{
    constexpr qsizetype betweenReports = 64;
    ManagedObjectContext &context = viewContext();
    const auto flagged = context.fetch<Session>(JournalQueries::flaggedSessions());
    if (!flagged) {
        qCWarning(modelLog, "Could not fetch flagged sessions: %s",
                  qUtf8Printable(flagged.error().description()));
        return {};
    }
    if (flagged->isEmpty())
        return {};
    {
        const UndoManager::Suspension notUndoable(*context.undoManager());
        LegacyFlagTags tags(context, m_defaults);
        for (qsizetype i = 0; i < flagged->size(); ++i) {
            if (progress && i % betweenReports == 0)
                progress(i, flagged->size());
            Session &session = *flagged->at(i);
            tags.tagFor(session.flag())->addSession(session);
            session.setFlag(0);
        }
        // What was recorded in this turn must be settled before recording goes on.
        context.processPendingChanges();
    }
    return saveChanges();
}

} // namespace tembra
