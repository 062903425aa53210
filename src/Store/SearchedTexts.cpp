#include "Store/SearchedTexts.h"

#include <sqlite3.h>

#include <memory>

namespace tembra {

namespace {

/// What the cache and the allocator take for a text, roughly.
constexpr int bytesBeside = 120;

void forgetRow(void *texts, int, const char *, const char *, sqlite3_int64 row)
{
    static_cast<SearchedTexts *>(texts)->forget(row);
}

void forgetAll(void *texts)
{
    static_cast<SearchedTexts *>(texts)->clear();
}

/// A number that changes with each commit of another connection.
std::int64_t changesOfOthers(sqlite3 *connection)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(connection, "PRAGMA data_version", -1, &statement, nullptr);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement,
                                                                           sqlite3_finalize);
    return sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0)
                                                 : SearchedTexts::unknown;
}

} // namespace

void SearchedTexts::follow(sqlite3 *connection)
{
    m_connection = connection;
    sqlite3_update_hook(connection, forgetRow, this);
    // Rows go back to what they were without being told one by one.
    sqlite3_rollback_hook(connection, forgetAll, this);
}

void SearchedTexts::noticeOtherConnections()
{
    const std::int64_t now = changesOfOthers(m_connection);
    if (now == unknown || now != m_otherChanges)
        clear();
    m_otherChanges = now;
}

const std::string *SearchedTexts::find(int column, std::int64_t record)
{
    const Text *known = m_texts.object(record);
    return known && known->column == column ? &known->folded : nullptr;
}

void SearchedTexts::remember(int column, std::int64_t record, std::string_view folded)
{
    if (folded.size() > size_t(capacity))
        return;
    const int cost = int(sizeof(Text)) + int(folded.size()) + bytesBeside;
    m_texts.insert(record, new Text{column, std::string(folded)}, cost);
}

} // namespace tembra
