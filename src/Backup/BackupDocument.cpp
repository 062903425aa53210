#include "Backup/BackupDocument.h"

#include "Foundation/Files/PackageFile.h"
#include "Foundation/Files/PackageWriter.h"

namespace tembra {

Result<BackupDocument> BackupDocument::read(const QString &packagePath, FileSystem &fileSystem)
{
    return readPackageFile(packagePath, teammatesFilename, fileSystem)
        .map(
            [](std::optional<QByteArray> contents) { return BackupDocument{std::move(contents)}; });
}

Result<void> BackupDocument::write(const QString &packagePath, FileSystem &fileSystem,
                                   const std::stop_token &cancellation) const
{
    return PackageWriter(fileSystem)
        .write(packagePath, teammatesFilename, teammatesJsonData.value_or(QByteArray()),
               cancellation);
}

} // namespace tembra
