#include "Store/Query/SearchedTexts.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>

namespace tembra {

namespace {

/// What the table of the texts takes for each, roughly.
constexpr size_t bytesBeside = 64;
constexpr size_t chunkSize = 64 * 1024;

void forgetRow(void *texts, int, const char *, const char *, sqlite3_int64 row)
{
    static_cast<SearchedTexts *>(texts)->forget(row);
}

void forgetAll(void *texts)
{
    static_cast<SearchedTexts *>(texts)->clear();
}

} // namespace

/// A number that changes with each commit of another connection.
std::int64_t SearchedTexts::changesOfOthers(sqlite3 *connection)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(connection, "PRAGMA data_version", -1, &statement, nullptr);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement,
                                                                           sqlite3_finalize);
    return sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : unknown;
}

void SearchedTexts::follow(sqlite3 *connection)
{
    m_connection = connection;
    sqlite3_update_hook(connection, forgetRow, this);
    // Rows go back to what they were without being told one by one.
    sqlite3_rollback_hook(connection, forgetAll, this);
}

void SearchedTexts::beginSearch()
{
    const std::int64_t now = changesOfOthers(m_connection);
    const bool areOthers = m_isFull && m_missed > m_found;
    if (now == unknown || now != m_otherChanges || areOthers)
        clear();
    m_otherChanges = now;
    m_found = 0;
    m_missed = 0;
}

std::optional<std::string_view> SearchedTexts::find(int column, std::int64_t record)
{
    const auto known = m_texts.constFind(record);
    if (known == m_texts.cend() || known->column != column) {
        ++m_missed;
        return std::nullopt;
    }
    ++m_found;
    return known->folded;
}

void SearchedTexts::remember(int column, std::int64_t record, std::string_view folded)
{
    if (m_size + folded.size() + bytesBeside > capacity) {
        m_isFull = true;
        return;
    }
    m_size += folded.size() + bytesBeside;
    const bool fits = !m_chunks.empty()
                      && m_chunks.back().capacity() - m_chunks.back().size() >= folded.size();
    if (!fits)
        m_chunks.emplace_back().reserve(std::max(chunkSize, folded.size()));
    std::string &chunk = m_chunks.back();
    const size_t start = chunk.size();
    chunk += folded; // Never moves what is in there: there is room.
    m_texts.insert(record, {column, std::string_view(chunk).substr(start)});
}

void SearchedTexts::clear()
{
    const qsizetype count = m_texts.size();
    m_texts.clear();
    m_texts.reserve(count); // As many are likely to come next.
    m_chunks.clear();
    m_size = 0;
    m_isFull = false;
}

} // namespace tembra
