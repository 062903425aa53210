#pragma once

#include "Foundation/Files/FileFault.h"

namespace tembra {

/// What kind of thing stood in the way, for callers that act on it.
enum class StoreFault {
    None,
    Busy, ///< Somebody else is writing: worth another try soon.
    DiskFull,
    NoPermission,
    InputOutput, ///< The disk or the network folder failed.
    Damaged, ///< The file is not, or no longer, a sound database.
    NotAJournal, ///< What lies in the store's place is of another program.
    Constraint, ///< The statement broke a rule of the schema; nothing else is wrong.
    Other
};

/// The kind of a SQLite result code, plain or extended; @p systemError is the errno behind it or 0.
StoreFault storeFaultOf(int sqliteCode, int systemError = 0);

/// An error of the store with its kind.
struct [[nodiscard]] StoreError
{
    StoreError(Error error, StoreFault kind = StoreFault::Other)
        : message(std::move(error.message))
        , detail(std::move(error.detail))
        , fault(kind)
    {
    }
    operator Error() const { return {message, detail}; }
    QString description() const { return Error(*this).description(); }

    QString message;
    QString detail;
    StoreFault fault;
};

template<typename T>
using StoreResult = tl::expected<T, StoreError>;

/// The user's sentence for a fault met while using @p file, with the system's own words as detail.
StoreError storeError(StoreFault fault, const QString &file, const QString &detail);

} // namespace tembra
