#pragma once

#include "Application/CommandLine.h"
#include "Foundation/Result.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace tembra {

/// Where a start of the program keeps its files: the user's own folders, one folder given on the
/// command line, or a throw-away one that goes with this object.
class DataFolder
{
public:
    static Result<DataFolder> forOptions(const StartOptions &options);

    /// The journal's name in its folder.
    static QString storeName() { return QStringLiteral("Vum"); }
    QString journalDirectory() const { return m_journalDirectory; }
    QString settingsFile() const { return m_settingsDirectory + QStringLiteral("/settings.ini"); }
    QString windowStateFile() const { return m_settingsDirectory + QStringLiteral("/windows.ini"); }

    /// Whether nothing may be written elsewhere: the folder was given, or is thrown away.
    bool holdsEverything() const { return m_journalDirectory == m_settingsDirectory; }

    /// Where the journal lies unless the user says otherwise.
    static QString usualJournalDirectory();

private:
    DataFolder(QString journalDirectory, QString settingsDirectory);

    QString m_journalDirectory;
    QString m_settingsDirectory;
    std::unique_ptr<QTemporaryDir> m_throwAway;
};

} // namespace tembra
