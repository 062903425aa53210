#pragma once

#include "Toolkit/Package/PackageType.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace tembra {

/// A folder of its own with packages, other folders and files in it, for one test.
class PackageFolder
{
public:
    QString path() const { return QDir(m_folder.path()).canonicalPath(); }
    QString path(const QString &name) const { return path() + u'/' + name; }

    void addFolder(const QString &name) const { QDir(path()).mkpath(name); }

    void addFile(const QString &name) const
    {
        QFile file(path(name));
        if (!file.open(QFile::WriteOnly) || file.write("{}") != 2)
            qFatal("The test's file cannot be written");
    }

    /// A folder with a file and a folder in it.
    void addPackage(const QString &name) const
    {
        addFolder(name + QStringLiteral("/inner"));
        addFile(name + QStringLiteral("/content.json"));
    }

    PackageType type{.suffix = QStringLiteral("box"), .name = QStringLiteral("Cardboard box")};

private:
    QTemporaryDir m_folder;
};

} // namespace tembra
