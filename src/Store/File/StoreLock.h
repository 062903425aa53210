#pragma once

#include "Foundation/Result.h"

#include <QString>

namespace tembra {

/// Keeps every other process out of a store while it lives.
///
/// A lock of the operating system on a file, which ends with the process however that ends: nothing
/// is left to clear up by hand, and process numbers play no part. The file itself says nothing; it
/// is taken away again by the process that made it.
class StoreLock
{
public:
    /// Fails when another process (or another container of this one) has the lock.
    static Result<StoreLock> acquire(const QString &file);
    StoreLock(StoreLock &&other) noexcept;
    StoreLock &operator=(StoreLock &&) = delete;
    ~StoreLock();

private:
    StoreLock(QString file, int handle, bool isMade);

    QString m_file;
    int m_handle;
    bool m_isMade;
};

} // namespace tembra
