#pragma once

#include "Foundation/Result.h"

#include <QString>
#include <QStringList>

namespace tembra {

/// Files of a store that were moved out of its place: together, under one dated name in the same
/// folder. Nothing is deleted.
class SetAside
{
public:
    /// The store with all its companions. When it fails all are where they were.
    static Result<SetAside> moveStore(const QString &file);
    /// Only its write-ahead log, with the log's index.
    static Result<SetAside> moveLog(const QString &file);

    void putBack() const;

    /// The first of the files, where it lies now.
    const QString &file() const { return m_files.front().now; }

private:
    struct MovedFile
    {
        QString before;
        QString now;
    };

    static Result<SetAside> move(const QString &file, const QStringList &suffixes);

    QList<MovedFile> m_files;
};

} // namespace tembra
