#include "Toolkit/Package/PackageIconProvider.h"

#include "Toolkit/Icons.h"

#include <QFileInfo>

namespace tembra {

PackageIconProvider::PackageIconProvider(const PackageType &type, QObject *parent)
    : QObject(parent)
    , m_type(type)
    , m_packageIcon(icons::package())
{
    // The folders' own icons lie in files in them, which takes a while with thousands of folders.
    setOptions(DontUseCustomDirectoryIcons);
}

QIcon PackageIconProvider::icon(const QFileInfo &file) const
{
    return m_type.isPackage(file) ? m_packageIcon : QFileIconProvider::icon(file);
}

QString PackageIconProvider::type(const QFileInfo &file) const
{
    return m_type.isPackage(file) ? m_type.name : QFileIconProvider::type(file);
}

} // namespace tembra
