#include "Foundation/Precondition.h"

#include "Foundation/Logging.h"

#include <cstdlib>

namespace tembra {

void require(bool condition, const char *reason)
{
    if (!condition)
        fatal(reason);
}

void fatal(const char *reason)
{
    qCCritical(applicationLog, "Precondition failed: %s", reason);
    std::abort();
}

} // namespace tembra
