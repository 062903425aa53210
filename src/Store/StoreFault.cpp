#include "Store/StoreFault.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstring>

namespace tembra {

namespace {

StoreFault faultOfSystemError(int systemError)
{
    switch (systemError) {
    case ENOSPC:
    case EDQUOT:
        return StoreFault::DiskFull;
    case EACCES:
    case EPERM:
    case EROFS:
        return StoreFault::NoPermission;
    case EIO:
        return StoreFault::InputOutput;
    default:
        return StoreFault::Other;
    }
}

QString sentenceFor(StoreFault fault)
{
    switch (fault) {
    case StoreFault::Busy:
        return QStringLiteral(
            "“%1” is in use by another program. Close that program and try again.");
    case StoreFault::DiskFull:
        return QStringLiteral("The disk is full, so “%1” cannot be written. Free some space on the "
                              "disk and try again.");
    case StoreFault::NoPermission:
        return QStringLiteral(
            "You may not read or change “%1”. Give yourself the permission to and try again.");
    case StoreFault::InputOutput:
        return QStringLiteral(
            "The disk failed while “%1” was being read or written. Check the disk and try again.");
    case StoreFault::Damaged:
        return QStringLiteral("“%1” is damaged. Put an undamaged copy of it in its place.");
    case StoreFault::None:
    case StoreFault::Constraint:
    case StoreFault::Other:
        break;
    }
    return QStringLiteral(
        "“%1” could not be read or changed. Check the disk and the permissions of its folder.");
}

} // namespace

StoreFault storeFaultOf(int sqliteCode, int systemError)
{
    switch (sqliteCode & 0xff) {
    case SQLITE_OK:
        return StoreFault::None;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StoreFault::Busy;
    case SQLITE_FULL:
        return StoreFault::DiskFull;
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_AUTH:
        return StoreFault::NoPermission;
    case SQLITE_IOERR: {
        const StoreFault reason = faultOfSystemError(systemError);
        return reason == StoreFault::DiskFull ? reason : StoreFault::InputOutput;
    }
    case SQLITE_CANTOPEN:
        return faultOfSystemError(systemError);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return StoreFault::Damaged;
    case SQLITE_CONSTRAINT:
        return StoreFault::Constraint;
    default:
        return StoreFault::Other;
    }
}

Error storeError(StoreFault fault, const QString &file, const QString &detail)
{
    return {sentenceFor(fault).arg(file), detail};
}

Error fileError(const QString &file, int systemError)
{
    return storeError(faultOfSystemError(systemError), file,
                      QString::fromLocal8Bit(std::strerror(systemError)));
}

} // namespace tembra
