#include "support/FaultVfs.h"

#include "support/DiskRecorder.h"

#include <QStringBuilder>

#include <atomic>
#include <new>
#include <sqlite3.h>
#include <unistd.h>
#include <utility>

namespace tembra {

struct FaultVfs::Private
{
    /// SQLite's result for an operation: SQLITE_OK unless it is its turn to fail.
    int verdict(Operation operation);

    sqlite3_vfs vfs = {};
    std::atomic<DiskRecorder *> recorder = nullptr;
    sqlite3_vfs *usual = nullptr;
    QByteArray name;
    std::atomic<int> operations = AnyChange;
    std::atomic<int> failingNumber = 0; ///< 0: none.
    std::atomic<int> count = 0;
    std::atomic<int> failures = 0;
    std::atomic<Fault> fault = Fault::DiskFull;
    std::atomic<Lasting> lasting = Lasting::Once;
    std::function<void()> callback; ///< Called once, in place of a failure.
}; // namespace tembra

namespace {

using Private = FaultVfs::Private;
using Change = DiskRecorder::Operation::Kind;

/// Lies in the memory that SQLite gives for a file; the usual file lies right behind it.
struct FaultFile
{
    sqlite3_file base;
    Private *owner;
    const char *name; ///< SQLite keeps it as long as the file is open.

    sqlite3_file *usual() { return reinterpret_cast<sqlite3_file *>(this + 1); }
};

FaultFile *faultFile(sqlite3_file *file)
{
    return reinterpret_cast<FaultFile *>(file);
}

sqlite3_file *usualFile(sqlite3_file *file)
{
    return faultFile(file)->usual();
}

Private *privateOf(sqlite3_vfs *vfs)
{
    return static_cast<Private *>(vfs->pAppData);
}

int ioError(FaultVfs::Operation operation)
{
    switch (operation) {
    case FaultVfs::Write:
        return SQLITE_IOERR_WRITE;
    case FaultVfs::Sync:
        return SQLITE_IOERR_FSYNC;
    case FaultVfs::Truncate:
        return SQLITE_IOERR_TRUNCATE;
    case FaultVfs::Read:
        return SQLITE_IOERR_READ;
    default:
        return SQLITE_CANTOPEN;
    }
}

/// Notes a change that was made; returns SQLite's result for it.
int recorded(sqlite3_file *file, int code, DiskRecorder::Operation operation)
{
    DiskRecorder *recorder = faultFile(file)->owner->recorder;
    if (recorder && code == SQLITE_OK) {
        operation.file = faultFile(file)->name;
        recorder->add(std::move(operation));
    }
    return code;
}

int closeFile(sqlite3_file *file)
{
    return usualFile(file)->pMethods->xClose(usualFile(file));
}

int readFile(sqlite3_file *file, void *buffer, int size, sqlite3_int64 offset)
{
    if (const int verdict = faultFile(file)->owner->verdict(FaultVfs::Read))
        return verdict;
    return usualFile(file)->pMethods->xRead(usualFile(file), buffer, size, offset);
}

int writeFile(sqlite3_file *file, const void *buffer, int size, sqlite3_int64 offset)
{
    Private *owner = faultFile(file)->owner;
    const int verdict = owner->verdict(FaultVfs::Write);
    if (verdict == SQLITE_OK)
        return recorded(
            file, usualFile(file)->pMethods->xWrite(usualFile(file), buffer, size, offset),
            {Change::Write, {}, offset, QByteArray(static_cast<const char *>(buffer), size)});
    if (owner->lasting == FaultVfs::Lasting::Torn)
        usualFile(file)->pMethods->xWrite(usualFile(file), buffer, size / 2, offset);
    return verdict;
}

int truncateFile(sqlite3_file *file, sqlite3_int64 size)
{
    const int verdict = faultFile(file)->owner->verdict(FaultVfs::Truncate);
    return verdict ? verdict
                   : recorded(file, usualFile(file)->pMethods->xTruncate(usualFile(file), size),
                              {Change::Truncate, {}, size});
}

int syncFile(sqlite3_file *file, int flags)
{
    const int verdict = faultFile(file)->owner->verdict(FaultVfs::Sync);
    return verdict ? verdict
                   : recorded(file, usualFile(file)->pMethods->xSync(usualFile(file), flags),
                              {Change::Sync, {}});
}

int fileSize(sqlite3_file *file, sqlite3_int64 *size)
{
    return usualFile(file)->pMethods->xFileSize(usualFile(file), size);
}

int lockFile(sqlite3_file *file, int level)
{
    return usualFile(file)->pMethods->xLock(usualFile(file), level);
}

int unlockFile(sqlite3_file *file, int level)
{
    return usualFile(file)->pMethods->xUnlock(usualFile(file), level);
}

int checkReservedLock(sqlite3_file *file, int *result)
{
    return usualFile(file)->pMethods->xCheckReservedLock(usualFile(file), result);
}

int fileControl(sqlite3_file *file, int operation, void *argument)
{
    return usualFile(file)->pMethods->xFileControl(usualFile(file), operation, argument);
}

int sectorSize(sqlite3_file *file)
{
    return usualFile(file)->pMethods->xSectorSize(usualFile(file));
}

int deviceCharacteristics(sqlite3_file *file)
{
    return usualFile(file)->pMethods->xDeviceCharacteristics(usualFile(file));
}

int mapShared(sqlite3_file *file, int region, int size, int extend, void volatile **memory)
{
    return usualFile(file)->pMethods->xShmMap(usualFile(file), region, size, extend, memory);
}

int lockShared(sqlite3_file *file, int offset, int count, int flags)
{
    return usualFile(file)->pMethods->xShmLock(usualFile(file), offset, count, flags);
}

void shareBarrier(sqlite3_file *file)
{
    usualFile(file)->pMethods->xShmBarrier(usualFile(file));
}

int unmapShared(sqlite3_file *file, int remove)
{
    return usualFile(file)->pMethods->xShmUnmap(usualFile(file), remove);
}

const sqlite3_io_methods fileMethods = {
    2, // with shared memory, without memory-mapped files
    closeFile, readFile,   writeFile,         truncateFile, syncFile,   fileSize,
    lockFile,  unlockFile, checkReservedLock, fileControl,  sectorSize, deviceCharacteristics,
    mapShared, lockShared, shareBarrier,      unmapShared,  nullptr,    nullptr};

int openFile(sqlite3_vfs *vfs, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    Private *owner = privateOf(vfs);
    file->pMethods = nullptr;
    const int verdict = owner->verdict(FaultVfs::Open);
    if (verdict && owner->fault != FaultVfs::Fault::OpenedReadOnly)
        return verdict;
    if (verdict)
        flags = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY;
    auto *opened = new (file) FaultFile{{nullptr}, owner, name};
    const int code = owner->usual->xOpen(owner->usual, name, opened->usual(), flags, outFlags);
    opened->base.pMethods = opened->usual()->pMethods ? &fileMethods : nullptr;
    return code;
}

} // namespace

int FaultVfs::Private::verdict(Operation operation)
{
    if (!(operations & operation))
        return SQLITE_OK;
    const int number = ++count;
    const bool isTurn = failingNumber > 0
                        && (lasting == Lasting::ForGood ? number >= failingNumber
                                                        : number == failingNumber);
    if (!isTurn)
        return SQLITE_OK;
    if (callback) {
        std::exchange(callback, nullptr)();
        return SQLITE_OK;
    }
    ++failures;
    if (fault == Fault::ProcessEnds)
        ::_exit(0);
    return fault == Fault::DiskFull ? SQLITE_FULL : ioError(operation);
}

FaultVfs::FaultVfs() : d(std::make_unique<Private>())
{
    static std::atomic<int> number = 0;
    d->usual = sqlite3_vfs_find(nullptr);
    d->name = "fault-" + QByteArray::number(++number);
    d->vfs =
        *d->usual; // What is not overridden does without the file system itself, or passes names on.
    d->vfs.pNext = nullptr;
    d->vfs.zName = d->name.constData();
    d->vfs.pAppData = d.get();
    d->vfs.szOsFile = int(sizeof(FaultFile)) + d->usual->szOsFile;
    d->vfs.xOpen = openFile;
    sqlite3_vfs_register(&d->vfs, 0);
}

FaultVfs::~FaultVfs()
{
    sqlite3_vfs_unregister(&d->vfs);
}

QByteArray FaultVfs::name() const
{
    return d->name;
}

void FaultVfs::failAt(int number, Fault fault, Lasting lasting, int operations)
{
    failNothing(operations);
    d->fault = fault;
    d->lasting = lasting;
    d->failingNumber = number;
}

void FaultVfs::callAt(int number, std::function<void()> callback, int operations)
{
    failAt(number, Fault::InputOutput, Lasting::Once, operations);
    d->callback = std::move(callback);
}

void FaultVfs::failNothing(int operations)
{
    d->callback = nullptr;
    d->failingNumber = 0;
    d->operations = operations;
    d->count = 0;
    d->failures = 0;
}

void FaultVfs::record(DiskRecorder *recorder)
{
    d->recorder = recorder;
}

int FaultVfs::count() const
{
    return d->count;
}

int FaultVfs::failures() const
{
    return d->failures;
}

} // namespace tembra
