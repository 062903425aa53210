#include "Foundation/Files/FileSystem.h"

#include <QFile>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra {

namespace {

constexpr mode_t ownFileMode = 0600;
constexpr mode_t ownFolderMode = 0700;
constexpr int openFlags = O_CLOEXEC | O_NONBLOCK;

int handleOf(FileId file)
{
    return int(file);
}

tl::unexpected<int> failedCall()
{
    return tl::unexpected<int>(errno);
}

SystemResult<FileId> openedFile(int handle)
{
    if (handle < 0)
        return failedCall();
    return FileId(handle);
}

SystemResult<void> outcomeOf(int returned)
{
    if (returned != 0)
        return failedCall();
    return {};
}

SystemResult<qint64> amount(ssize_t returned)
{
    if (returned < 0)
        return failedCall();
    return qint64(returned);
}

FileKind kindOfMode(mode_t mode)
{
    if (S_ISREG(mode))
        return FileKind::File;
    if (S_ISDIR(mode))
        return FileKind::Folder;
    return S_ISLNK(mode) ? FileKind::Link : FileKind::Other;
}

FileStatus statusOf(const struct stat &status)
{
#ifdef Q_OS_DARWIN
    const timespec &modified = status.st_mtimespec;
#else
    const timespec &modified = status.st_mtim;
#endif
    const double milliseconds = double(modified.tv_sec) * 1e3 + double(modified.tv_nsec) / 1e6;
    return {kindOfMode(status.st_mode), qint64(status.st_size),
            Date::fromUnixMilliseconds(milliseconds)};
}

class PosixFileSystem : public FileSystem
{
public:
    SystemResult<FileId> openFolderAt(const QString &path) override
    {
        return openedFile(
            ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | openFlags));
    }

    SystemResult<FileId> openFolder(FileId parent, const QString &name) override
    {
        return openedFile(::openat(handleOf(parent), QFile::encodeName(name).constData(),
                                   O_RDONLY | O_DIRECTORY | O_NOFOLLOW | openFlags));
    }

    SystemResult<FileId> openFile(FileId folder, const QString &name, FileAccess access) override
    {
        const int mode = access == FileAccess::Read ? O_RDONLY : O_RDWR;
        return openedFile(::openat(handleOf(folder), QFile::encodeName(name).constData(),
                                   mode | O_NOFOLLOW | O_NOCTTY | openFlags));
    }

    SystemResult<FileId> createFile(FileId folder, const QString &name) override
    {
        const auto made = openedFile(::openat(handleOf(folder), QFile::encodeName(name).constData(),
                                              O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | openFlags,
                                              ownFileMode));
        // Where the umask took even the user's own permissions away. Some disks know none.
        if (made)
            (void)::fchmod(handleOf(*made), ownFileMode);
        return made;
    }

    SystemResult<void> createFolder(FileId parent, const QString &name) override
    {
        const QByteArray encoded = QFile::encodeName(name);
        const auto made = outcomeOf(
            ::mkdirat(handleOf(parent), encoded.constData(), ownFolderMode));
        if (made)
            (void)::fchmodat(handleOf(parent), encoded.constData(), ownFolderMode, 0);
        return made;
    }

    SystemResult<FileStatus> statusIn(FileId folder, const QString &name) override
    {
        struct stat status = {};
        if (::fstatat(handleOf(folder), QFile::encodeName(name).constData(), &status,
                      AT_SYMLINK_NOFOLLOW)
            != 0)
            return failedCall();
        return statusOf(status);
    }

    SystemResult<FileStatus> status(FileId file) override
    {
        struct stat status = {};
        if (::fstat(handleOf(file), &status) != 0)
            return failedCall();
        return statusOf(status);
    }

    SystemResult<QStringList> names(FileId folder) override
    {
        // Of its own, as reading moves a position in it and closing the listing closes it.
        const int handle = ::openat(handleOf(folder), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (handle < 0)
            return failedCall();
        const std::unique_ptr<DIR, int (*)(DIR *)> listing(::fdopendir(handle), ::closedir);
        if (!listing) {
            const int reason = errno;
            ::close(handle);
            return tl::unexpected<int>(reason);
        }
        QStringList found;
        for (;;) {
            errno = 0;
            const dirent *entry = ::readdir(listing.get());
            if (!entry && errno != 0)
                return failedCall();
            if (!entry)
                return found;
            const QString name = QFile::decodeName(entry->d_name);
            if (name != QLatin1String(".") && name != QLatin1String(".."))
                found.append(name);
        }
    }

    SystemResult<void> lock(FileId file) override
    {
        return outcomeOf(::flock(handleOf(file), LOCK_EX | LOCK_NB));
    }

    SystemResult<qint64> write(FileId file, QByteArrayView bytes) override
    {
        return amount(::write(handleOf(file), bytes.data(), size_t(bytes.size())));
    }

    SystemResult<qint64> readAt(FileId file, qint64 offset, char *bytes, qint64 size) override
    {
        return amount(::pread(handleOf(file), bytes, size_t(size), off_t(offset)));
    }

    SystemResult<void> sync(FileId fileOrFolder) override
    {
#ifdef F_FULLFSYNC
        // Here fsync() alone does not wait for the disk; disks that cannot do more say so.
        if (::fcntl(handleOf(fileOrFolder), F_FULLFSYNC) == 0)
            return {};
        if (errno != ENOTSUP && errno != EINVAL && errno != ENOTTY)
            return failedCall();
#endif
        return outcomeOf(::fsync(handleOf(fileOrFolder)));
    }

    SystemResult<void> forgetCached(FileId file) override
    {
#ifdef POSIX_FADV_DONTNEED
        const int reason = ::posix_fadvise(handleOf(file), 0, 0, POSIX_FADV_DONTNEED);
        if (reason != 0)
            return tl::unexpected<int>(reason);
        return {};
#elif defined(F_NOCACHE)
        return outcomeOf(::fcntl(handleOf(file), F_NOCACHE, 1) < 0 ? -1 : 0);
#else
        Q_UNUSED(file)
        return {};
#endif
    }

    SystemResult<void> close(FileId fileOrFolder) override
    {
        return outcomeOf(::close(handleOf(fileOrFolder)));
    }

    SystemResult<void> rename(FileId folder, const QString &from, const QString &to) override
    {
        const int handle = handleOf(folder);
        return outcomeOf(::renameat(handle, QFile::encodeName(from).constData(), handle,
                                    QFile::encodeName(to).constData()));
    }

    SystemResult<void> removeFile(FileId folder, const QString &name) override
    {
        return outcomeOf(::unlinkat(handleOf(folder), QFile::encodeName(name).constData(), 0));
    }

    SystemResult<void> removeFolder(FileId parent, const QString &name) override
    {
        return outcomeOf(
            ::unlinkat(handleOf(parent), QFile::encodeName(name).constData(), AT_REMOVEDIR));
    }
};

} // namespace

FileSystem &systemFileSystem()
{
    static PosixFileSystem system;
    return system;
}

} // namespace tembra
