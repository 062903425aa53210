#pragma once

#include "Foundation/Files/FileSystem.h"

namespace tembra {

/// A file or folder that is open until this goes. Calls that were interrupted or did only a part of
/// what was asked are taken up again. To be used by one thread at a time.
class OpenedFile
{
public:
    /// Follows links.
    static SystemResult<OpenedFile> folderAt(FileSystem &fileSystem, const QString &path);
    /// Follows no link, like all others that go by a name in a folder.
    static SystemResult<OpenedFile> folderIn(const OpenedFile &parent, const QString &name);
    /// Fails with notRegularFile, at once, where the name leads to anything but a file.
    static SystemResult<OpenedFile> fileIn(const OpenedFile &folder, const QString &name,
                                           FileAccess access);
    /// A new file. Fails when the name is taken.
    static SystemResult<OpenedFile> createdIn(const OpenedFile &folder, const QString &name);

    OpenedFile() = default;
    OpenedFile(OpenedFile &&other) noexcept;
    OpenedFile &operator=(OpenedFile &&other) noexcept;
    OpenedFile(const OpenedFile &) = delete;
    OpenedFile &operator=(const OpenedFile &) = delete;
    /// Closes without a word: whoever wrote into it closes it before, and looks at what that says.
    ~OpenedFile();

    FileSystem &fileSystem() const;
    FileId id() const { return m_id; }

    /// Writes all of @p bytes, behind what was written before.
    SystemResult<void> writeAll(QByteArrayView bytes);
    /// Returns the number of bytes read, which is smaller than @p size only at the end of the file.
    SystemResult<qint64> readAt(qint64 offset, char *bytes, qint64 size) const;
    SystemResult<void> close();

private:
    OpenedFile(FileSystem &fileSystem, FileId id);

    FileSystem *m_fileSystem = nullptr;
    FileId m_id = FileId::None;
};

} // namespace tembra
