#pragma once

#include "Foundation/Result.h"
#include "Store/File/Connection.h"
#include "Store/File/Statement.h"

#include <QByteArray>

#include <span>

namespace tembra {

/// Lists of keys for `IN (...)`, in a few fixed lengths so that their statements are prepared once
/// and used again. A list that is not full is filled up with 0, which is never a key.
namespace KeyChunks {

constexpr size_t longest = 256;

/// How many place holders a statement for the next of @p remaining keys has.
size_t lengthFor(size_t remaining);
/// "(?,?,?)" with @p length place holders.
QByteArray placeholders(size_t length);
/// Binds @p keys from place holder @p first on, and 0 to the rest of @p length.
void bind(Statement &statement, std::span<const qint64> keys, size_t length, int first = 1);

/// Calls @p use(statement) with a statement `before (?,..) after` for each chunk of @p keys.
template<typename Use>
Result<void> forEach(Connection &connection, const QByteArray &before, std::span<const qint64> keys,
                     const QByteArray &after, const Use &use)
{
    while (!keys.empty()) {
        const size_t length = lengthFor(keys.size());
        const size_t used = std::min(length, keys.size());
        Result<Statement *> statement = connection.prepare(before + placeholders(length) + after);
        if (!statement)
            return failure(std::move(statement).error());
        bind(**statement, keys.first(used), length);
        if (Result<void> done = use(**statement); !done)
            return done;
        keys = keys.subspan(used);
    }
    return {};
}

} // namespace KeyChunks

} // namespace tembra
