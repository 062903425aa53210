#include "Foundation/Files/FileFault.h"

#include <cerrno>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

FileFault faultOfErrno(int systemError)
{
    switch (systemError) {
    case ENOSPC:
        return FileFault::DiskFull;
    case EDQUOT:
        return FileFault::QuotaReached;
    case EFBIG:
        return FileFault::TooLarge;
    case EACCES:
    case EPERM:
        return FileFault::NoPermission;
    case EROFS:
        return FileFault::ReadOnly;
    case EIO:
        return FileFault::InputOutput;
    case EBUSY:
    case ETXTBSY:
        return FileFault::Busy;
    case ENOENT:
        return FileFault::Missing;
    case ENOTDIR:
        return FileFault::NotAFolder;
    case EISDIR:
        return FileFault::NotAFile;
    case ENAMETOOLONG:
        return FileFault::NameTooLong;
    case ENODEV:
    case ENXIO:
    case ENOTCONN:
    case ESTALE:
    case ETIMEDOUT:
    case EHOSTUNREACH:
        return FileFault::Disconnected;
    case ENOMEM:
        return FileFault::OutOfMemory;
    case EMFILE:
    case ENFILE:
        return FileFault::TooManyOpen;
    case ECANCELED:
        return FileFault::Cancelled;
    default:
        return FileFault::Other;
    }
}

/// Space, permission and the disk itself.
QString sentenceForDisk(FileFault fault)
{
    switch (fault) {
    case FileFault::DiskFull:
        return u"The disk is full, so “%1” cannot be written. Free some space on the disk and try again."_s;
    case FileFault::QuotaReached:
        return u"Your share of the disk is used up, so “%1” cannot be written. Delete files there that you no longer need and try again."_s;
    case FileFault::TooLarge:
        return u"“%1” is too large for its disk. Choose a folder on another disk and try again."_s;
    case FileFault::NoPermission:
        return u"You may not read or change “%1”. Give yourself the permission to and try again."_s;
    case FileFault::ReadOnly:
        return u"The disk with “%1” can be read but not written. Choose a folder on another disk and try again."_s;
    case FileFault::InputOutput:
        return u"The disk failed while “%1” was being read or written. Check the disk and try again."_s;
    case FileFault::Altered:
        return u"The disk gave back something else than what was written to “%1”. Check the disk, or choose a folder on another one."_s;
    case FileFault::Disconnected:
        return u"The disk or network folder with “%1” is not connected. Connect it and try again."_s;
    default:
        return u"“%1” could not be read or changed. Check the disk and the permissions of its folder."_s;
    }
}

} // namespace

FileFault fileFaultOf(int systemError)
{
    switch (systemError) {
    case notRegularFile:
        return FileFault::NotAFile;
    case symbolicLink:
        return FileFault::Link;
    case alteredContents:
        return FileFault::Altered;
    case changedMeanwhile:
        return FileFault::ChangedMeanwhile;
    default:
        return faultOfErrno(systemError);
    }
}

QString sentenceFor(FileFault fault, const QString &path)
{
    const auto sentence = [fault] {
        switch (fault) {
        case FileFault::Busy:
            return u"“%1” is in use by another program. Close that program and try again."_s;
        case FileFault::Missing:
            return u"There is no “%1”. Choose another place, or connect the disk it lies on, and try again."_s;
        case FileFault::NotAFolder:
            return u"“%1” is not a folder. Move it somewhere else, or choose another place."_s;
        case FileFault::NotAFile:
            return u"“%1” is not a file. Move it somewhere else."_s;
        case FileFault::Link:
            return u"“%1” is a link to another place. Remove the link, or choose another place."_s;
        case FileFault::NameTooLong:
            return u"The name “%1” is too long. Choose a shorter one."_s;
        case FileFault::ChangedMeanwhile:
            return u"“%1” was changed while it was being read. Try again when nothing writes to it."_s;
        case FileFault::OutOfMemory:
            return u"There is not enough memory for “%1”. Close other programs and try again."_s;
        case FileFault::TooManyOpen:
            return u"Too many files are open to use “%1”. Close other programs and try again."_s;
        case FileFault::Cancelled:
            return u"Writing “%1” was cancelled; nothing was changed."_s;
        default:
            return sentenceForDisk(fault);
        }
    };
    return sentence().arg(path);
}

QString systemReason(int systemError)
{
    switch (systemError) {
    case notRegularFile:
        return u"not a regular file"_s;
    case symbolicLink:
        return u"a symbolic link"_s;
    case alteredContents:
        return u"what was read back differs"_s;
    case changedMeanwhile:
        return u"size or time of change differ"_s;
    default:
        // Unlike strerror() it may be called in any thread.
        return qt_error_string(systemError);
    }
}

Error fileError(const QString &path, int systemError)
{
    return {sentenceFor(fileFaultOf(systemError), path), systemReason(systemError)};
}

} // namespace tembra
