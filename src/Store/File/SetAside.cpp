#include "Store/File/SetAside.h"

#include "Store/File/PrivateFile.h"
#include "Store/File/StoreFault.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sys/stat.h>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

bool isThere(const QString &file)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(file).constData(), &status) == 0;
}

/// A name beside the store that no file has yet, whatever suffix it gets.
QString freeName(const QString &file, const QStringList &suffixes)
{
    const QFileInfo info(file);
    const QString date = QDateTime::currentDateTime().toString(u"yyyy-MM-dd-HHmmss"_s);
    const QString base = info.path() + u'/' + info.completeBaseName() + u"-set-aside-"_s + date;
    QString name;
    const auto isTaken = [&](const QString &suffix) { return isThere(name + suffix); };
    for (int number = 1; name.isEmpty() || std::any_of(suffixes.begin(), suffixes.end(), isTaken);
         ++number) {
        const QString counted = number == 1 ? base : base + u'-' + QString::number(number);
        name = counted + u'.' + info.suffix();
    }
    return name;
}

bool moveFile(const QString &from, const QString &to)
{
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

Result<SetAside> SetAside::moveStore(const QString &file)
{
    // The store last: its log without it could not be opened, while it can without its log.
    return move(file, {u"-wal"_s, u"-shm"_s, u"-journal"_s, QString()});
}

Result<SetAside> SetAside::moveLog(const QString &file)
{
    return move(file, {u"-shm"_s, u"-wal"_s});
}

Result<SetAside> SetAside::move(const QString &file, const QStringList &suffixes)
{
    const QString name = freeName(file, suffixes);
    SetAside moved;
    for (const QString &suffix : suffixes) {
        const QString path = file + suffix;
        if (!isThere(path))
            continue;
        if (!moveFile(path, name + suffix)) {
            const int reason = errno;
            moved.putBack();
            return failure(fileError(path, reason));
        }
        moved.m_files.prepend({path, name + suffix});
    }
    if (moved.m_files.isEmpty())
        return failure(fileError(file, ENOENT));
    if (auto synced = syncFolder(QFileInfo(file).path()); !synced) {
        moved.putBack();
        return failure(synced.error());
    }
    return moved;
}

void SetAside::putBack() const
{
    for (const MovedFile &moved : m_files)
        moveFile(moved.now, moved.before);
}

} // namespace tembra
