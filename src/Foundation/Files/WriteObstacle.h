#pragma once

#include "Foundation/Result.h"

#include <QString>

#include <tl/expected.hpp>

namespace tembra {

/// What ended one try to write a file, and whether another one is worth the while.
struct WriteObstacle
{
    enum class Renewal {
        Pointless,
        Once, ///< From the beginning, with a fresh file.
        Often ///< Another writer was in the way for a moment.
    };

    const char *call; ///< The system call, for whoever looks into it.
    int systemError; ///< A value of errno or FoundFault.
    Renewal renewal;
    QString path = {}; ///< What it is about; empty: what was to be written.

    /// The user's sentence about it, for a try to write @p target.
    Error error(const QString &target) const;
};

using WriteStep = tl::expected<void, WriteObstacle>;

/// An obstacle whose renewal follows from the reason.
tl::unexpected<WriteObstacle> obstacle(const char *call, int systemError, const QString &path = {});
tl::unexpected<WriteObstacle> obstacle(const char *call, int systemError,
                                       WriteObstacle::Renewal renewal, const QString &path = {});

} // namespace tembra
