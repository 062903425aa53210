#include "Backup/BackupWriter.h"

#include "Foundation/Files/FileHandle.h"
#include "Foundation/Files/PackageFile.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

const QString dateFormat = u"yyyy-MM-dd hh.mm.ss"_s;

/// Those that hold anything but a document are nobody's copies.
void removePackage(const FileHandle &folder, const QString &name)
{
    FileSystem &fileSystem = folder.fileSystem();
    {
        const auto package = FileHandle::folderIn(folder, name);
        if (!package
            || fileSystem.names(package->id()) != QStringList(BackupDocument::teammatesFilename))
            return;
        (void)fileSystem.removeFile(package->id(), BackupDocument::teammatesFilename);
    }
    (void)fileSystem.removeFolder(folder.id(), name);
}

} // namespace

BackupWriter::BackupWriter(QString packagePath, FileSystem &fileSystem)
    : m_packagePath(std::move(packagePath))
    , m_fileSystem(&fileSystem)
{
}

void BackupWriter::inspectReplaced()
{
    const auto document = BackupDocument::read(m_packagePath, *m_fileSystem);
    if (!document || !document->teammatesJsonData)
        return;
    if (const auto counts = inspectJournal(*document->teammatesJsonData))
        m_replaced = *counts;
}

Result<QString> BackupWriter::write(const BackupDocument &document,
                                    const std::stop_token &cancellation) const
{
    QString copy;
    if (shrinks(document)) {
        const Result<QString> made = copyReplaced();
        if (!made)
            return made;
        copy = *made;
    }
    if (Result<void> written = document.write(m_packagePath, *m_fileSystem, cancellation); !written)
        return failure(written.error());
    return copy;
}

bool BackupWriter::shrinks(const BackupDocument &document) const
{
    if (!m_replaced)
        return false;
    const auto counts = inspectJournal(document.teammatesJsonData.value_or(QByteArray()));
    return !counts || counts->teammates < m_replaced->teammates
           || counts->sessions < m_replaced->sessions;
}

Result<QString> BackupWriter::copyReplaced() const
{
    const auto file = inspectPackageFile(m_packagePath, BackupDocument::teammatesFilename,
                                         *m_fileSystem);
    const auto document = BackupDocument::read(m_packagePath, *m_fileSystem);
    if (!document)
        return failure(document.error());
    if (!file || !*file)
        return QString(); // It has gone meanwhile.
    const auto modified = QDateTime::fromMSecsSinceEpoch(
        qint64((*file)->modified.toUnixMilliseconds()));
    const QString name = nameWithoutSuffix() + u' ' + QLocale::c().toString(modified, dateFormat)
                         + u'.' + BackupDocument::tembrabackup;
    if (Result<void> copied = document->write(folder() + u'/' + name, *m_fileSystem); !copied)
        return failure(copied.error());
    removeSurplusCopies();
    return name;
}

/// The oldest go first. What cannot be removed stays.
void BackupWriter::removeSurplusCopies() const
{
    const auto opened = FileHandle::folderAt(*m_fileSystem, folder());
    QStringList copies = opened ? m_fileSystem->names(opened->id()).value_or(QStringList())
                                : QStringList();
    const QRegularExpression pattern(
        u"^%1 \\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d\\.%2$"_s.arg(
            QRegularExpression::escape(nameWithoutSuffix()), BackupDocument::tembrabackup));
    copies.removeIf([&](const QString &name) { return !pattern.match(name).hasMatch(); });
    std::ranges::sort(copies); // By their dates.
    const auto sizeOf = [this](const QString &name) {
        const auto file = inspectPackageFile(folder() + u'/' + name,
                                             BackupDocument::teammatesFilename, *m_fileSystem);
        return file && *file ? (*file)->size : 0;
    };
    const auto largest = std::ranges::max_element(copies, {}, sizeOf);
    const QString kept = largest == copies.end() ? QString() : *largest;
    for (qsizetype surplus = copies.size() - mostCopies; surplus > 0; --surplus)
        removePackage(*opened, copies.takeAt(copies.first() == kept ? 1 : 0));
}

QString BackupWriter::folder() const
{
    return QFileInfo(m_packagePath).path();
}

QString BackupWriter::nameWithoutSuffix() const
{
    return QFileInfo(m_packagePath).completeBaseName();
}

} // namespace tembra
