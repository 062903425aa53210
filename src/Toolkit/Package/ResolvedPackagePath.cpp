#include "Toolkit/Package/ResolvedPackagePath.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int longestQuotedName = 290; // pixels
constexpr int longestFileName = 255; // bytes

QString absolutePath(const QDir &folder, const QString &typed)
{
    QString path = typed;
    if (path == "~"_L1 || path.startsWith("~/"_L1))
        path.replace(0, 1, QDir::homePath());
    return QDir::cleanPath(folder.absoluteFilePath(path));
}

ResolvedPackagePath refusal(const QString &sentence)
{
    return {.kind = ResolvedPackagePath::Kind::Refusal, .path = {}, .sentence = sentence};
}

ResolvedPackagePath choice(ResolvedPackagePath::Kind kind, const QString &path)
{
    return {.kind = kind, .path = path, .sentence = {}};
}

ResolvedPackagePath refusalInside(const QString &package)
{
    return refusal(
        ResolvedPackagePath::tr("%1 counts as one file. Nothing inside of it can be chosen.",
                                "%1 is the quoted name of a package")
            .arg(ResolvedPackagePath::quotedName(package)));
}

} // namespace

QString ResolvedPackagePath::quotedName(const QString &path)
{
    const QString name = QFontMetrics(QApplication::font())
                             .elidedText(QFileInfo(path).fileName(), Qt::ElideMiddle,
                                         longestQuotedName);
    // Isolated, so that a name in another direction leaves the sentence around it in order.
    return tr("“%1”", "A name in quotation marks").arg(u'\u2068' + name + u'\u2069');
}

ResolvedPackagePath ResolvedPackagePath::toOpen(const PackageType &type, const QDir &folder,
                                                const QString &typed)
{
    const QString path = absolutePath(folder, typed);
    const QFileInfo file(path);
    if (const QString around = type.packageAround(path); !around.isEmpty())
        return refusalInside(around);
    if (type.isPackage(file))
        return choice(Kind::Package, path);
    if (file.isDir())
        return choice(Kind::Folder, path);
    if (file.exists() && type.hasSuffix(path))
        return refusal(
            tr("%1 is named like the kind “%2”, but is a plain file and cannot be opened.",
               "%1 is the quoted name of a file, %2 the name of a kind of file")
                .arg(quotedName(path), type.name));
    if (file.exists())
        return refusal(tr("%1 is not of the kind “%2” and cannot be opened here.",
                          "%1 is the quoted name of a file, %2 the name of a kind of file")
                           .arg(quotedName(path), type.name));
    if (type.isPackage(QFileInfo(type.withSuffix(path))))
        return choice(Kind::Package, type.withSuffix(path));
    return refusal(
        tr("%1 was not found. Check the name and the folder.", "%1 is the quoted name of a file")
            .arg(quotedName(path)));
}

ResolvedPackagePath ResolvedPackagePath::toSave(const PackageType &type, const QDir &folder,
                                                const QString &typed)
{
    const QString path = absolutePath(folder, typed);
    if (const QString around = type.packageAround(path); !around.isEmpty())
        return refusalInside(around);
    if (QFileInfo(path).isDir() && !type.hasSuffix(path))
        return choice(Kind::Folder, path);
    const QFileInfo package(type.withSuffix(path));
    if (!QFileInfo(package.absolutePath()).isDir())
        return refusal(
            tr("There is no folder %1. Choose another one.", "%1 is the quoted name of a folder")
                .arg(quotedName(package.absolutePath())));
    if (QFile::encodeName(package.fileName()).size() > longestFileName)
        return refusal(tr("This name is too long. Choose a shorter one."));
    if (package.isDir())
        return choice(Kind::Replacement, package.absoluteFilePath());
    // A link that leads nowhere does not "exist".
    if (package.exists() || package.isSymLink())
        return refusal(tr("%1 is a plain file that would be in the way. Choose another name.",
                          "%1 is the quoted name of a file")
                           .arg(quotedName(package.filePath())));
    return choice(Kind::Package, package.absoluteFilePath());
}

} // namespace tembra
