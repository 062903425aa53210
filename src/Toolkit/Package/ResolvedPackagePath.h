#pragma once

#include "Toolkit/Package/PackageType.h"

#include <QCoreApplication>

class QDir;

namespace tembra {

/// The path that a name typed into a package dialog stands for, and what can be done with it.
struct ResolvedPackagePath
{
    Q_DECLARE_TR_FUNCTIONS(tembra::ResolvedPackagePath)

public:
    enum class Kind {
        Package, ///< `path` is chosen: a package to open, or the place of a new one.
        Replacement, ///< `path` is chosen to save at, but there is a package already.
        Folder, ///< `path` is an ordinary folder, to be shown.
        Refusal ///< Nothing can be done; `sentence` says why.
    };

    Kind kind = Kind::Refusal;
    QString path; ///< Absolute, without "." and "..".
    QString sentence;

    /// @p typed may be absolute, begin with "~", or be relative to @p folder; the suffix may be left
    /// out.
    static ResolvedPackagePath toOpen(const PackageType &type, const QDir &folder,
                                      const QString &typed);
    static ResolvedPackagePath toSave(const PackageType &type, const QDir &folder,
                                      const QString &typed);

    /// The file's name of @p path, short enough to stand in a sentence, in quotation marks.
    static QString quotedName(const QString &path);
};

} // namespace tembra
