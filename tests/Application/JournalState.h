#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace tembra {

constexpr int teammatesInBackup = 20;
constexpr int meetingsOfEach = 100;

/// The document of a backup with teammates who have many meetings each.
QByteArray backupOfManyMeetings();

/// Makes a journal in this folder: what somebody had before. A few teammates, and a tag that the
/// backup brings too.
void makeJournal(const QString &directory);

/// Everything that a journal says, and how many rows it takes to say it.
struct JournalState
{
    QByteArray document;
    QList<qint64> counts;
    QByteArray integrity; ///< "ok", or what is wrong with the file.

    bool operator==(const JournalState &) const = default;
};

/// Opens a journal, reads all of it and closes it again.
JournalState stateOf(const QString &directory);

} // namespace tembra
