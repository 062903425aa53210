#pragma once

#include <QDir>
#include <QString>
#include <QStringList>

#include <variant>

namespace tembra {

/// What the user asked for when starting the program.
struct StartOptions
{
    QString dataDirectory = {}; ///< Empty: the usual place.
    bool sample = false; ///< Work on a throw-away sample journal.
    QString screenshotsDirectory =
        {}; ///< Not empty: leave pictures of the windows there, then quit.
    QStringList packages = {}; ///< Absolute paths of backups to ask about once the window is shown.
};

/// Look into a backup instead of starting.
struct VerifyRequest
{
    QString package; ///< As the user wrote it.
};

/// A text to print instead of starting, and the exit status that goes with it.
struct PrintAndExit
{
    QString text;
    int exitStatus;
};

using CommandLine = std::variant<StartOptions, VerifyRequest, PrintAndExit>;

/// Reads the command line (program name first). Needs no application object and no display, so that
/// `--help`, `--version` and `--verify` work everywhere. Packages are named from
/// @p workingDirectory.
CommandLine parseCommandLine(const QStringList &arguments,
                             const QDir &workingDirectory = QDir::current());

} // namespace tembra
