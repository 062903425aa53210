#pragma once

#include "Toolkit/Package/PackageType.h"

#include <QCoreApplication>

class QDir;

namespace tembra {

/// What becomes of a name or path that was typed into a package dialog.
struct PackageChoice
{
    Q_DECLARE_TR_FUNCTIONS(tembra::PackageChoice)

public:
    enum class Kind {
        Package, ///< `path` is chosen: a package to open, or the place of a new one.
        Replacement, ///< `path` is chosen to save at, but there is a package already.
        Folder, ///< `path` is an ordinary folder, to be shown.
        Refusal ///< `sentence` says of what and why.
    };

    Kind kind = Kind::Refusal;
    QString path; ///< Absolute, without "." and "..".
    QString sentence;

    /// @p typed may be absolute, begin with "~", or be relative to @p folder; the suffix may be left
    /// out.
    static PackageChoice toOpen(const PackageType &type, const QDir &folder, const QString &typed);
    static PackageChoice toSave(const PackageType &type, const QDir &folder, const QString &typed);

    /// The file's name of @p path, short enough to stand in a sentence, in quotation marks.
    static QString quotedName(const QString &path);
};

} // namespace tembra
