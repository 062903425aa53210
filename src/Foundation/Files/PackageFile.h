#pragma once

#include "Foundation/Files/FileSystem.h"
#include "Foundation/Result.h"

#include <QByteArray>

#include <optional>

namespace tembra {

/// Reading the one file in a package (a folder that is shown as one file). The package itself may
/// be a link that the user picked; the file must be a regular file in it: links, folders, pipes and
/// devices are refused, and nothing ever waits for one. May be called in any thread.

/// No larger file is read.
constexpr qint64 largestPackageFile = qint64(2) << 30;

struct PackageFileInfo
{
    qint64 size = 0; ///< In bytes.
    Date modified; ///< When the contents were last changed.
};

/// Looks at the file @p fileName without reading it. Nothing when the package has no such file; a
/// failure when there is no package, it is no folder, or the file must not or cannot be used.
Result<std::optional<PackageFileInfo>> inspectPackageFile(
    const QString &packagePath, const QString &fileName,
    FileSystem &fileSystem = systemFileSystem());

/// The contents of the file @p fileName, as they were at one moment: a failure also when something
/// changes the file meanwhile, or when it has more than @p limit bytes. Nothing when the package has
/// no such file.
Result<std::optional<QByteArray>> readPackageFile(const QString &packagePath,
                                                  const QString &fileName,
                                                  FileSystem &fileSystem = systemFileSystem(),
                                                  qint64 limit = largestPackageFile);

} // namespace tembra
