#pragma once

#include "Backup/JournalWork.h"

#include <QByteArrayView>

namespace tembra {

/// How much is in a backup.
struct BackupCounts
{
    qint64 teammates = 0;
    qint64 sessions = 0;
    qint64 notes = 0; ///< With a text.
    qint64 tags = 0; ///< On meetings, each time one stands there.
};

/// Reads the document of a backup as an import does, but brings nothing anywhere. The failure says
/// where in the document it is.
Result<BackupCounts> inspectJournal(QByteArrayView json);

/// Brings the teammates of a document into @p context, with everything of theirs, and saves it. When
/// it fails, or @p mayGoOn says no, nothing is saved.
Result<BackupCounts> importJournal(QByteArrayView json, ManagedObjectContext &context,
                                   const JournalWork::MayGoOn &mayGoOn);

} // namespace tembra
