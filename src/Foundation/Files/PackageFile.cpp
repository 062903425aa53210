#include "Foundation/Files/PackageFile.h"

#include "Foundation/Files/FileFault.h"
#include "Foundation/Files/FileHandle.h"
#include "Foundation/Files/PackagePath.h"
#include "Foundation/Precondition.h"

#include <QCoreApplication>

#include <cerrno>
#include <new>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype growth = 64 * 1024;

Error readError(const QString &path, int systemError)
{
    return fileError(path, systemError, FileUse::Reading);
}

Error tooLarge(const QString &path, qint64 limit)
{
    constexpr double mebibyte = 1024.0 * 1024.0;
    return {QCoreApplication::translate("PackageFile",
                                        "“%1” is too large to be read. Choose another file.",
                                        "%1 is the path of a file")
                .arg(path),
            u"larger than %1 MiB"_s.arg(double(limit) / mebibyte)};
}

/// Nothing when the package has no such file.
Result<std::optional<FileHandle>> openPackageFile(const QString &packagePath,
                                                  const QString &fileName, const QString &path,
                                                  FileSystem &fileSystem)
{
    require(isPlainName(fileName), "A package's file has a plain name");
    // The rest of such a path would be left unread.
    if (packagePath.contains(QChar::Null))
        return failure(readError(packagePath, ENOENT));
    const auto package = FileHandle::folderAt(fileSystem, packagePath);
    if (!package)
        return failure(readError(packagePath, package.error()));
    auto file = FileHandle::fileIn(*package, fileName, FileAccess::Read);
    if (file)
        return std::optional(*std::move(file));
    if (file.error() == ENOENT)
        return std::nullopt;
    return failure(readError(path, file.error()));
}

/// Reads on where a file turns out to be longer than it said. Returns all that was read.
SystemResult<qint64> readToEnd(const FileHandle &file, QByteArray &contents, qint64 limit)
{
    auto count = file.readAt(0, contents.data(), contents.size());
    while (count && *count == contents.size() && *count <= limit) {
        QByteArray more(growth, Qt::Uninitialized);
        const auto read = file.readAt(*count, more.data(), more.size());
        if (!read)
            return read;
        if (*read == 0)
            return count;
        contents.append(more.constData(), qsizetype(*read));
        *count += *read;
    }
    return count;
}

Result<QByteArray> readOpened(const FileHandle &file, const QString &path, qint64 limit)
{
    FileSystem &fileSystem = file.fileSystem();
    const auto before = fileSystem.status(file.id());
    if (!before)
        return failure(readError(path, before.error()));
    if (before->size > limit)
        return failure(tooLarge(path, limit));
    QByteArray contents(qsizetype(before->size), Qt::Uninitialized);
    const auto count = readToEnd(file, contents, limit);
    if (!count)
        return failure(readError(path, count.error()));
    if (*count > limit)
        return failure(tooLarge(path, limit));
    const auto after = fileSystem.status(file.id());
    if (!after)
        return failure(readError(path, after.error()));
    // Some network folders give no size; then the end of the file is where it ended.
    const bool isWhole = *count == before->size || before->size == 0;
    if (*before != *after || !isWhole)
        return failure(readError(path, changedMeanwhile));
    return contents;
}

} // namespace

Result<std::optional<PackageFileInfo>> inspectPackageFile(const QString &packagePath,
                                                          const QString &fileName,
                                                          FileSystem &fileSystem)
{
    const QString path = packagePath + u'/' + fileName;
    const auto file = openPackageFile(packagePath, fileName, path, fileSystem);
    if (!file)
        return failure(file.error());
    if (!*file)
        return std::nullopt;
    const auto status = fileSystem.status((*file)->id());
    if (!status)
        return failure(readError(path, status.error()));
    return PackageFileInfo{status->size, status->modified};
}

Result<std::optional<QByteArray>> readPackageFile(const QString &packagePath,
                                                  const QString &fileName, FileSystem &fileSystem,
                                                  qint64 limit)
{
    const QString path = packagePath + u'/' + fileName;
    const auto file = openPackageFile(packagePath, fileName, path, fileSystem);
    if (!file)
        return failure(file.error());
    if (!*file)
        return std::nullopt;
    try {
        return readOpened(**file, path, limit).map([](QByteArray contents) {
            return std::optional(std::move(contents));
        });
    } catch (const std::bad_alloc &) {
        return failure(readError(path, ENOMEM));
    }
}

} // namespace tembra
