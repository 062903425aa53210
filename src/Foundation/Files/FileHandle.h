#pragma once

#include "Foundation/Files/FileSystem.h"

namespace tembra {

/// An open file or folder, closed by the destructor. Calls that were interrupted, or did only a part
/// of what was asked, are repeated. To be used by one thread at a time.
class FileHandle
{
public:
    /// Follows links.
    static SystemResult<FileHandle> folderAt(FileSystem &fileSystem, const QString &path);
    /// Follows no link, like all others that go by a name in a folder.
    static SystemResult<FileHandle> folderIn(const FileHandle &parent, const QString &name);
    /// Fails with notRegularFile, at once, where the name leads to anything but a file.
    static SystemResult<FileHandle> fileIn(const FileHandle &folder, const QString &name,
                                           FileAccess access);
    /// A new file. Fails when the name is taken.
    static SystemResult<FileHandle> createdIn(const FileHandle &folder, const QString &name);

    FileHandle() = default;
    FileHandle(FileHandle &&other) noexcept;
    FileHandle &operator=(FileHandle &&other) noexcept;
    FileHandle(const FileHandle &) = delete;
    FileHandle &operator=(const FileHandle &) = delete;
    /// Closes without a word: whoever wrote into it closes it before, and looks at what that says.
    ~FileHandle();

    FileSystem &fileSystem() const;
    FileId id() const { return m_id; }

    /// Writes all of @p bytes, behind what was written before.
    SystemResult<void> writeAll(QByteArrayView bytes);
    /// Returns the number of bytes read, which is smaller than @p size only at the end of the file.
    SystemResult<qint64> readAt(qint64 offset, char *bytes, qint64 size) const;
    SystemResult<void> close();

private:
    FileHandle(FileSystem &fileSystem, FileId id);

    FileSystem *m_fileSystem = nullptr;
    FileId m_id = FileId::None;
};

} // namespace tembra
