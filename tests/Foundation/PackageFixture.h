#pragma once

#include "support/FolderContents.h"

#include <QDir>
#include <QTemporaryDir>

namespace tembra {

/// A folder for one test, with a package's place in it.
struct PackageFolder
{
    explicit PackageFolder(const QString &pathTemplate = temporaryTemplate());

    QTemporaryDir root;
    QString name = QStringLiteral("Mine.tembrabackup");
    QString fileName = QStringLiteral("teammates.json");
    QString package = root.filePath(name);
    QString file = package + QLatin1Char('/') + fileName;

    /// Makes a package with that content and another file beside it.
    void putPackage(const QByteArray &content) const;
    /// Makes a folder with a file and a folder, for links to lead to. Returns its path.
    QString putOutside() const;

    /// Everything below the folder but temporary files and folders.
    QMap<QString, QByteArray> inPlace() const;
    QStringList temporaries() const;
};

/// Bytes that differ from place to place, and from one @p version to another in every piece.
QByteArray sampleContents(qsizetype size, quint32 version);

void makePipe(const QString &path);
/// Makes something at @p path that is no package or no file: a "file", "folder", "pipe", "socket",
/// "link to a file", "link to a folder" or "link to nothing". Links lead to what lies in @p outside.
void makeOddity(const QString &kind, const QString &path, const QString &outside);

} // namespace tembra
