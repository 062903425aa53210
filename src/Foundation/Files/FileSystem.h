#pragma once

#include "Foundation/Time/Date.h"

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <tl/expected.hpp>

namespace tembra {

/// What a system call gives, or the errno with which it failed.
template<typename T>
using SystemResult = tl::expected<T, int>;

/// A file or folder that is open. What the number means is the FileSystem's business.
enum class FileId : int { None = -1 };

enum class FileKind { File, Folder, Link, Other };
enum class FileAccess { Read, ReadAndWrite };

struct FileStatus
{
    FileKind kind = FileKind::Other;
    qint64 size = 0; ///< In bytes.
    Date modified; ///< When the contents were last changed.

    friend bool operator==(const FileStatus &, const FileStatus &) = default;
};

/// The system calls behind files that must not be lost, one by one, so that a test can let any of
/// them fail. FileHandle makes them convenient.
///
/// A call may do less than it was asked to (write, readAt) or be interrupted (EINTR). Everything but
/// the first way to a folder goes by a single name in a folder that is open, and follows no link:
/// nobody can swap what lies in between. Implementations may be used by several threads at once.
class FileSystem
{
public:
    FileSystem() = default;
    virtual ~FileSystem() = default;
    Q_DISABLE_COPY_MOVE(FileSystem)

    /// Follows links, on the way and at its end.
    virtual SystemResult<FileId> openFolderAt(const QString &path) = 0;
    virtual SystemResult<FileId> openFolder(FileId parent, const QString &name) = 0;
    /// Opens what is there without ever waiting for anybody; a pipe or device may be opened too.
    virtual SystemResult<FileId> openFile(FileId folder, const QString &name,
                                          FileAccess access) = 0;
    /// Makes a file, for reading and writing by nobody but the user. Fails when the name is taken.
    virtual SystemResult<FileId> createFile(FileId folder, const QString &name) = 0;
    /// Makes a folder for nobody but the user. Fails when the name is taken.
    virtual SystemResult<void> createFolder(FileId parent, const QString &name) = 0;

    /// Of the link itself where the name is one.
    virtual SystemResult<FileStatus> statusIn(FileId folder, const QString &name) = 0;
    virtual SystemResult<FileStatus> status(FileId file) = 0;
    /// Everything in the folder but itself and its parent, in no order.
    virtual SystemResult<QStringList> names(FileId folder) = 0;

    /// Takes the lock that one opened file may have on a file. EWOULDBLOCK: another one has it.
    virtual SystemResult<void> lock(FileId file) = 0;
    /// Writes behind what was written before. Returns the number of bytes written.
    virtual SystemResult<qint64> write(FileId file, QByteArrayView bytes) = 0;
    /// Returns the number of bytes read; 0 at the end of the file.
    virtual SystemResult<qint64> readAt(FileId file, qint64 offset, char *bytes, qint64 size) = 0;
    /// Waits until the disk has the file's contents, or the folder's names.
    virtual SystemResult<void> sync(FileId fileOrFolder) = 0;
    /// Lets memory forget the file's contents, so that they are next read from the disk.
    virtual SystemResult<void> forgetCached(FileId file) = 0;
    /// The id is void afterwards, whatever is returned.
    virtual SystemResult<void> close(FileId fileOrFolder) = 0;

    /// In one step. Replaces a file by a file; a folder replaces at most an empty folder.
    virtual SystemResult<void> rename(FileId folder, const QString &from, const QString &to) = 0;
    virtual SystemResult<void> removeFile(FileId folder, const QString &name) = 0;
    /// Removes an empty folder.
    virtual SystemResult<void> removeFolder(FileId parent, const QString &name) = 0;
};

/// The file system of the machine.
FileSystem &systemFileSystem();

} // namespace tembra
