#pragma once

#include "Foundation/Files/FileSystem.h"
#include "Foundation/Result.h"

#include <QByteArrayView>

#include <stop_token>

namespace tembra {

/// Writes packages (folders that are shown as one file) with one file in them, such that they are
/// never lost: at every failure, and whenever the process or the machine is stopped, the package is
/// either what it was before or completely the new one.
///
/// Holds nothing between two calls and touches nothing but files, so it may be used in any thread;
/// two writers of the same package do not harm each other, the last one wins. Blocks for as long as
/// the disk takes.
class PackageWriter
{
public:
    explicit PackageWriter(FileSystem &fileSystem = systemFileSystem());

    /// Puts a file @p fileName with @p contents into the package. A new package is made, with its
    /// folder's and its file's permissions for the user alone; one that exists keeps its folder and
    /// its other files. The folder around it must exist.
    ///
    /// On success the disk has everything, and gave back the same. Nothing is written through a link
    /// at the package's place or in it, nor over anything but a regular file. What crashes left
    /// behind of earlier tries is removed.
    ///
    /// A failure says in the user's words what stands in the way, and where. It leaves nothing
    /// behind that could be removed. The new contents may be in place even then, completely, when
    /// only the very last steps failed: then the disk did not promise to keep them.
    ///
    /// Once @p cancellation was requested the package is not replaced any more; the write fails.
    Result<void> write(const QString &packagePath, const QString &fileName, QByteArrayView contents,
                       const std::stop_token &cancellation = {}) const;

private:
    FileSystem &m_fileSystem;
};

} // namespace tembra
