#pragma once

#include "Foundation/Result.h"

#include <QString>

namespace tembra {

/// The path of a package, split into its folder and its name.
struct PackagePath
{
    QString path; ///< As given, but for slashes at its end.
    QString folder; ///< May be reached through links.
    QString name; ///< One name, never empty, "." or "..".

    /// Fails when the path names nothing that could be made.
    static Result<PackagePath> parse(const QString &path);
};

/// Whether that is one name for a file in a folder.
bool isPlainName(const QString &name);

} // namespace tembra
