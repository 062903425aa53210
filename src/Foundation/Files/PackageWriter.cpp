#include "Foundation/Files/PackageWriter.h"

#include "Foundation/Files/FileFault.h"
#include "Foundation/Files/FreshFile.h"
#include "Foundation/Files/OpenedFile.h"
#include "Foundation/Files/PackagePlace.h"
#include "Foundation/Files/Temporaries.h"
#include "Foundation/Files/WriteObstacle.h"
#include "Foundation/Precondition.h"

#include <QScopeGuard>

#include <cerrno>

namespace tembra {

namespace {

using Renewal = WriteObstacle::Renewal;

/// How often a writer gives way to others before it says so.
constexpr int mostTimesGivenWay = 20;

/// One try to write a package, from the beginning.
class PackageAttempt
{
public:
    PackageAttempt(FileSystem &fileSystem, const PackagePlace &place, const QString &fileName,
                   QByteArrayView contents)
        : m_fileSystem(fileSystem)
        , m_place(place)
        , m_fileName(fileName)
        , m_contents(contents)
    {
    }

    WriteStep run();

private:
    WriteStep create(const OpenedFile &parent) const;
    WriteStep fillNew(const OpenedFile &parent, const QString &temporary) const;
    WriteStep replaceIn(const OpenedFile &parent) const;
    WriteStep checkReplaced(const OpenedFile &package) const;
    WriteStep checkInPlace() const;
    QString filePath() const { return m_place.path + QLatin1Char('/') + m_fileName; }

    FileSystem &m_fileSystem;
    const PackagePlace &m_place;
    const QString &m_fileName;
    QByteArrayView m_contents;
};

WriteStep syncNames(const OpenedFile &folder)
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
        return obstacle("fsync of folder", synced.error(), Renewal::Once);
    }
}

WriteStep PackageAttempt::run()
{
    const auto parent = OpenedFile::folderAt(m_fileSystem, m_place.folder);
    if (!parent)
        return obstacle("open", parent.error(), Renewal::Pointless, m_place.folder);
    const auto found = m_fileSystem.statusIn(parent->id(), m_place.name);
    if (!found && found.error() != ENOENT)
        return obstacle("stat", found.error());
    if (found && found->kind == FileKind::Link)
        return obstacle("stat", symbolicLink);
    if (found && found->kind != FileKind::Folder)
        return obstacle("stat", ENOTDIR, Renewal::Pointless);
    sweepTemporaryFolders(*parent, m_place.name, m_fileName);
    if (const auto written = found ? replaceIn(*parent) : create(*parent); !written)
        return written;
    // Of a package that was there too: an earlier try may have failed just here.
    if (const auto synced = syncNames(*parent); !synced)
        return synced;
    return checkInPlace();
}

WriteStep PackageAttempt::create(const OpenedFile &parent) const
{
    const QString temporary = newTemporaryName(m_place.name);
    if (const auto made = m_fileSystem.createFolder(parent.id(), temporary); !made) {
        const FileFault fault = fileFaultOf(made.error());
        const bool isAboutParent = fault == FileFault::NoPermission || fault == FileFault::ReadOnly
                                   || fault == FileFault::Missing;
        return obstacle("mkdir", made.error(), isAboutParent ? m_place.folder : QString());
    }
    auto removal = qScopeGuard([&] { removeTemporaryFolder(parent, temporary, m_fileName); });
    if (const auto filled = fillNew(parent, temporary); !filled)
        return filled;
    if (const auto renamed = m_fileSystem.rename(parent.id(), temporary, m_place.name); !renamed)
        return obstacle("rename", renamed.error());
    removal.dismiss();
    return {};
}

/// Everything in it is closed again at the end: on some disks no folder can be renamed that holds
/// an opened file.
WriteStep PackageAttempt::fillNew(const OpenedFile &parent, const QString &temporary) const
{
    const auto folder = OpenedFile::folderIn(parent, temporary);
    if (!folder)
        return obstacle("open", folder.error());
    if (const auto written = writeFreshFile(*folder, m_fileName, m_contents); !written)
        return written;
    return syncNames(*folder);
}

WriteStep PackageAttempt::replaceIn(const OpenedFile &parent) const
{
    const auto package = OpenedFile::folderIn(parent, m_place.name);
    if (!package)
        return obstacle("open", package.error());
    if (const auto checked = checkReplaced(*package); !checked)
        return checked;
    sweepTemporaryFiles(*package, m_fileName);
    const QString temporary = newTemporaryName(m_fileName);
    if (const auto written = writeFreshFile(*package, temporary, m_contents); !written)
        return written;
    if (const auto renamed = m_fileSystem.rename(package->id(), temporary, m_fileName); !renamed) {
        (void)m_fileSystem.removeFile(package->id(), temporary);
        return obstacle("rename", renamed.error());
    }
    return syncNames(*package);
}

WriteStep PackageAttempt::checkReplaced(const OpenedFile &package) const
{
    const auto old = m_fileSystem.statusIn(package.id(), m_fileName);
    if (!old && old.error() != ENOENT)
        return obstacle("stat", old.error(), filePath());
    if (old && old->kind != FileKind::File)
        return obstacle("stat", notRegularFile, filePath());
    return {};
}

/// The folder may have been moved away meanwhile, and the package with it.
WriteStep PackageAttempt::checkInPlace() const
{
    const auto found = OpenedFile::folderAt(m_fileSystem, m_place.path)
                           .and_then([this](const OpenedFile &package) {
                               return m_fileSystem.statusIn(package.id(), m_fileName);
                           });
    if (!found)
        return obstacle("stat", found.error(), Renewal::Pointless);
    return {};
}

} // namespace

PackageWriter::PackageWriter(FileSystem &fileSystem) : m_fileSystem(fileSystem) {}

Result<void> PackageWriter::write(const QString &packagePath, const QString &fileName,
                                  QByteArrayView contents) const
{
    require(isPlainName(fileName), "A package's file has a plain name");
    const auto place = PackagePlace::of(packagePath);
    if (!place)
        return failure(place.error());
    bool isRenewed = false;
    int timesGivenWay = 0;
    for (;;) {
        const auto written = PackageAttempt(m_fileSystem, *place, fileName, contents).run();
        if (written)
            return {};
        const Renewal renewal = written.error().renewal;
        const bool givesWay = renewal == Renewal::Often && ++timesGivenWay <= mostTimesGivenWay;
        const bool beginsAnew = renewal == Renewal::Once && !isRenewed;
        if (!givesWay && !beginsAnew)
            return failure(written.error().error(place->path));
        isRenewed = isRenewed || beginsAnew;
    }
}

} // namespace tembra
