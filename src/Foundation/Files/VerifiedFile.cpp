#include "Foundation/Files/VerifiedFile.h"

#include "Foundation/Files/FileFault.h"

#include <QByteArray>

#include <algorithm>
#include <cerrno>

namespace tembra {

namespace {

using Retry = WriteError::Retry;

constexpr qsizetype comparedBytes = 1 << 16;

WriteResult lockNew(FileHandle &file)
{
    const auto locked = file.fileSystem().lock(file.id());
    // Some disks know no locks: there, nobody takes the file for abandoned.
    if (!locked && locked.error() == EWOULDBLOCK)
        return writeError("flock", locked.error());
    return {};
}

/// After a failed sync the system may take the lost pages for written, and a second sync succeed.
/// So whatever the reason, nothing of this file is used again.
WriteResult syncNew(FileHandle &file)
{
    if (const auto synced = file.fileSystem().sync(file.id()); !synced)
        return writeError("fsync", synced.error(), Retry::Once);
    return {};
}

WriteResult compareWithDisk(FileHandle &file, QByteArrayView contents)
{
    // Where memory cannot be told to forget, comparing with it is still better than nothing.
    (void)file.fileSystem().forgetCached(file.id());
    // One byte more than expected, so that a file that is too long is noticed.
    QByteArray piece(std::min(comparedBytes, contents.size() + 1), Qt::Uninitialized);
    qsizetype compared = 0;
    for (;;) {
        const auto count = file.readAt(compared, piece.data(), piece.size());
        if (!count)
            return writeError("read", count.error());
        const QByteArrayView expected = contents.sliced(compared).first(
            std::min(contents.size() - compared, piece.size()));
        if (QByteArrayView(piece).first(qsizetype(*count)) != expected)
            return writeError("read", alteredContents);
        compared += qsizetype(*count);
        if (*count < piece.size())
            return {};
    }
}

WriteResult fill(FileHandle &file, QByteArrayView contents)
{
    if (const auto locked = lockNew(file); !locked)
        return locked;
    if (const auto written = file.writeAll(contents); !written)
        return writeError("write", written.error());
    if (const auto synced = syncNew(file); !synced)
        return synced;
    if (const auto compared = compareWithDisk(file, contents); !compared)
        return compared;
    if (const auto closed = file.close(); !closed)
        return writeError("close", closed.error(), Retry::Once);
    return {};
}

} // namespace

WriteResult writeVerifiedFile(const FileHandle &folder, const QString &name,
                              QByteArrayView contents)
{
    auto file = FileHandle::createdIn(folder, name);
    if (!file)
        return writeError("create", file.error());
    const auto filled = fill(*file, contents);
    if (!filled) {
        *file = FileHandle();
        (void)folder.fileSystem().removeFile(folder.id(), name);
    }
    return filled;
}

} // namespace tembra
