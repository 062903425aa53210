#include "Foundation/Files/PosixFileSystem.h"

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

int descriptorOf(FileId file)
{
    return int(file);
}

tl::unexpected<int> failedCall()
{
    return tl::unexpected<int>(errno);
}

SystemResult<FileId> openedFile(int descriptor)
{
    if (descriptor < 0)
        return failedCall();
    return FileId(descriptor);
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

} // namespace

SystemResult<FileId> PosixFileSystem::openFolderAt(const QString &path)
{
    return openedFile(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | openFlags));
}

SystemResult<FileId> PosixFileSystem::openFolder(FileId parent, const QString &name)
{
    return openedFile(::openat(descriptorOf(parent), QFile::encodeName(name).constData(),
                               O_RDONLY | O_DIRECTORY | O_NOFOLLOW | openFlags));
}

SystemResult<FileId> PosixFileSystem::openFile(FileId folder, const QString &name,
                                               FileAccess access)
{
    const int mode = access == FileAccess::Read ? O_RDONLY : O_RDWR;
    return openedFile(::openat(descriptorOf(folder), QFile::encodeName(name).constData(),
                               mode | O_NOFOLLOW | O_NOCTTY | openFlags));
}

SystemResult<FileId> PosixFileSystem::createFile(FileId folder, const QString &name)
{
    const auto made = openedFile(::openat(descriptorOf(folder), QFile::encodeName(name).constData(),
                                          O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | openFlags,
                                          ownFileMode));
    // Where the umask took even the user's own permissions away. Some disks know none.
    if (made)
        (void)::fchmod(descriptorOf(*made), ownFileMode);
    return made;
}

SystemResult<void> PosixFileSystem::createFolder(FileId parent, const QString &name)
{
    const QByteArray encoded = QFile::encodeName(name);
    const auto made = outcomeOf(
        ::mkdirat(descriptorOf(parent), encoded.constData(), ownFolderMode));
    if (made)
        (void)::fchmodat(descriptorOf(parent), encoded.constData(), ownFolderMode, 0);
    return made;
}

SystemResult<FileStatus> PosixFileSystem::statusIn(FileId folder, const QString &name)
{
    struct stat status = {};
    if (::fstatat(descriptorOf(folder), QFile::encodeName(name).constData(), &status,
                  AT_SYMLINK_NOFOLLOW)
        != 0)
        return failedCall();
    return statusOf(status);
}

SystemResult<FileStatus> PosixFileSystem::status(FileId file)
{
    struct stat status = {};
    if (::fstat(descriptorOf(file), &status) != 0)
        return failedCall();
    return statusOf(status);
}

SystemResult<QStringList> PosixFileSystem::names(FileId folder)
{
    // Of its own, as reading moves a position in it and closing the listing closes it.
    const int descriptor = ::openat(descriptorOf(folder), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return failedCall();
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(::fdopendir(descriptor), ::closedir);
    if (!listing) {
        const int reason = errno;
        ::close(descriptor);
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

SystemResult<void> PosixFileSystem::lock(FileId file)
{
    return outcomeOf(::flock(descriptorOf(file), LOCK_EX | LOCK_NB));
}

SystemResult<qint64> PosixFileSystem::write(FileId file, QByteArrayView bytes)
{
    return amount(::write(descriptorOf(file), bytes.data(), size_t(bytes.size())));
}

SystemResult<qint64> PosixFileSystem::readAt(FileId file, qint64 offset, char *bytes, qint64 size)
{
    return amount(::pread(descriptorOf(file), bytes, size_t(size), off_t(offset)));
}

SystemResult<void> PosixFileSystem::sync(FileId fileOrFolder)
{
#ifdef F_FULLFSYNC
    // Here fsync() alone does not wait for the disk; disks that cannot do more say so.
    if (::fcntl(descriptorOf(fileOrFolder), F_FULLFSYNC) == 0)
        return {};
    if (errno != ENOTSUP && errno != EINVAL && errno != ENOTTY)
        return failedCall();
#endif
    return outcomeOf(::fsync(descriptorOf(fileOrFolder)));
}

SystemResult<void> PosixFileSystem::forgetCached(FileId file)
{
#ifdef POSIX_FADV_DONTNEED
    const int reason = ::posix_fadvise(descriptorOf(file), 0, 0, POSIX_FADV_DONTNEED);
    if (reason != 0)
        return tl::unexpected<int>(reason);
    return {};
#elif defined(F_NOCACHE)
    return outcomeOf(::fcntl(descriptorOf(file), F_NOCACHE, 1) < 0 ? -1 : 0);
#else
    Q_UNUSED(file)
    return {};
#endif
}

SystemResult<void> PosixFileSystem::close(FileId fileOrFolder)
{
    return outcomeOf(::close(descriptorOf(fileOrFolder)));
}

SystemResult<void> PosixFileSystem::rename(FileId folder, const QString &from, const QString &to)
{
    const int descriptor = descriptorOf(folder);
    return outcomeOf(::renameat(descriptor, QFile::encodeName(from).constData(), descriptor,
                                QFile::encodeName(to).constData()));
}

SystemResult<void> PosixFileSystem::removeFile(FileId folder, const QString &name)
{
    return outcomeOf(::unlinkat(descriptorOf(folder), QFile::encodeName(name).constData(), 0));
}

SystemResult<void> PosixFileSystem::removeFolder(FileId parent, const QString &name)
{
    return outcomeOf(
        ::unlinkat(descriptorOf(parent), QFile::encodeName(name).constData(), AT_REMOVEDIR));
}

FileSystem &systemFileSystem()
{
    // Never destroyed: a thread that is left to itself may use it until the program has ended.
    static PosixFileSystem &system = *new PosixFileSystem;
    return system;
}

} // namespace tembra
