#include "Toolkit/Package/PackageType.h"

#include <QDir>
#include <QFileInfo>

namespace tembra {

bool PackageType::hasSuffix(const QString &fileName) const
{
    const QString ending = u'.' + suffix;
    return fileName.size() > ending.size() && fileName.endsWith(ending, Qt::CaseInsensitive);
}

QString PackageType::withSuffix(const QString &path) const
{
    return hasSuffix(QFileInfo(path).fileName()) ? path : QString(path + u'.' + suffix);
}

bool PackageType::isPackage(const QFileInfo &file) const
{
    return hasSuffix(file.fileName()) && file.isDir();
}

QString PackageType::packageAround(const QString &path) const
{
    QString outermost;
    for (QFileInfo folder(QFileInfo(path).absolutePath()); !folder.isRoot();
         folder.setFile(folder.absolutePath()))
        if (isPackage(folder))
            outermost = folder.absoluteFilePath();
    return outermost;
}

} // namespace tembra
