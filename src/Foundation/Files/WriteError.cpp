#include "Foundation/Files/WriteError.h"

#include "Foundation/Files/FileFault.h"

#include <cerrno>

namespace tembra {

namespace {

WriteError::Retry retryFor(int systemError)
{
    switch (systemError) {
    case ENOENT:
    case EEXIST:
    case ENOTEMPTY:
    case EWOULDBLOCK:
        return WriteError::Retry::Repeatedly;
    default:
        break;
    }
    switch (fileFaultOf(systemError)) {
    case FileFault::DiskFull:
    case FileFault::QuotaReached:
    case FileFault::TooLarge:
    case FileFault::NoPermission:
    case FileFault::ReadOnly:
    case FileFault::NameTooLong:
    case FileFault::NotAFile:
    case FileFault::Link:
        return WriteError::Retry::Never;
    default:
        return WriteError::Retry::Once;
    }
}

} // namespace

Error WriteError::toError(const QString &target) const
{
    Error error = fileError(path.isEmpty() ? target : path, systemError);
    error.detail = QLatin1String(call) + QLatin1String(": ") + error.detail;
    return error;
}

tl::unexpected<WriteError> writeError(const char *call, int systemError, const QString &path)
{
    return writeError(call, systemError, retryFor(systemError), path);
}

tl::unexpected<WriteError> writeError(const char *call, int systemError, WriteError::Retry retry,
                                      const QString &path)
{
    return tl::unexpected<WriteError>(WriteError{call, systemError, retry, path});
}

} // namespace tembra
