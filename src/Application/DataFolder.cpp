#include "Application/DataFolder.h"

#include "Store/File/PrivateFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// Makes the folder, closed to other users; one that is there stays as it is. Where that fails, the
/// store says so when it opens.
void makePrivateFolder(const QString &directory)
{
    if (!QFileInfo::exists(directory) && QDir().mkpath(directory))
        QFile::setPermissions(directory, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

DataFolder::DataFolder(QString journalDirectory, QString settingsDirectory)
    : m_journalDirectory(std::move(journalDirectory))
    , m_settingsDirectory(std::move(settingsDirectory))
{
}

QString DataFolder::usualJournalDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

Result<DataFolder> DataFolder::forOptions(const StartOptions &options)
{
    if (options.sample) {
        auto throwAway = std::make_unique<QTemporaryDir>(QDir::tempPath()
                                                         + u"/tembra-sample-XXXXXX"_s);
        if (!throwAway->isValid())
            return failure(u"The folder for the sample journal could not be made in %1."_s.arg(
                               QDir::tempPath()),
                           throwAway->errorString());
        DataFolder folder(throwAway->path(), throwAway->path());
        folder.m_throwAway = std::move(throwAway);
        return folder;
    }
    const bool isUsual = options.dataDirectory.isEmpty();
    const QString journal = isUsual ? usualJournalDirectory()
                                    : QDir(options.dataDirectory).absolutePath();
    const QString settings = isUsual ? QStandardPaths::writableLocation(
                                 QStandardPaths::AppConfigLocation)
                                     : journal;
    makePrivateFolder(journal);
    makePrivateFolder(settings);
    DataFolder folder(journal, settings);
    // Made by an earlier version, or elsewhere.
    for (const QString &file : {folder.settingsFile(), folder.windowStateFile()})
        makePrivate(file);
    return folder;
}

} // namespace tembra
