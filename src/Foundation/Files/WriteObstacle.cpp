#include "Foundation/Files/WriteObstacle.h"

#include "Foundation/Files/FileFault.h"

#include <cerrno>

namespace tembra {

namespace {

WriteObstacle::Renewal renewalFor(int systemError)
{
    switch (systemError) {
    case ENOENT:
    case EEXIST:
    case ENOTEMPTY:
    case EWOULDBLOCK:
        return WriteObstacle::Renewal::Often;
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
        return WriteObstacle::Renewal::Pointless;
    default:
        return WriteObstacle::Renewal::Once;
    }
}

} // namespace

Error WriteObstacle::error(const QString &target) const
{
    Error error = fileError(path.isEmpty() ? target : path, systemError);
    error.detail = QLatin1String(call) + QLatin1String(": ") + error.detail;
    return error;
}

tl::unexpected<WriteObstacle> obstacle(const char *call, int systemError, const QString &path)
{
    return obstacle(call, systemError, renewalFor(systemError), path);
}

tl::unexpected<WriteObstacle> obstacle(const char *call, int systemError,
                                       WriteObstacle::Renewal renewal, const QString &path)
{
    return tl::unexpected<WriteObstacle>(WriteObstacle{call, systemError, renewal, path});
}

} // namespace tembra
