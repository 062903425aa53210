#pragma once

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
};

/// A text to print instead of starting, and the exit status that goes with it.
struct PrintAndExit
{
    QString text;
    int exitStatus;
};

/// Reads the command line (program name first). Needs no application object and no display, so that
/// `--help` and `--version` work everywhere.
std::variant<StartOptions, PrintAndExit> parseCommandLine(const QStringList &arguments);

} // namespace tembra
