#include "Backup/Backup.h"

#include "Backup/BackupWriter.h"
#include "Backup/DetachedCall.h"
#include "Foundation/Logging.h"
#include "Model/DefaultsManager.h"
#include "Model/JournalEncoding.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>

#include <chrono>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// How long a folder that does not answer may keep the program from quitting.
constexpr std::chrono::seconds timeout(10);

void logFailure(const Error &error)
{
    qCWarning(backupLog, "Could not write backup: %s", qUtf8Printable(error.description()));
}

Error noAnswer(const QString &path)
{
    return {u"The folder of “%1” did not answer for %2 seconds."_s.arg(path).arg(timeout.count()),
            {}};
}

} // namespace

Backup::Backup(ManagedObjectContext &context, const DefaultsManager &defaults, QString programName,
               FileSystem &fileSystem)
    : m_context(context)
    , m_defaults(defaults)
    , m_programName(std::move(programName))
    , m_fileSystem(fileSystem)
{
}

QString Backup::automaticFileName() const
{
    const QString prefix = m_programName.contains("Nightly"_L1) ? u"Nightly"_s : QString();
    return prefix + "TembraData."_L1 + BackupDocument::tembrabackup;
}

QString Backup::suggestedFileName(Date now, const QTimeZone &timeZone)
{
    const QDate today = QDateTime::fromMSecsSinceEpoch(qint64(now.toUnixMilliseconds()), timeZone)
                            .date();
    return "Tembra_Backup_"_L1 + today.toString(Qt::ISODate) + u'.' + BackupDocument::tembrabackup;
}

void Backup::backUp(const QList<std::shared_ptr<Counterpart>> &teammates,
                    const std::function<void()> &whileWaiting) const
{
    const std::optional<QUrl> folder = m_defaults.backupFolder();
    if (!m_defaults.shouldBackUpData() || !folder)
        return;
    QElapsedTimer waiting;
    waiting.start();
    const auto keepWaiting = [&] {
        whileWaiting();
        return !waiting.hasExpired(std::chrono::milliseconds(timeout).count());
    };
    const QString path = folder->toLocalFile() + u'/' + automaticFileName();
    // Nothing when there is no folder.
    const auto writer = callDetached<std::optional<BackupWriter>>(
        [path, folder = folder->toLocalFile(),
         &fileSystem = m_fileSystem]() -> std::optional<BackupWriter> {
            if (!QFileInfo(folder).isDir())
                return std::nullopt;
            BackupWriter made(path, fileSystem);
            made.inspectReplaced();
            return made;
        },
        keepWaiting);
    if (!writer)
        return logFailure(noAnswer(path));
    if (!*writer)
        return;
    Result<QByteArray> json = encodeJournal(m_context, teammates);
    if (!json)
        return logFailure(json.error());
    std::stop_source cancellation;
    const auto written = callDetached<Result<QString>>(
        [document = BackupDocument{std::move(*json)}, writer = **writer,
         token = cancellation.get_token()] { return writer.write(document, token); },
        keepWaiting);
    // A late write must not replace what a later backup has written.
    cancellation.request_stop();
    if (!written)
        logFailure(noAnswer(path));
    else if (!*written)
        logFailure(written->error());
    else if (!written->value().isEmpty())
        qCWarning(backupLog, "The backup before held more teammates or meetings; it is kept as %s",
                  qUtf8Printable(written->value()));
}

} // namespace tembra
