#pragma once

#include "Foundation/Result.h"

#include <QString>

#include <tl/expected.hpp>

namespace tembra {

/// Why an attempt to write a file failed, and whether to retry it.
struct WriteError
{
    enum class Retry {
        Never,
        Once, ///< From the beginning, with a new file.
        Repeatedly ///< Another writer interfered for a moment.
    };

    const char *call; ///< The system call, for whoever looks into it.
    int systemError; ///< A value of errno or FoundFault.
    Retry retry;
    QString path = {}; ///< The file or folder concerned; empty: what was to be written.

    /// The error for the user, of an attempt to write @p target.
    Error toError(const QString &target) const;
};

using WriteResult = tl::expected<void, WriteError>;

/// A failed result; how to retry follows from the error code unless it is given.
tl::unexpected<WriteError> writeError(const char *call, int systemError, const QString &path = {});
tl::unexpected<WriteError> writeError(const char *call, int systemError, WriteError::Retry retry,
                                      const QString &path = {});

} // namespace tembra
