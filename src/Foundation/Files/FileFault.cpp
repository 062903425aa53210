#include "Foundation/Files/FileFault.h"

#include <QCoreApplication>

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

/// The user's sentences.
class FileFaultTexts
{
    Q_DECLARE_TR_FUNCTIONS(FileFault)

public:
    static QString of(FileFault fault, FileUse use)
    {
        const QString special = use == FileUse::Reading ? ofReading(fault) : ofWriting(fault);
        return special.isEmpty() ? ofEither(fault) : special;
    }

private:
    /// Empty where reading and writing have the same sentence.
    static QString ofReading(FileFault fault)
    {
        switch (fault) {
        case FileFault::NoPermission:
            return tr("You may not read “%1”. Give yourself the permission to and try again.",
                      "%1 is the path of a file or folder");
        case FileFault::InputOutput:
            return tr("The disk failed while “%1” was being read. Check the disk and try again.",
                      "%1 is the path of a file or folder");
        case FileFault::Missing:
            return tr("There is no “%1”. Choose another file, or connect the disk it lies on, and "
                      "try again.",
                      "%1 is the path of a file or folder");
        case FileFault::NotAFolder:
            return tr("“%1” is not a folder. Choose another one.",
                      "%1 is the path of a file or folder");
        case FileFault::NotAFile:
            return tr("“%1” is not a file. Choose another one.",
                      "%1 is the path of a file or folder");
        case FileFault::Link:
            return tr("“%1” is a link to another place. Choose what it leads to.",
                      "%1 is the path of a file or folder");
        case FileFault::Other:
            return tr("“%1” could not be read. Check the disk and the permissions of its folder.",
                      "%1 is the path of a file or folder");
        default:
            return {};
        }
    }

    static QString ofWriting(FileFault fault)
    {
        switch (fault) {
        case FileFault::DiskFull:
            return tr("The disk is full, so “%1” cannot be written. Free some space on the disk "
                      "and try again.",
                      "%1 is the path of a file or folder");
        case FileFault::QuotaReached:
            return tr("Your share of the disk is used up, so “%1” cannot be written. Delete files "
                      "there that you no longer need and try again.",
                      "%1 is the path of a file or folder");
        case FileFault::TooLarge:
            return tr(
                "“%1” is too large for its disk. Choose a folder on another disk and try again.",
                "%1 is the path of a file or folder");
        case FileFault::NoPermission:
            return tr(
                "You may not read or change “%1”. Give yourself the permission to and try again.",
                "%1 is the path of a file or folder");
        case FileFault::ReadOnly:
            return tr("The disk with “%1” can be read but not written. Choose a folder on another "
                      "disk and try again.",
                      "%1 is the path of a file or folder");
        case FileFault::InputOutput:
            return tr("The disk failed while “%1” was being read or written. Check the disk and "
                      "try again.",
                      "%1 is the path of a file or folder");
        case FileFault::Altered:
            return tr("The disk gave back something else than what was written to “%1”. Check the "
                      "disk, or choose a folder on another one.",
                      "%1 is the path of a file or folder");
        case FileFault::Missing:
            return tr("There is no “%1”. Choose another place, or connect the disk it lies on, and "
                      "try again.",
                      "%1 is the path of a file or folder");
        case FileFault::NotAFolder:
            return tr("“%1” is not a folder. Move it somewhere else, or choose another place.",
                      "%1 is the path of a file or folder");
        case FileFault::NotAFile:
            return tr("“%1” is not a file. Move it somewhere else.",
                      "%1 is the path of a file or folder");
        case FileFault::Link:
            return tr("“%1” is a link to another place. Remove the link, or choose another place.",
                      "%1 is the path of a file or folder");
        case FileFault::Cancelled:
            return tr("Writing “%1” was cancelled; nothing was changed.",
                      "%1 is the path of a file or folder");
        default:
            return {};
        }
    }

    static QString ofEither(FileFault fault)
    {
        switch (fault) {
        case FileFault::Disconnected:
            return tr(
                "The disk or network folder with “%1” is not connected. Connect it and try again.",
                "%1 is the path of a file or folder");
        case FileFault::Busy:
            return tr("“%1” is in use by another program. Close that program and try again.",
                      "%1 is the path of a file or folder");
        case FileFault::NameTooLong:
            return tr("The name “%1” is too long. Choose a shorter one.",
                      "%1 is the path of a file or folder");
        case FileFault::ChangedMeanwhile:
            return tr(
                "“%1” was changed while it was being read. Try again when nothing writes to it.",
                "%1 is the path of a file or folder");
        case FileFault::OutOfMemory:
            return tr("There is not enough memory for “%1”. Close other programs and try again.",
                      "%1 is the path of a file or folder");
        case FileFault::TooManyOpen:
            return tr("Too many files are open to use “%1”. Close other programs and try again.",
                      "%1 is the path of a file or folder");
        default:
            return tr("“%1” could not be read or changed. Check the disk and the permissions of "
                      "its folder.",
                      "%1 is the path of a file or folder");
        }
    }
};

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

QString sentenceFor(FileFault fault, const QString &path, FileUse use)
{
    return FileFaultTexts::of(fault, use).arg(path);
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

Error fileError(const QString &path, int systemError, FileUse use)
{
    return {sentenceFor(fileFaultOf(systemError), path, use), systemReason(systemError)};
}

} // namespace tembra
