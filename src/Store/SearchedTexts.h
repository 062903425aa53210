#pragma once

#include <QCache>

#include <cstdint>
#include <string>
#include <string_view>

struct sqlite3;

namespace tembra {

/// Texts that were searched before, folded: the next key of a search then need not read and fold
/// them again. Follows a connection, so that it never knows a text that is not there any more.
///
/// Holds those used last, in a bounded amount of memory.
class SearchedTexts
{
public:
    /// Bytes, with what keeping a text takes beside it.
    static constexpr int capacity = 12 * 1024 * 1024;

    static constexpr std::int64_t unknown = -1;

    SearchedTexts() : m_texts(capacity) {}

    /// Forgets what @p connection changes from now on. This object has to outlive it.
    void follow(sqlite3 *connection);
    /// Forgets everything if another connection has changed something. To be called when a search
    /// begins.
    void noticeOtherConnections();

    /// Null when the text is not known. Valid until the next call.
    const std::string *find(int column, std::int64_t record);
    /// One column of a record is remembered at a time.
    void remember(int column, std::int64_t record, std::string_view folded);
    void forget(std::int64_t record) { m_texts.remove(record); }
    void clear() { m_texts.clear(); }

private:
    struct Text
    {
        int column;
        std::string folded;
    };

    QCache<std::int64_t, Text> m_texts;
    sqlite3 *m_connection = nullptr;
    /// The database is not read before it is searched: opening one looks at it with great care.
    std::int64_t m_otherChanges = unknown;
};

} // namespace tembra
