#include "Store/Query/SearchFunction.h"

#include "Foundation/Text/TextFolding.h"
#include "Store/Query/SearchedTexts.h"

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

/// A search as one run of a statement sees it: made at its first row, then kept with the statement
/// for as long as the needle stays the same.
const FoldedNeedle &needleOf(sqlite3_context *context, int argument, sqlite3_value *text,
                             std::unique_ptr<FoldedNeedle> &own)
{
    if (const auto *kept = static_cast<FoldedNeedle *>(sqlite3_get_auxdata(context, argument)))
        return *kept;
    own = std::make_unique<FoldedNeedle>(textOf(text));
    const auto destroy = [](void *needle) { delete static_cast<FoldedNeedle *>(needle); };
    // SQLite may decline to keep it, and then destroys it at once: so it gets a copy.
    sqlite3_set_auxdata(context, argument, new FoldedNeedle(*own), destroy);
    return *own;
}

bool isNull(sqlite3_value *value)
{
    return sqlite3_value_type(value) == SQLITE_NULL;
}

SearchedTexts *textsOf(sqlite3_context *context)
{
    return static_cast<SearchedTexts *>(sqlite3_user_data(context));
}

void textContains(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (isNull(arguments[0]) || isNull(arguments[1])) {
        sqlite3_result_int(context, 0);
        return;
    }
    try {
        std::unique_ptr<FoldedNeedle> own;
        const FoldedNeedle &needle = needleOf(context, 1, arguments[1], own);
        sqlite3_result_int(context, needle.isContainedIn(textOf(arguments[0])));
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    }
}

void textContainsRemembering(sqlite3_context *context, int count, sqlite3_value **arguments)
{
    SearchedTexts *texts = textsOf(context);
    if (!texts || isNull(arguments[0]) || isNull(arguments[1]) || isNull(arguments[3])) {
        textContains(context, count, arguments);
        return;
    }
    try {
        std::unique_ptr<FoldedNeedle> own;
        const FoldedNeedle &needle = needleOf(context, 1, arguments[1], own);
        const std::string_view folded = foldInBuffer(textOf(arguments[0]));
        sqlite3_result_int(context, needle.isContainedInFolded(folded));
        texts->remember(sqlite3_value_int(arguments[2]), sqlite3_value_int64(arguments[3]), folded);
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    }
}

void knownTextContains(sqlite3_context *context, int, sqlite3_value **arguments)
{
    SearchedTexts *texts = textsOf(context);
    if (!texts || isNull(arguments[1]) || isNull(arguments[2]))
        return;
    try {
        std::unique_ptr<FoldedNeedle> own;
        const FoldedNeedle &needle = needleOf(context, 2, arguments[2], own);
        if (own)
            texts->beginSearch();
        const auto folded = texts->find(sqlite3_value_int(arguments[0]),
                                        sqlite3_value_int64(arguments[1]));
        if (folded)
            sqlite3_result_int(context, needle.isContainedInFolded(*folded));
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    }
}

} // namespace

Result<void> SearchFunction::registerOn(sqlite3 *connection, SearchedTexts *texts)
{
    constexpr int flags = SQLITE_UTF8 | SQLITE_DIRECTONLY;
    const auto add = [&](const char *name, int arguments, int more, auto function) {
        return sqlite3_create_function_v2(connection, name, arguments, flags | more, texts,
                                          function, nullptr, nullptr, nullptr);
    };
    int code = add("text_contains", 2, SQLITE_DETERMINISTIC, textContains);
    if (code == SQLITE_OK)
        code = add("text_contains", 4, SQLITE_DETERMINISTIC, textContainsRemembering);
    // What is remembered changes while a statement runs.
    if (code == SQLITE_OK)
        code = add("known_text_contains", 3, 0, knownTextContains);
    if (code != SQLITE_OK)
        return failure(QStringLiteral("Searching texts could not be prepared."),
                       QString::fromUtf8(sqlite3_errstr(code)));
    if (texts)
        texts->follow(connection);
    return {};
}

QByteArray SearchFunction::testOfRecord(const QByteArray &text, int columnNumber,
                                        const QByteArray &record)
{
    const QByteArray number = QByteArray::number(columnNumber);
    return QByteArray("coalesce(known_text_contains(" + number + ", " + record
                      + ", ?), text_contains(" + text + ", ?, " + number + ", " + record + "))");
}

} // namespace tembra
