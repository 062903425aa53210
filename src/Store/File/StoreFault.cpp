#include "Store/File/StoreFault.h"

#include <sqlite3.h>

namespace tembra {

namespace {

StoreFault faultOfSystemError(int systemError)
{
    switch (fileFaultOf(systemError)) {
    case FileFault::DiskFull:
    case FileFault::QuotaReached:
    case FileFault::TooLarge: // A limit on the size of files.
        return StoreFault::DiskFull;
    case FileFault::NoPermission:
    case FileFault::ReadOnly:
        return StoreFault::NoPermission;
    case FileFault::InputOutput:
        return StoreFault::InputOutput;
    default:
        return StoreFault::Other;
    }
}

QString sentenceFor(StoreFault fault, const QString &file)
{
    switch (fault) {
    case StoreFault::Busy:
        return sentenceFor(FileFault::Busy, file);
    case StoreFault::DiskFull:
        return sentenceFor(FileFault::DiskFull, file);
    case StoreFault::NoPermission:
        return sentenceFor(FileFault::NoPermission, file);
    case StoreFault::InputOutput:
        return sentenceFor(FileFault::InputOutput, file);
    case StoreFault::Damaged:
        return QStringLiteral("“%1” is damaged. Put an undamaged copy of it in its place.")
            .arg(file);
    case StoreFault::NotAJournal:
        return QStringLiteral("“%1” is not a journal of Tembra. Move it somewhere else, or put "
                              "your journal in "
                              "its place.")
            .arg(file);
    case StoreFault::None:
    case StoreFault::Constraint:
    case StoreFault::Other:
        break;
    }
    return sentenceFor(FileFault::Other, file);
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

StoreError storeError(StoreFault fault, const QString &file, const QString &detail)
{
    return {{sentenceFor(fault, file), detail}, fault};
}

} // namespace tembra
