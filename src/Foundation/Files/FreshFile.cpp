#include "Foundation/Files/FreshFile.h"

#include "Foundation/Files/FileFault.h"

#include <QByteArray>

#include <algorithm>
#include <cerrno>

namespace tembra {

namespace {

using Renewal = WriteObstacle::Renewal;

constexpr qsizetype comparedPiece = 1 << 16;

WriteStep lockFresh(OpenedFile &file)
{
    const auto locked = file.fileSystem().lock(file.id());
    // Some disks know no locks: there, nobody takes the file for abandoned.
    if (!locked && locked.error() == EWOULDBLOCK)
        return obstacle("flock", locked.error());
    return {};
}

/// After a failed sync the system may take the lost pages for written, and a second sync succeed.
/// So whatever the reason, nothing of this file is used again.
WriteStep syncFresh(OpenedFile &file)
{
    if (const auto synced = file.fileSystem().sync(file.id()); !synced)
        return obstacle("fsync", synced.error(), Renewal::Once);
    return {};
}

WriteStep compareWithDisk(OpenedFile &file, QByteArrayView contents)
{
    // Where memory cannot be told to forget, comparing with it is still better than nothing.
    (void)file.fileSystem().forgetCached(file.id());
    // One byte more than expected, so that a file that is too long is noticed.
    QByteArray piece(std::min(comparedPiece, contents.size() + 1), Qt::Uninitialized);
    qsizetype compared = 0;
    for (;;) {
        const auto count = file.readAt(compared, piece.data(), piece.size());
        if (!count)
            return obstacle("read", count.error());
        const QByteArrayView expected = contents.sliced(compared).first(
            std::min(contents.size() - compared, piece.size()));
        if (QByteArrayView(piece).first(qsizetype(*count)) != expected)
            return obstacle("read", alteredContents);
        compared += qsizetype(*count);
        if (*count < piece.size())
            return {};
    }
}

WriteStep fillFresh(OpenedFile &file, QByteArrayView contents)
{
    if (const auto locked = lockFresh(file); !locked)
        return locked;
    if (const auto written = file.writeAll(contents); !written)
        return obstacle("write", written.error());
    if (const auto synced = syncFresh(file); !synced)
        return synced;
    if (const auto compared = compareWithDisk(file, contents); !compared)
        return compared;
    if (const auto closed = file.close(); !closed)
        return obstacle("close", closed.error(), Renewal::Once);
    return {};
}

} // namespace

WriteStep writeFreshFile(const OpenedFile &folder, const QString &name, QByteArrayView contents)
{
    auto file = OpenedFile::createdIn(folder, name);
    if (!file)
        return obstacle("create", file.error());
    const auto filled = fillFresh(*file, contents);
    if (!filled) {
        *file = OpenedFile();
        (void)folder.fileSystem().removeFile(folder.id(), name);
    }
    return filled;
}

} // namespace tembra
