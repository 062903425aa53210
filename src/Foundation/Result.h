#pragma once

#include <QString>

#include <tl/expected.hpp>

namespace tembra {

/// Why something did not work, told twice: once for the user, once for whoever looks into it.
struct [[nodiscard]] Error
{
    QString message; ///< One sentence in the user's words: what went wrong, where, and what to do.
    QString
        detail; ///< The system's own reason ("disk I/O error (10)"); may be empty. Never note text.

    /// Both in one line, for the log and for "Unresolved error ".
    QString description() const
    {
        if (detail.isEmpty())
            return message;
        return QStringLiteral("%1 (%2)").arg(message, detail);
    }
};

/// A value or the reason why there is none. Errors are values here; no exception crosses a slot.
template<typename T>
using Result = tl::expected<T, Error>;

/// The failure side of a Result: `return failure(message, detail);`
inline tl::unexpected<Error> failure(QString message, QString detail = {})
{
    return tl::unexpected<Error>(Error{std::move(message), std::move(detail)});
}

inline tl::unexpected<Error> failure(Error error)
{
    return tl::unexpected<Error>(std::move(error));
}

} // namespace tembra
