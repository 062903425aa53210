#include "Foundation/Files/PackagePath.h"

#include <QCoreApplication>

namespace tembra {

using namespace Qt::StringLiterals;

Result<PackagePath> PackagePath::parse(const QString &path)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(u'/'))
        trimmed.chop(1);
    const qsizetype slash = trimmed.lastIndexOf(u'/');
    PackagePath package{trimmed, u"."_s, trimmed.mid(slash + 1)};
    if (slash >= 0)
        package.folder = slash == 0 ? u"/"_s : trimmed.left(slash);
    if (!isPlainName(package.name) || package.folder.contains(QChar::Null))
        return failure(
            QCoreApplication::translate("PackagePath",
                                        "“%1” is not a name for a file. Choose another name.",
                                        "%1 is a path that was typed")
                .arg(path));
    return package;
}

bool isPlainName(const QString &name)
{
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/')
           && !name.contains(QChar::Null);
}

} // namespace tembra
