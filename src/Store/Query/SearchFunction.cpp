#include "Store/Query/SearchFunction.h"

#include "Foundation/Text/TextFolding.h"

#include <sqlite3.h>

#include <memory>
#include <new>
#include <string_view>

namespace tembra {

namespace {

constexpr int needleArgument = 1;

std::string_view textOf(sqlite3_value *value)
{
    // The text first: asking for it may convert the value, which changes the number of bytes.
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return text ? std::string_view(text, size_t(sqlite3_value_bytes(value))) : std::string_view();
}

bool isNull(sqlite3_value *value)
{
    return sqlite3_value_type(value) == SQLITE_NULL;
}

bool contains(sqlite3_context *context, sqlite3_value *text, sqlite3_value *needle)
{
    // SQLite keeps this with the statement while the needle is the same constant or bound value.
    if (const void *folded = sqlite3_get_auxdata(context, needleArgument))
        return static_cast<const FoldedNeedle *>(folded)->isContainedIn(textOf(text));
    auto folded = std::make_unique<FoldedNeedle>(textOf(needle));
    const bool contained = folded->isContainedIn(textOf(text));
    // SQLite may destroy what it is given at once, so the needle is not used after this.
    sqlite3_set_auxdata(context, needleArgument, folded.release(),
                        [](void *data) { delete static_cast<FoldedNeedle *>(data); });
    return contained;
}

void textContains(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (isNull(arguments[0]) || isNull(arguments[needleArgument])) {
        sqlite3_result_int(context, 0);
        return;
    }
    try {
        sqlite3_result_int(context, contains(context, arguments[0], arguments[needleArgument]));
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    }
}

} // namespace

Result<void> registerSearchFunction(sqlite3 *connection)
{
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
    const int code = sqlite3_create_function_v2(connection, "text_contains", 2, flags, nullptr,
                                                textContains, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        return failure(QStringLiteral("Searching texts could not be prepared."),
                       QString::fromUtf8(sqlite3_errstr(code)));
    return {};
}

} // namespace tembra
