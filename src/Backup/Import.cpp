#include "Backup/Import.h"

#include "Backup/BackupDocument.h"
#include "Backup/ImportTexts.h"
#include "Model/CoreDataInterface.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Package/PackageDialog.h"

#include <QPointer>
#include <QStandardPaths>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// Reads a package and imports what is in it. The failure is what the user is told.
Result<void> importFrom(ManagedObjectContext &context, const JournalWork::MayGoOn &mayGoOn,
                        ImportOutcome &outcome)
{
    const auto document = BackupDocument::read(outcome.packagePath);
    if (!document)
        return failure(u"Could not load file: "_s + document.error().description());
    if (!document->teammatesJsonData)
        return failure(Import::tr("No teammate data found.", "Additional info for import error."));
    const auto counts = importJournal(*document->teammatesJsonData, context, mayGoOn);
    if (!counts)
        return failure(counts.error());
    outcome.counts = *counts;
    outcome.keys = context.insertedKeys();
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
    stop();
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
    const auto outcome = std::make_shared<ImportOutcome>();
    outcome->packagePath = packagePath;
    start(
        tr("Importing “%1” …", "Says what is going on").arg(importTexts::nameOf(packagePath)),
        [outcome](ManagedObjectContext &context, const JournalWork::MayGoOn &mayGoOn) {
            return importFrom(context, mayGoOn, *outcome);
        },
        [this](const Error &error) { showImportAlert(error.description()); },
        [this, outcome] { Q_EMIT imported(*outcome); });
}

void Import::undo(const ImportOutcome &outcome)
{
    const AlertContents question{
        .messageText = tr("Do you want to undo this import?", "Asks before an import is undone"),
        .informativeText =
            tr("%1 that came with “%2” are removed, with everything you have changed in them "
               "since. "
               "A teammate to whom you have added meetings stays, with those.",
               "%1 is like \"8 teammates and 412 meetings\", %2 the name of a backup")
                .arg(importTexts::amount(outcome.counts), importTexts::nameOf(outcome.packagePath)),
        .buttons = {tr("Undo Import", "Button that undoes an import"),
                    tr("Cancel", "Button that leaves things as they are")},
        .firstButtonDestroys = true};
    Alert::beginSheet(question, m_window, [guard = QPointer(this), outcome](int button) {
        if (guard && button == 0)
            guard->removeWhatCameIn(outcome);
    });
}

void Import::removeWhatCameIn(const ImportOutcome &outcome)
{
    start(
        tr("Undoing the import …", "Says what is going on"),
        [keys = outcome.keys](ManagedObjectContext &context, const JournalWork::MayGoOn &mayGoOn) {
            const Result<void> removed = context.deleteInserted(keys, mayGoOn);
            return removed ? context.save() : removed;
        },
        [this](const Error &error) { showUndoAlert(error); },
        [this, outcome] { Q_EMIT undone(outcome); });
}

/// Tags that were typed a moment ago are found by the other context only once they are written.
void Import::start(const QString &activity, JournalWork::Work work,
                   const std::function<void(const Error &)> &whenFailed,
                   const std::function<void()> &whenDone)
{
    if (m_work)
        return;
    if (const Result<void> written = m_coreData.viewContext().writeDrafts(); !written)
        return whenFailed(written.error());
    auto started = JournalWork::start(m_coreData.persistentContainer(), std::move(work));
    if (!started)
        return whenFailed(started.error());
    m_work = std::move(*started);
    m_coreData.holdSaves();
    connect(m_work.get(), &JournalWork::progressed, this, &Import::progressed);
    connect(m_work.get(), &JournalWork::finished, this,
            [this, whenFailed, whenDone] { finish(whenFailed, whenDone); });
    Q_EMIT began(activity);
}

void Import::finish(const std::function<void(const Error &)> &whenFailed,
                    const std::function<void()> &whenDone)
{
    const std::unique_ptr<JournalWork> work = takeWork();
    const Result<void> outcome = work->outcome();
    m_telling = true;
    if (outcome)
        whenDone();
    else if (work->isCancelled())
        Q_EMIT cancelled();
    else
        whenFailed(outcome.error());
    m_telling = false;
    Q_EMIT settled();
}

/// It stays until its signal has been told to the end.
std::unique_ptr<JournalWork> Import::takeWork()
{
    std::unique_ptr<JournalWork> work = std::move(m_work);
    m_coreData.releaseSaves();
    Q_EMIT ended();
    return work;
}

void Import::cancel()
{
    if (m_work)
        m_work->cancel();
}

void Import::stop()
{
    if (m_work)
        takeWork().reset();
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
