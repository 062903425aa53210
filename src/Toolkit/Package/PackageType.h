#pragma once

#include <QString>

class QFileInfo;

namespace tembra {

/// A kind of package: a folder whose name ends in a certain suffix, and that people see as one file.
struct PackageType
{
    QString suffix; ///< Without the full stop. Case does not matter.
    QString name; ///< What people call such a package; in the singular, no article.

    /// Whether @p fileName ends in the suffix.
    bool hasSuffix(const QString &fileName) const;
    /// @p path, with the suffix added where it is missing.
    QString withSuffix(const QString &path) const;
    /// Whether there is a package of this type; links are followed.
    bool isPackage(const QFileInfo &file) const;
    /// The outermost package that @p path lies in, however deep; empty when it lies in none. What is
    /// a package itself does not lie in itself.
    QString packageAround(const QString &path) const;
};

} // namespace tembra
