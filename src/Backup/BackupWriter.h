#pragma once

#include "Backup/BackupDocument.h"
#include "Backup/JournalImport.h"

namespace tembra {

/// Writes a backup package. No backup shrinks silently: a package that holds more teammates or
/// meetings than its replacement is first copied to a dated name beside it. At most ten of such copies
/// are kept, the newest and the largest always among them.
///
/// A value without a thread of its own; blocks for as long as the disk takes.
class BackupWriter
{
public:
    static constexpr int mostCopies = 10;

    explicit BackupWriter(QString packagePath, FileSystem &fileSystem = systemFileSystem());

    /// Counts what is in the package that is to be replaced. To be called before the new document is
    /// made, so that only one of the two is in memory.
    void inspectReplaced();
    /// Returns the name of the copy of the replaced package, empty when none had to be made. When the
    /// copy fails, or once @p cancellation was requested, the package is not replaced.
    Result<QString> write(const BackupDocument &document,
                          const std::stop_token &cancellation = {}) const;

private:
    bool shrinks(const BackupDocument &document) const;
    Result<QString> copyReplaced() const;
    void removeSurplusCopies() const;
    QString folder() const;
    QString nameWithoutSuffix() const;

    QString m_packagePath;
    FileSystem *m_fileSystem;
    std::optional<BackupCounts> m_replaced; ///< Nothing when there is none that can be read.
};

} // namespace tembra
