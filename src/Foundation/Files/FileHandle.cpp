#include "Foundation/Files/FileHandle.h"

#include "Foundation/Files/FileFault.h"
#include "Foundation/Precondition.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tembra {

namespace {

/// What one call is asked to do at most. Smaller than any system's own limit.
constexpr qint64 largestPiece = 1 << 20;
/// Signals come one by one; whatever interrupts more often than this will not stop.
constexpr int mostInterruptions = 100;

template<typename Call>
auto uninterrupted(const Call &call)
{
    auto result = call();
    for (int i = 0; i < mostInterruptions && !result && result.error() == EINTR; ++i)
        result = call();
    return result;
}

} // namespace

SystemResult<FileHandle> FileHandle::folderAt(FileSystem &fileSystem, const QString &path)
{
    return uninterrupted([&] { return fileSystem.openFolderAt(path); }).map([&](FileId id) {
        return FileHandle(fileSystem, id);
    });
}

SystemResult<FileHandle> FileHandle::folderIn(const FileHandle &parent, const QString &name)
{
    FileSystem &fileSystem = parent.fileSystem();
    return uninterrupted([&] { return fileSystem.openFolder(parent.m_id, name); })
        .map([&](FileId id) { return FileHandle(fileSystem, id); });
}

SystemResult<FileHandle> FileHandle::fileIn(const FileHandle &folder, const QString &name,
                                            FileAccess access)
{
    FileSystem &fileSystem = folder.fileSystem();
    // First without opening it, since opening a device may already do something.
    const auto named = fileSystem.statusIn(folder.m_id, name);
    if (!named)
        return tl::unexpected<int>(named.error());
    if (named->kind != FileKind::File)
        return tl::unexpected<int>(notRegularFile);
    const auto id = uninterrupted([&] { return fileSystem.openFile(folder.m_id, name, access); });
    if (!id)
        return tl::unexpected<int>(id.error());
    FileHandle file(fileSystem, *id);
    const auto opened = fileSystem.status(file.m_id);
    if (!opened)
        return tl::unexpected<int>(opened.error());
    if (opened->kind != FileKind::File)
        return tl::unexpected<int>(notRegularFile);
    return file;
}

SystemResult<FileHandle> FileHandle::createdIn(const FileHandle &folder, const QString &name)
{
    FileSystem &fileSystem = folder.fileSystem();
    return uninterrupted([&] { return fileSystem.createFile(folder.m_id, name); })
        .map([&](FileId id) { return FileHandle(fileSystem, id); });
}

FileHandle::FileHandle(FileSystem &fileSystem, FileId id) : m_fileSystem(&fileSystem), m_id(id) {}

FileHandle::FileHandle(FileHandle &&other) noexcept
    : m_fileSystem(other.m_fileSystem)
    , m_id(std::exchange(other.m_id, FileId::None))
{
}

FileHandle &FileHandle::operator=(FileHandle &&other) noexcept
{
    std::swap(m_fileSystem, other.m_fileSystem);
    std::swap(m_id, other.m_id);
    return *this;
}

FileHandle::~FileHandle()
{
    if (m_id != FileId::None)
        (void)m_fileSystem->close(m_id);
}

FileSystem &FileHandle::fileSystem() const
{
    require(m_fileSystem, "A file is opened before it is used");
    return *m_fileSystem;
}

SystemResult<void> FileHandle::writeAll(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const auto piece = bytes.first(std::min<qsizetype>(bytes.size(), largestPiece));
        const auto written = uninterrupted([&] { return fileSystem().write(m_id, piece); });
        if (!written)
            return tl::unexpected<int>(written.error());
        if (*written <= 0)
            return tl::unexpected<int>(EIO);
        bytes = bytes.sliced(qsizetype(*written));
    }
    return {};
}

SystemResult<qint64> FileHandle::readAt(qint64 offset, char *bytes, qint64 size) const
{
    qint64 count = 0;
    while (count < size) {
        const qint64 wanted = std::min(size - count, largestPiece);
        const auto read = uninterrupted(
            [&] { return fileSystem().readAt(m_id, offset + count, bytes + count, wanted); });
        if (!read)
            return read;
        if (*read == 0)
            break;
        count += *read;
    }
    return count;
}

SystemResult<void> FileHandle::close()
{
    const auto closed = fileSystem().close(std::exchange(m_id, FileId::None));
    // The file is closed nevertheless, and another try might close somebody else's.
    if (!closed && closed.error() == EINTR)
        return {};
    return closed;
}

} // namespace tembra
