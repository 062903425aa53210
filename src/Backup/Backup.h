#pragma once

#include "Backup/BackupDocument.h"
#include "Model/Counterpart.h"

#include <QTimeZone>

#include <functional>

namespace tembra {

class DefaultsManager;
class ManagedObjectContext;

/// Writes the whole journal into backup packages.
class Backup
{
public:
    /// @p programName is the name of the program's file; one of a nightly build, which holds
    /// "Nightly", keeps its automatic backups apart.
    Backup(ManagedObjectContext &context, const DefaultsManager &defaults, QString programName,
           FileSystem &fileSystem = systemFileSystem());

    /// Writes the automatic backup, before quitting, into the backup folder, over the last one: the
    /// whole journal, with these teammates first. Does nothing when backups are switched off or there
    /// is no such folder. A failure is only logged, and a folder that does not answer is given up after
    /// ten seconds; meanwhile @p whileWaiting is called again and again, so that windows are painted.
    void backUp(const QList<std::shared_ptr<Counterpart>> &teammates,
                const std::function<void()> &whileWaiting) const;

    /// "TembraData.tembrabackup".
    QString automaticFileName() const;
    /// "Tembra_Backup_2026-03-07.tembrabackup": of the day that @p now is in @p timeZone, in the
    /// Gregorian calendar and Latin digits whatever the user's are.
    static QString suggestedFileName(Date now, const QTimeZone &timeZone);

private:
    ManagedObjectContext &m_context;
    const DefaultsManager &m_defaults;
    QString m_programName;
    FileSystem &m_fileSystem;
};

} // namespace tembra
