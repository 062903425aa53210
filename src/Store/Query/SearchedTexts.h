#pragma once

#include <QHash>

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;

namespace tembra {

/// Texts that were searched before, folded: the next key of a search then need not read and fold
/// them again. Follows a connection, so that it never knows a text that is not there any more.
///
/// Its memory is bounded. Once that is full nothing more is remembered, until a search is for other
/// texts altogether: a journal too large for it would otherwise drive out what is needed next.
class SearchedTexts
{
public:
    /// Bytes, with what keeping a text takes beside it.
    static constexpr size_t capacity = 12 * 1024 * 1024;

    /// Forgets what @p connection changes from now on. This object has to outlive it.
    void follow(sqlite3 *connection);
    /// A search begins: makes sure that what is remembered is true, and worth its memory.
    void beginSearch();

    /// Nothing when the text is not known.
    std::optional<std::string_view> find(int column, std::int64_t record);
    /// One column of a record is remembered at a time.
    void remember(int column, std::int64_t record, std::string_view folded);
    void forget(std::int64_t record) { m_texts.remove(record); }
    void clear();

private:
    static constexpr std::int64_t unknown = -1;

    struct Text
    {
        int column;
        std::string_view folded; ///< In one of m_chunks.
    };

    static std::int64_t changesOfOthers(sqlite3 *connection);

    QHash<std::int64_t, Text> m_texts;
    std::deque<std::string> m_chunks;
    size_t m_size = 0;
    bool m_isFull = false;
    int m_found = 0; ///< By the search that began last.
    int m_missed = 0;
    sqlite3 *m_connection = nullptr;
    /// The database is not read before it is searched: opening one looks at it with great care.
    std::int64_t m_otherChanges = unknown;
};

} // namespace tembra
