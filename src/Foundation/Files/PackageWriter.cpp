#include "Foundation/Files/PackageWriter.h"

#include "Foundation/Files/FileFault.h"
#include "Foundation/Files/FileHandle.h"
#include "Foundation/Files/PackagePath.h"
#include "Foundation/Files/TemporaryFiles.h"
#include "Foundation/Files/VerifiedFile.h"
#include "Foundation/Files/WriteError.h"
#include "Foundation/Precondition.h"

#include <QScopeGuard>

#include <cerrno>

namespace tembra {

namespace {

using Retry = WriteError::Retry;

/// How often other writers may interfere before the write fails.
constexpr int mostCollisions = 20;

/// One attempt to write a package, from the beginning.
class PackageAttempt
{
public:
    PackageAttempt(FileSystem &fileSystem, const PackagePath &package, const QString &fileName,
                   QByteArrayView contents, const std::stop_token &cancellation)
        : m_fileSystem(fileSystem)
        , m_package(package)
        , m_fileName(fileName)
        , m_contents(contents)
        , m_cancellation(cancellation)
    {
    }

    WriteResult run();

private:
    WriteResult create(const FileHandle &parent) const;
    WriteResult fillNew(const FileHandle &parent, const QString &temporary) const;
    WriteResult replaceIn(const FileHandle &parent) const;
    WriteResult checkReplaced(const FileHandle &package) const;
    WriteResult checkInPlace() const;
    WriteResult commit(const FileHandle &folder, const QString &temporary,
                       const QString &name) const;
    QString filePath() const { return m_package.path + QLatin1Char('/') + m_fileName; }

    FileSystem &m_fileSystem;
    const PackagePath &m_package;
    const QString &m_fileName;
    QByteArrayView m_contents;
    const std::stop_token &m_cancellation;
};

WriteResult syncFolder(const FileHandle &folder)
{
    const auto synced = folder.fileSystem().sync(folder.id());
    if (synced)
        return {};
    switch (synced.error()) {
    case EINVAL: // Some disks keep their names in order by themselves, and know no such call.
    case ENOTSUP:
    case ENOSYS:
        return {};
    default:
        return writeError("fsync of folder", synced.error(), Retry::Once);
    }
}

WriteResult PackageAttempt::run()
{
    const auto parent = FileHandle::folderAt(m_fileSystem, m_package.folder);
    if (!parent)
        return writeError("open", parent.error(), Retry::Never, m_package.folder);
    const auto found = m_fileSystem.statusIn(parent->id(), m_package.name);
    if (!found && found.error() != ENOENT)
        return writeError("stat", found.error());
    if (found && found->kind == FileKind::Link)
        return writeError("stat", symbolicLink);
    if (found && found->kind != FileKind::Folder)
        return writeError("stat", ENOTDIR, Retry::Never);
    sweepTemporaryFolders(*parent, m_package.name, m_fileName);
    if (const auto written = found ? replaceIn(*parent) : create(*parent); !written)
        return written;
    // Of a package that was there too: an earlier try may have failed just here.
    if (const auto synced = syncFolder(*parent); !synced)
        return synced;
    return checkInPlace();
}

WriteResult PackageAttempt::create(const FileHandle &parent) const
{
    const QString temporary = newTemporaryName(m_package.name);
    if (const auto made = m_fileSystem.createFolder(parent.id(), temporary); !made) {
        const FileFault fault = fileFaultOf(made.error());
        const bool isAboutParent = fault == FileFault::NoPermission || fault == FileFault::ReadOnly
                                   || fault == FileFault::Missing;
        return writeError("mkdir", made.error(), isAboutParent ? m_package.folder : QString());
    }
    auto removal = qScopeGuard([&] { removeTemporaryFolder(parent, temporary, m_fileName); });
    if (const auto filled = fillNew(parent, temporary); !filled)
        return filled;
    if (const auto committed = commit(parent, temporary, m_package.name); !committed)
        return committed;
    removal.dismiss();
    return {};
}

/// Everything in it is closed again at the end: on some disks no folder can be renamed that holds
/// an opened file.
WriteResult PackageAttempt::fillNew(const FileHandle &parent, const QString &temporary) const
{
    const auto folder = FileHandle::folderIn(parent, temporary);
    if (!folder)
        return writeError("open", folder.error());
    if (const auto written = writeVerifiedFile(*folder, m_fileName, m_contents); !written)
        return written;
    return syncFolder(*folder);
}

WriteResult PackageAttempt::replaceIn(const FileHandle &parent) const
{
    const auto package = FileHandle::folderIn(parent, m_package.name);
    if (!package)
        return writeError("open", package.error());
    if (const auto checked = checkReplaced(*package); !checked)
        return checked;
    sweepTemporaryFiles(*package, m_fileName);
    const QString temporary = newTemporaryName(m_fileName);
    if (const auto written = writeVerifiedFile(*package, temporary, m_contents); !written)
        return written;
    if (const auto committed = commit(*package, temporary, m_fileName); !committed) {
        (void)m_fileSystem.removeFile(package->id(), temporary);
        return committed;
    }
    return syncFolder(*package);
}

/// From the rename on, the package is the new one.
WriteResult PackageAttempt::commit(const FileHandle &folder, const QString &temporary,
                                   const QString &name) const
{
    if (m_cancellation.stop_requested())
        return writeError("rename", ECANCELED, Retry::Never);
    if (const auto renamed = m_fileSystem.rename(folder.id(), temporary, name); !renamed)
        return writeError("rename", renamed.error());
    return {};
}

WriteResult PackageAttempt::checkReplaced(const FileHandle &package) const
{
    const auto old = m_fileSystem.statusIn(package.id(), m_fileName);
    if (!old && old.error() != ENOENT)
        return writeError("stat", old.error(), filePath());
    if (old && old->kind != FileKind::File)
        return writeError("stat", notRegularFile, filePath());
    return {};
}

/// The folder may have been moved away meanwhile, and the package with it.
WriteResult PackageAttempt::checkInPlace() const
{
    const auto found = FileHandle::folderAt(m_fileSystem, m_package.path)
                           .and_then([this](const FileHandle &package) {
                               return m_fileSystem.statusIn(package.id(), m_fileName);
                           });
    if (!found)
        return writeError("stat", found.error(), Retry::Never);
    return {};
}

} // namespace

PackageWriter::PackageWriter(FileSystem &fileSystem) : m_fileSystem(fileSystem) {}

Result<void> PackageWriter::write(const QString &packagePath, const QString &fileName,
                                  QByteArrayView contents,
                                  const std::stop_token &cancellation) const
{
    require(isPlainName(fileName), "A package's file has a plain name");
    const auto package = PackagePath::parse(packagePath);
    if (!package)
        return failure(package.error());
    int collisions = 0;
    int otherRetries = 0;
    for (;;) {
        const auto written =
            PackageAttempt(m_fileSystem, *package, fileName, contents, cancellation).run();
        if (written)
            return {};
        const Retry retry = written.error().retry;
        const bool mayRetry = (retry == Retry::Repeatedly && ++collisions <= mostCollisions)
                              || (retry == Retry::Once && ++otherRetries <= 1);
        if (!mayRetry)
            return failure(written.error().toError(package->path));
    }
}

} // namespace tembra
