#pragma once

#include "Foundation/Files/FileSystem.h"

namespace tembra {

/// The file system of the machine, by POSIX calls.
class PosixFileSystem final : public FileSystem
{
public:
    SystemResult<FileId> openFolderAt(const QString &path) override;
    SystemResult<FileId> openFolder(FileId parent, const QString &name) override;
    SystemResult<FileId> openFile(FileId folder, const QString &name, FileAccess access) override;
    SystemResult<FileId> createFile(FileId folder, const QString &name) override;
    SystemResult<void> createFolder(FileId parent, const QString &name) override;
    SystemResult<FileStatus> statusIn(FileId folder, const QString &name) override;
    SystemResult<FileStatus> status(FileId file) override;
    SystemResult<QStringList> names(FileId folder) override;
    SystemResult<void> lock(FileId file) override;
    SystemResult<qint64> write(FileId file, QByteArrayView bytes) override;
    SystemResult<qint64> readAt(FileId file, qint64 offset, char *bytes, qint64 size) override;
    SystemResult<void> sync(FileId fileOrFolder) override;
    SystemResult<void> forgetCached(FileId file) override;
    SystemResult<void> close(FileId fileOrFolder) override;
    SystemResult<void> rename(FileId folder, const QString &from, const QString &to) override;
    SystemResult<void> removeFile(FileId folder, const QString &name) override;
    SystemResult<void> removeFolder(FileId parent, const QString &name) override;
};

} // namespace tembra
