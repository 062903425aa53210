#include "support/PrivateMounts.h"

#include <QFile>

#include <utility>

#ifdef Q_OS_LINUX
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>
#endif

namespace tembra {

namespace {

QString &mountObstacle()
{
    static QString obstacle = QStringLiteral("This system has no private mounts");
    return obstacle;
}

#ifdef Q_OS_LINUX

bool write(const char *file, const QByteArray &content)
{
    QFile target(QString::fromLatin1(file));
    return target.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
           && target.write(content) == content.size();
}

bool becomeAdministratorOfOwnFiles()
{
    const QByteArray user = QByteArray::number(::geteuid());
    const QByteArray group = QByteArray::number(::getegid());
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && write("/proc/self/setgroups", "deny")
           && write("/proc/self/uid_map", "0 " + user + " 1")
           && write("/proc/self/gid_map", "0 " + group + " 1");
}

#endif

} // namespace

QString PrivateMounts::obstacle()
{
    return mountObstacle();
}

#ifdef Q_OS_LINUX

void PrivateMounts::enter()
{
    const bool mayMount = ::geteuid() == 0 ? ::unshare(CLONE_NEWNS) == 0
                                           : becomeAdministratorOfOwnFiles();
    // What is mounted from here on stays in here.
    if (mayMount && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
        mountObstacle().clear();
    else
        mountObstacle() = QStringLiteral("This process may not mount disks: ") + qt_error_string();
}

MountedDisk MountedDisk::inMemory(const QString &folder, const QByteArray &options)
{
    const bool done = ::mount("tembra-test", QFile::encodeName(folder).constData(), "tmpfs", 0,
                              options.constData())
                      == 0;
    return MountedDisk(done ? folder : QString());
}

MountedDisk MountedDisk::mirror(const QString &source, const QString &target)
{
    const bool done = ::mount(QFile::encodeName(source).constData(),
                              QFile::encodeName(target).constData(), nullptr, MS_BIND, nullptr)
                      == 0;
    MountedDisk disk(done ? target : QString());
    disk.m_isMirror = true;
    return disk;
}

bool MountedDisk::makeReadOnly()
{
    const unsigned long flags = MS_REMOUNT | MS_RDONLY | (m_isMirror ? MS_BIND : 0);
    return ::mount(nullptr, QFile::encodeName(m_target).constData(), nullptr, flags, nullptr) == 0;
}

MountedDisk::~MountedDisk()
{
    if (isMounted())
        ::umount2(QFile::encodeName(m_target).constData(), MNT_DETACH);
}

#else

void PrivateMounts::enter() {}

MountedDisk MountedDisk::inMemory(const QString &, const QByteArray &)
{
    return MountedDisk({});
}

MountedDisk MountedDisk::mirror(const QString &, const QString &)
{
    return MountedDisk({});
}

bool MountedDisk::makeReadOnly()
{
    return false;
}

MountedDisk::~MountedDisk() = default;

#endif

MountedDisk::MountedDisk(MountedDisk &&other) noexcept
    : m_target(std::exchange(other.m_target, {}))
    , m_isMirror(other.m_isMirror)
{
}

} // namespace tembra
