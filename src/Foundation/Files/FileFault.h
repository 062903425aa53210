#pragma once

#include "Foundation/Result.h"

namespace tembra {

/// What kind of thing stood in the way of a file or folder.
enum class FileFault {
    DiskFull,
    QuotaReached,
    TooLarge, ///< Larger than the disk can hold in one file.
    NoPermission,
    ReadOnly, ///< The whole disk, whoever asks.
    InputOutput, ///< The disk or the network folder failed.
    Altered, ///< The disk gives back something else than what it was given.
    Busy, ///< Somebody else uses it.
    Missing,
    NotAFolder,
    NotAFile,
    Link,
    NameTooLong,
    Disconnected,
    ChangedMeanwhile, ///< While it was being read.
    OutOfMemory,
    TooManyOpen,
    Cancelled,
    Other
};

/// Beside the values of errno: what no system call says, but what they find.
enum FoundFault : int {
    notRegularFile = -1, ///< A folder, link, pipe or device where a file is meant.
    symbolicLink = -2, ///< A link where none is followed.
    alteredContents = -3,
    changedMeanwhile = -4,
};

/// The kind of a value of errno or FoundFault.
FileFault fileFaultOf(int systemError);

/// What was being done, which decides what the user can do about a fault.
enum class FileUse { Reading, Writing };

/// The user's sentence for a fault met with the file or folder @p path.
QString sentenceFor(FileFault fault, const QString &path, FileUse use = FileUse::Writing);

/// The system's own words for a value of errno or FoundFault. May be called in any thread.
QString systemReason(int systemError);

/// The sentence for a call that failed with @p systemError, with the system's reason as detail.
Error fileError(const QString &path, int systemError, FileUse use = FileUse::Writing);

} // namespace tembra
