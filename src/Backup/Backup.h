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

    /// The automatic backup, before quitting: of these teammates into the backup folder, over the
    /// last one. Does nothing when backups are switched off or there is no such folder. Stops nobody:
    /// a failure is but logged, and a folder that does not answer is given up after ten seconds.
    /// Meanwhile @p whileWaiting is called again and again, so that windows can be drawn.
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
