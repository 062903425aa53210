#pragma once

#include "Backup/BackgroundTask.h"

#include <QByteArrayView>

namespace tembra {

/// How much is in a backup.
struct BackupCounts
{
    qint64 teammates = 0;
    qint64 sessions = 0;
    qint64 notes = 0; ///< With a text.
    qint64 tags = 0; ///< Of different name or emoji; counted by inspectJournal() only.
};

/// Parses the document of a backup as an import does, but inserts nothing. The failure says where in
/// the document it is.
Result<BackupCounts> inspectJournal(QByteArrayView json);

/// Inserts the teammates of a document into @p context, with everything of theirs, and saves it.
/// Calls @p progressHandler after each teammate and meeting. When the import fails, or the handler
/// returns false, nothing is saved.
Result<BackupCounts> importJournal(QByteArrayView json, ManagedObjectContext &context,
                                   const BackgroundTask::ProgressHandler &progressHandler);

} // namespace tembra
