#include "Backup/BackupPanel.h"

#include "Backup/Backup.h"
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

/// The folder may be one that does not answer: then the call is abandoned once the user has cancelled.
Result<void> writePackage(BackupDocument document, const QString &packagePath,
                          const BackgroundTask::ProgressHandler &progressHandler)
{
    std::stop_source cancellation;
    const auto written = callDetached<Result<void>>(
        [document = std::move(document), packagePath, token = cancellation.get_token()] {
            return document.write(packagePath, systemFileSystem(), token);
        },
        [&] { return progressHandler(0); });
    cancellation.request_stop();
    return written ? *written : failure(u"It was cancelled."_s);
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
    const auto size = std::make_shared<qint64>(0);
    auto started = BackgroundTask::start(
        m_coreData.persistentContainer(),
        [keys, packagePath,
         size](ManagedObjectContext &context,
               const BackgroundTask::ProgressHandler &progressHandler) -> Result<void> {
            Result<QByteArray> json = encode(context, keys);
            if (!json)
                return failure(json.error());
            *size = json->size();
            return writePackage({std::move(*json)}, packagePath, progressHandler);
        });
    if (!started)
        return logFailure(started.error());
    m_task = std::move(*started);
    connect(m_task.get(), &BackgroundTask::finished, this,
            [this, packagePath, size] { finish(packagePath, *size); });
    Q_EMIT began(tr("Writing the backup “%1” …", "Says what is going on")
                     .arg(importTexts::nameOf(packagePath)));
}

void BackupPanel::finish(const QString &packagePath, qint64 size)
{
    const std::unique_ptr<BackgroundTask> task = std::move(m_task);
    const Result<void> outcome = task->outcome();
    Q_EMIT ended();
    if (outcome)
        Q_EMIT wrote(packagePath, size);
    else
        logFailure(outcome.error());
}

void BackupPanel::cancel()
{
    if (m_task)
        m_task->cancel();
}

} // namespace tembra
