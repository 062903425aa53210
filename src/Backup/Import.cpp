#include "Backup/Import.h"

#include "Backup/BackupDocument.h"
#include "Backup/DetachedCall.h"
#include "Backup/ImportTexts.h"
#include "Model/CoreDataInterface.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Package/PackageDialog.h"
#include "Toolkit/ProgressSheet.h"

#include <QPointer>
#include <QStandardPaths>

namespace tembra {

using namespace Qt::StringLiterals;

/// One of the first two is called at the end; the last one instead when the task was cancelled.
struct Import::Callbacks
{
    std::function<void()> succeeded;
    std::function<void(const Error &)> failed;
    std::function<void()> cancelled = [] {};
};

namespace {

/// The folder may be one that does not answer: then the call is abandoned once the user has cancelled.
Result<BackupDocument> readPackage(const QString &packagePath,
                                   const BackgroundTask::ProgressHandler &progressHandler)
{
    auto document = callDetached<Result<BackupDocument>>(
        [packagePath] { return BackupDocument::read(packagePath); },
        [&] { return progressHandler(0); });
    return document ? std::move(*document) : failure(u"The import was cancelled."_s);
}

/// Reads a package and imports its contents. The error is what the user is told.
Result<void> importFrom(ManagedObjectContext &context,
                        const BackgroundTask::ProgressHandler &progressHandler,
                        CompletedImport &import)
{
    const auto document = readPackage(import.packagePath, progressHandler);
    if (!document)
        return failure(u"Could not load file: "_s + document.error().description());
    if (!document->teammatesJsonData)
        return failure(Import::tr("No teammate data found.", "Additional info for import error."));
    const auto counts = importJournal(*document->teammatesJsonData, context, progressHandler);
    if (!counts)
        return failure(counts.error());
    import.counts = *counts;
    import.keys = context.insertedKeys();
    return {};
}

} // namespace

Import::Import(CoreDataInterface &coreData, QWidget *window, QObject *parent)
    : QObject(parent)
    , m_coreData(coreData)
    , m_window(window)
{
}

Import::~Import()
{
    if (!m_task)
        return;
    m_task.reset();
    endModality();
}

void Import::chooseAndImport()
{
    const auto path = PackageDialog::getOpenPackage(
        m_window, tr("Import Backup", "Title of the panel that asks for a backup"),
        importTexts::backupType(),
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (path)
        importPackage(*path);
}

void Import::importPackage(const QString &packagePath)
{
    const auto import = std::make_shared<CompletedImport>();
    import->packagePath = packagePath;
    start(tr("Importing “%1” …", "Says what is going on").arg(importTexts::nameOf(packagePath)),
          [import](ManagedObjectContext &context,
                   const BackgroundTask::ProgressHandler &progressHandler) {
              return importFrom(context, progressHandler, *import);
          },
          {.succeeded = [this, import] { Q_EMIT imported(*import); },
           .failed = [this](const Error &error) { showImportAlert(error.description()); }});
}

void Import::undo(const CompletedImport &import)
{
    const AlertContents question{
        .messageText = tr("Do you want to undo this import?", "Asks before an import is undone"),
        .informativeText =
            tr("%1 that came with “%2” are removed, with everything you have changed in them "
               "since. "
               "A teammate to whom you have added meetings stays, with those.",
               "%1 is like \"8 teammates and 412 meetings\", %2 the name of a backup")
                .arg(importTexts::amount(import.counts), importTexts::nameOf(import.packagePath)),
        .buttons = {tr("Undo Import", "Button that undoes an import"),
                    tr("Cancel", "Button that leaves things as they are")},
        .firstButtonDestroys = true};
    Alert::beginSheet(question, m_window, [guard = QPointer(this), import](int button) {
        if (!guard)
            return;
        if (button == 0)
            guard->deleteImported(import);
        else
            Q_EMIT guard->notUndone(import);
    });
}

void Import::deleteImported(const CompletedImport &import)
{
    start(tr("Undoing the import …", "Says what is going on"),
          [keys = import.keys](ManagedObjectContext &context,
                               const BackgroundTask::ProgressHandler &progressHandler) {
              const Result<void> removed = context.deleteInserted(keys, progressHandler);
              return removed ? context.save() : removed;
          },
          {.succeeded = [this, import] { Q_EMIT undone(import); },
           .failed =
               [this, import](const Error &error) {
                   showUndoAlert(error);
                   Q_EMIT notUndone(import);
               },
           .cancelled = [this, import] { Q_EMIT notUndone(import); }});
}

/// The main context is saved first: then it has nothing to write while it could not, and tags typed a
/// moment ago are found by the other context.
void Import::start(const QString &activity, BackgroundTask::Work work, Callbacks callbacks)
{
    if (m_task)
        return;
    m_coreData.endEditing();
    if (const Result<void> saved = m_coreData.saveChanges(); !saved)
        return callbacks.failed(saved.error());
    auto started = BackgroundTask::start(m_coreData.persistentContainer(), std::move(work));
    if (!started)
        return callbacks.failed(started.error());
    m_task = std::move(*started);
    m_coreData.setAutosavePaused(true);
    m_progressSheet = std::make_unique<ProgressSheet>(activity, m_window);
    connect(m_progressSheet.get(), &ProgressSheet::cancelRequested, m_task.get(),
            &BackgroundTask::cancel);
    connect(m_task.get(), &BackgroundTask::progressed, m_progressSheet.get(),
            &ProgressSheet::setProgress);
    connect(m_task.get(), &BackgroundTask::finished, this,
            [this, callbacks = std::move(callbacks)] { finish(callbacks); });
}

void Import::finish(const Callbacks &callbacks)
{
    // The callbacks go with the task, which stays until its signal was delivered.
    const std::unique_ptr<BackgroundTask> task = std::move(m_task);
    endModality();
    const Result<void> outcome = task->outcome();
    m_showsAlert = true;
    if (outcome) {
        callbacks.succeeded();
    } else if (task->isCancelled()) {
        Q_EMIT cancelled();
        callbacks.cancelled();
    } else {
        callbacks.failed(outcome.error());
    }
    m_showsAlert = false;
    Q_EMIT finished();
}

/// Once the task has let go of the store: an autosave that was due happens now.
void Import::endModality()
{
    m_progressSheet.reset();
    m_coreData.setAutosavePaused(false);
}

void Import::cancelAndWait()
{
    if (!m_task)
        return;
    m_task.reset();
    endModality();
    Q_EMIT cancelled();
}

void Import::showImportAlert(const QString &informativeText) const
{
    Alert::runModal({.messageText = tr("Could not load backup file", "Alert when import fails"),
                     .informativeText = informativeText,
                     .buttons = {tr("Okay", "Closes the alert about a failed import")}},
                    m_window);
}

void Import::showUndoAlert(const Error &error) const
{
    Alert::runModal({.messageText = tr("The import could not be undone.",
                                       "Alert when undoing an import fails"),
                     .informativeText = error.description(),
                     .buttons = {tr("Okay", "Closes the alert about an import that stays")}},
                    m_window);
}

} // namespace tembra
