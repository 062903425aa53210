#include "Backup/BackupPanel.h"

#include "Backup/Backup.h"
#include "Backup/BackupWriter.h"
#include "Backup/DetachedCall.h"
#include "Backup/ImportTexts.h"
#include "Foundation/Logging.h"
#include "Foundation/Time/Clock.h"
#include "Model/CoreDataInterface.h"
#include "Model/JournalEncoding.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Toolkit/Package/PackageDialog.h"

#include <QStandardPaths>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

Result<QByteArray> encode(ManagedObjectContext &context, const std::vector<qint64> &keys)
{
    const int entity = context.container().model().entityIndex(Counterpart::entityName());
    const auto objects = context.objects(entity, keys);
    if (!objects)
        return failure(objects.error());
    QList<std::shared_ptr<Counterpart>> teammates;
    for (const auto &object : *objects)
        teammates.append(std::static_pointer_cast<Counterpart>(object));
    return encodeJournal(context, teammates);
}

/// The folder may be one that does not answer: then the calls are abandoned once the user has
/// cancelled.
Result<WrittenBackup> writePackage(ManagedObjectContext &context, const std::vector<qint64> &keys,
                                   const QString &packagePath,
                                   const BackgroundTask::ProgressHandler &progressHandler)
{
    const auto isWanted = [&] { return progressHandler(0); };
    const auto writer = callDetached<BackupWriter>(
        [packagePath] {
            BackupWriter made(packagePath);
            made.inspectReplaced();
            return made;
        },
        isWanted);
    if (!writer)
        return failure(u"It was cancelled."_s);
    Result<QByteArray> json = encode(context, keys);
    if (!json)
        return failure(json.error());
    const qint64 size = json->size();
    std::stop_source cancellation;
    const auto copy = callDetached<Result<QString>>(
        [document = BackupDocument{std::move(*json)}, writer = *writer,
         token = cancellation.get_token()] { return writer.write(document, token); },
        isWanted);
    cancellation.request_stop();
    if (!copy)
        return failure(u"It was cancelled."_s);
    if (!*copy)
        return failure(copy->error());
    return WrittenBackup{packagePath, size, **copy};
}

void logFailure(const Error &error)
{
    qCWarning(backupLog, "Could not write backup: %s", qUtf8Printable(error.description()));
}

} // namespace

BackupPanel::BackupPanel(CoreDataInterface &coreData, const Clock &clock, QWidget *window,
                         QObject *parent)
    : QObject(parent)
    , m_coreData(coreData)
    , m_clock(clock)
    , m_window(window)
{
}

BackupPanel::~BackupPanel() = default;

void BackupPanel::createBackup(const QList<ObjectID> &teammates)
{
    if (m_task)
        return;
    m_coreData.save();
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString name = Backup::suggestedFileName(m_clock.now(), QTimeZone::systemTimeZone());
    const auto path = PackageDialog::getSavePackage(
        m_window, tr("Create Backup", "Title of the panel that asks where to put a backup"),
        importTexts::backupType(), folder + u'/' + name);
    if (path)
        writeBackup(teammates, *path);
}

void BackupPanel::writeBackup(const QList<ObjectID> &teammates, const QString &packagePath)
{
    std::vector<qint64> keys;
    for (const ObjectID id : teammates)
        keys.push_back(id.key);
    // The other context reads what is written: edits made since the panel opened as well.
    if (const Result<void> written = m_coreData.viewContext().writeDrafts(); !written)
        return logFailure(written.error());
    const auto backup = std::make_shared<WrittenBackup>();
    auto started = BackgroundTask::start(
        m_coreData.persistentContainer(),
        [keys, packagePath,
         backup](ManagedObjectContext &context,
                 const BackgroundTask::ProgressHandler &progressHandler) -> Result<void> {
            const auto written = writePackage(context, keys, packagePath, progressHandler);
            if (!written)
                return failure(written.error());
            *backup = *written;
            return {};
        });
    if (!started)
        return logFailure(started.error());
    m_task = std::move(*started);
    connect(m_task.get(), &BackgroundTask::finished, this, [this, backup] { finish(*backup); });
    Q_EMIT began(tr("Writing the backup “%1” …", "Says what is going on")
                     .arg(importTexts::nameOf(packagePath)));
}

void BackupPanel::finish(const WrittenBackup &backup)
{
    const std::unique_ptr<BackgroundTask> task = std::move(m_task);
    const Result<void> outcome = task->outcome();
    Q_EMIT ended();
    if (outcome)
        Q_EMIT wrote(backup);
    else
        logFailure(outcome.error());
}

void BackupPanel::cancel()
{
    if (m_task)
        m_task->cancel();
}

} // namespace tembra
