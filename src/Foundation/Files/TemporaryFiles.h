#pragma once

#include "Foundation/Files/FileHandle.h"

#include <QString>

namespace tembra {

/// Temporary files and folders have a hidden name until they are complete; those that a crash left
/// behind are swept. Nothing here fails: what cannot be removed is tried again when the same file is
/// next written.

/// A hidden name that nobody has yet, e.g. ".TembraData.tembrabackup.0123456789abcdef.tmp".
QString newTemporaryName(const QString &name);
/// Whether newTemporaryName(name) may have made that name.
bool isTemporaryName(const QString &candidate, const QString &name);

/// Removes a temporary folder together with the one file in it.
void removeTemporaryFolder(const FileHandle &parent, const QString &temporary,
                           const QString &fileName);

/// Removes the temporary files of @p fileName that no living writer has locked. Should one of them
/// be just about to be renamed, then either that succeeds, or its writer finds its file gone.
void sweepTemporaryFiles(const FileHandle &folder, const QString &fileName);
/// The same for the temporary folders of @p folderName, which hold one file @p fileName at most.
void sweepTemporaryFolders(const FileHandle &parent, const QString &folderName,
                           const QString &fileName);

} // namespace tembra
