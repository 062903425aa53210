#include "Store/File/PrivateFile.h"

#include "Store/File/StoreFault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra {

namespace {

constexpr mode_t privateFileMode = 0600;
constexpr mode_t privateFolderMode = 0700;

Result<void> syncPath(const QString &path, int extraFlags)
{
    const int handle = ::open(QFile::encodeName(path).constData(),
                              O_RDONLY | O_CLOEXEC | O_NOFOLLOW | extraFlags);
    if (handle < 0)
        return failure(fileError(path, errno));
    const int reason = ::fsync(handle) == 0 ? 0 : errno;
    ::posix_fadvise(handle, 0, 0, POSIX_FADV_DONTNEED);
    ::close(handle);
    if (reason)
        return failure(fileError(path, reason));
    return {};
}

} // namespace

Result<void> createPrivateFile(const QString &file)
{
    const QByteArray name = QFile::encodeName(file);
    const int handle = ::open(name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                              privateFileMode);
    const int reason = errno;
    if (handle >= 0) {
        ::fchmod(handle, privateFileMode);
        ::close(handle);
        return {};
    }
    struct stat status = {};
    if (reason == EEXIST && ::lstat(name.constData(), &status) == 0 && S_ISREG(status.st_mode))
        return {};
    return failure(fileError(file, reason));
}

Result<QStringList> createPrivateFolder(const QString &folder)
{
    QStringList missing;
    for (QString path = QDir::cleanPath(folder); !QFileInfo::exists(path);
         path = QFileInfo(path).path())
        missing.append(path);
    QStringList made;
    while (!missing.isEmpty()) {
        const QString path = missing.takeLast();
        const QByteArray name = QFile::encodeName(path);
        if (::mkdir(name.constData(), privateFolderMode) != 0) {
            const int reason = errno;
            for (const QString &madeBefore : made)
                ::rmdir(QFile::encodeName(madeBefore).constData());
            return failure(fileError(path, reason));
        }
        ::chmod(name.constData(), privateFolderMode);
        made.prepend(path);
    }
    return made;
}

void makePrivate(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (::lstat(name.constData(), &status) != 0 || S_ISLNK(status.st_mode)
        || status.st_uid != ::geteuid())
        return;
    const bool isSharedOnPurpose = status.st_mode & (S_ISVTX | S_ISGID);
    if (!isSharedOnPurpose && (status.st_mode & (S_IRWXG | S_IRWXO)))
        ::chmod(name.constData(), status.st_mode & S_IRWXU);
}

Result<void> syncFolder(const QString &folder)
{
    return syncPath(folder, O_DIRECTORY);
}

Result<void> syncFile(const QString &file)
{
    return syncPath(file, 0);
}

} // namespace tembra
