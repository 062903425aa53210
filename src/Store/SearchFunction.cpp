#include "Store/SearchFunction.h"

#include "Foundation/TextFolding.h"

#include <sqlite3.h>

#include <memory>
#include <new>
#include <string_view>

namespace tembra {

namespace {

std::string_view textOf(sqlite3_value *value)
{
    // In this order: the text first, since asking for it may convert the value.
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return text ? std::string_view(text, size_t(sqlite3_value_bytes(value))) : std::string_view();
}

/// The folded needle of the running statement: made at the first row, then kept with the statement
/// for as long as its argument stays the same.
const FoldedNeedle &needleOf(sqlite3_context *context, sqlite3_value *argument,
                             std::unique_ptr<FoldedNeedle> &own)
{
    constexpr int needleArgument = 1;
    if (const auto *kept = static_cast<FoldedNeedle *>(
            sqlite3_get_auxdata(context, needleArgument)))
        return *kept;
    own = std::make_unique<FoldedNeedle>(textOf(argument));
    const auto destroy = [](void *needle) { delete static_cast<FoldedNeedle *>(needle); };
    // SQLite may decline to keep it, and then destroys it at once: so it gets a copy.
    sqlite3_set_auxdata(context, needleArgument, new FoldedNeedle(*own), destroy);
    return *own;
}

void textContains(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL
        || sqlite3_value_type(arguments[1]) == SQLITE_NULL) {
        sqlite3_result_int(context, 0);
        return;
    }
    try {
        std::unique_ptr<FoldedNeedle> own;
        const FoldedNeedle &needle = needleOf(context, arguments[1], own);
        sqlite3_result_int(context, needle.isContainedIn(textOf(arguments[0])));
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    }
}

} // namespace

Result<void> SearchFunction::registerOn(sqlite3 *connection)
{
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
    const int code = sqlite3_create_function_v2(connection, name, 2, flags, nullptr, textContains,
                                                nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        return failure(QStringLiteral("Searching texts could not be prepared."),
                       QString::fromUtf8(sqlite3_errstr(code)));
    return {};
}

} // namespace tembra
