#pragma once

#include <QByteArray>
#include <QString>

namespace tembra {

/// Disks of a test's own, that no other program sees and that go with the test.
class PrivateMounts
{
public:
    /// Lets this process mount disks. To be called at the start of main(), while there is one thread.
    /// An ordinary user becomes the administrator of nothing but the own files thereby, so no
    /// permission stops the process any more.
    static void enter();
    /// Why this process may not mount disks; empty when it may.
    static QString obstacle();
};

/// A disk that is mounted until this goes.
class MountedDisk
{
public:
    /// A disk in memory, mounted at an existing folder. @p options e.g. "size=1m,nr_inodes=20".
    static MountedDisk inMemory(const QString &folder, const QByteArray &options);
    /// What is at @p source shows up at @p target too; two files or two folders.
    static MountedDisk mirror(const QString &source, const QString &target);

    MountedDisk(MountedDisk &&other) noexcept;
    MountedDisk(const MountedDisk &) = delete;
    MountedDisk &operator=(const MountedDisk &) = delete;
    ~MountedDisk();

    bool isMounted() const { return !m_target.isEmpty(); }
    /// Nobody may write to the disk any more.
    bool makeReadOnly();

private:
    explicit MountedDisk(const QString &target) : m_target(target) {}

    QString m_target;
    bool m_isMirror = false;
};

} // namespace tembra
