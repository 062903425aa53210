#include "Foundation/Files/TemporaryFiles.h"

#include <QRandomGenerator>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype randomDigits = 16;
/// So that a name that is not too long has a temporary name that is not too long either.
constexpr qsizetype longestStem = 40;
constexpr QLatin1String ending(".tmp");

QString temporaryStart(const QString &name)
{
    QString stem = name.left(longestStem);
    if (stem.size() < name.size() && stem.back().isHighSurrogate())
        stem.chop(1);
    return u'.' + stem + u'.';
}

bool isHexDigit(QChar character)
{
    return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'f');
}

QStringList temporariesIn(const FileHandle &folder, const QString &name)
{
    QStringList found = folder.fileSystem().names(folder.id()).value_or(QStringList());
    found.removeIf([&](const QString &candidate) { return !isTemporaryName(candidate, name); });
    return found;
}

bool isAbandoned(const FileHandle &folder, const QString &fileName)
{
    const auto file = FileHandle::fileIn(folder, fileName, FileAccess::ReadAndWrite);
    return file && folder.fileSystem().lock(file->id());
}

void sweepFolder(const FileHandle &parent, const QString &temporary, const QString &folderName,
                 const QString &fileName)
{
    FileSystem &fileSystem = parent.fileSystem();
    const auto folder = FileHandle::folderIn(parent, temporary);
    if (!folder)
        return;
    const auto names = fileSystem.names(folder->id());
    if (names && names->isEmpty())
        (void)fileSystem.removeFolder(parent.id(), temporary);
    if (!names || *names != QStringList{fileName} || !isAbandoned(*folder, fileName))
        return;
    // Its writer may be about to give it its name. Whoever renames it first has it: it must not
    // come to its place and be emptied there.
    const QString doomed = newTemporaryName(folderName);
    if (fileSystem.rename(parent.id(), temporary, doomed))
        removeTemporaryFolder(parent, doomed, fileName);
}

} // namespace

QString newTemporaryName(const QString &name)
{
    const quint64 number = QRandomGenerator::system()->generate64();
    return temporaryStart(name) + QString::number(number, 16).rightJustified(randomDigits, u'0')
           + ending;
}

bool isTemporaryName(const QString &candidate, const QString &name)
{
    const QString start = temporaryStart(name);
    if (candidate.size() != start.size() + randomDigits + ending.size()
        || !candidate.startsWith(start) || !candidate.endsWith(ending))
        return false;
    const QStringView number = QStringView(candidate).sliced(start.size(), randomDigits);
    return std::all_of(number.begin(), number.end(), isHexDigit);
}

void removeTemporaryFolder(const FileHandle &parent, const QString &temporary,
                           const QString &fileName)
{
    FileSystem &fileSystem = parent.fileSystem();
    // By its name, never through a folder that was open before: it may long be in its place.
    if (const auto folder = FileHandle::folderIn(parent, temporary))
        (void)fileSystem.removeFile(folder->id(), fileName);
    (void)fileSystem.removeFolder(parent.id(), temporary);
}

void sweepTemporaryFiles(const FileHandle &folder, const QString &fileName)
{
    for (const QString &temporary : temporariesIn(folder, fileName)) {
        if (isAbandoned(folder, temporary))
            (void)folder.fileSystem().removeFile(folder.id(), temporary);
    }
}

void sweepTemporaryFolders(const FileHandle &parent, const QString &folderName,
                           const QString &fileName)
{
    for (const QString &temporary : temporariesIn(parent, folderName))
        sweepFolder(parent, temporary, folderName, fileName);
}

} // namespace tembra
