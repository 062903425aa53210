#include "Store/File/StoreLock.h"

#include "Store/File/StoreFault.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tembra {

namespace {

constexpr int lockFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

struct OpenedLock
{
    int handle = -1;
    bool isMade = false;
};

OpenedLock openLock(const QByteArray &name)
{
    for (;;) {
        const int made = ::open(name.constData(), lockFlags | O_CREAT | O_EXCL, 0600);
        if (made >= 0) {
            ::fchmod(made, 0600);
            return {made, true};
        }
        if (errno != EEXIST)
            return {};
        const int found = ::open(name.constData(), lockFlags);
        if (found >= 0 || errno != ENOENT)
            return {found, false};
        // Its owner removed it between the two calls.
    }
}

/// Whether the name still leads to the opened file: its last owner may have removed it meanwhile.
bool isStillInPlace(int handle, const QByteArray &name)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(handle, &opened) == 0 && ::lstat(name.constData(), &named) == 0
           && opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

bool isRegularFile(int handle)
{
    struct stat status = {};
    return ::fstat(handle, &status) == 0 && S_ISREG(status.st_mode);
}

Error notLocked(const QString &file, int reason)
{
    if (reason == EWOULDBLOCK)
        return {QStringLiteral(
                    "Tembra is already running with the journal in this folder (“%1” is locked). "
                    "Use its window, or quit it and try again.")
                    .arg(file),
                {}};
    return fileError(file, reason);
}

} // namespace

Result<StoreLock> StoreLock::acquire(const QString &file)
{
    const QByteArray name = QFile::encodeName(file);
    for (;;) {
        const OpenedLock opened = openLock(name);
        if (opened.handle < 0)
            return failure(notLocked(file, errno));
        StoreLock lock(file, opened.handle, opened.isMade);
        if (!isRegularFile(opened.handle))
            return failure(notLocked(file, EINVAL));
        if (::flock(opened.handle, LOCK_EX | LOCK_NB) != 0) {
            const int reason = errno;
            lock.m_isMade = false;
            return failure(notLocked(file, reason));
        }
        if (isStillInPlace(opened.handle, name))
            return lock;
        lock.m_isMade = false;
    }
}

StoreLock::StoreLock(QString file, int handle, bool isMade)
    : m_file(std::move(file))
    , m_handle(handle)
    , m_isMade(isMade)
{
}

StoreLock::StoreLock(StoreLock &&other) noexcept
    : m_file(std::move(other.m_file))
    , m_handle(std::exchange(other.m_handle, -1))
    , m_isMade(other.m_isMade)
{
}

StoreLock::~StoreLock()
{
    if (m_handle < 0)
        return;
    // While it is still locked: whoever opened it in between finds that its name leads elsewhere.
    const QByteArray name = QFile::encodeName(m_file);
    if (m_isMade && isStillInPlace(m_handle, name))
        ::unlink(name.constData());
    ::close(m_handle);
}

} // namespace tembra
