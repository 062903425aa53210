#pragma once

#include "Foundation/Files/FileSystem.h"
#include "Foundation/Result.h"

#include <QByteArray>
#include <QLatin1String>

#include <optional>
#include <stop_token>

namespace tembra {

/// A backup package: a folder, shown as one file, that holds the journal in one JSON file. May be
/// used in any thread.
class BackupDocument
{
public:
    /// The package's type, and the extension of its name.
    static constexpr QLatin1StringView tembrabackup{"tembrabackup"};
    /// The one file inside.
    static constexpr QLatin1StringView teammatesFilename{"teammates.json"};

    /// The JSON document; nothing when the package has no such file.
    std::optional<QByteArray> teammatesJsonData;

    /// Reads a package; other files in it are ignored. A package without the file is read too.
    static Result<BackupDocument> read(const QString &packagePath,
                                       FileSystem &fileSystem = systemFileSystem());
    /// Writes the package such that whatever happens, the one that was there or the new one is
    /// there, complete. Once @p cancellation was requested, the old one stays.
    Result<void> write(const QString &packagePath, FileSystem &fileSystem = systemFileSystem(),
                       const std::stop_token &cancellation = {}) const;
};

} // namespace tembra
