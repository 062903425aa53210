#pragma once

#include <sqlite3.h>

#include <string>
#include <variant>
#include <vector>

namespace tembra {

/// A hand-written query by the raw C API, prepared once: the floor under every query.
class RawQuery
{
public:
    using Argument = std::variant<sqlite3_int64, double, std::string>;

    RawQuery(sqlite3 *database, const std::string &sql, std::vector<Argument> arguments);
    ~RawQuery();
    RawQuery(const RawQuery &) = delete;
    RawQuery &operator=(const RawQuery &) = delete;

    /// The first column of every row.
    const std::vector<sqlite3_int64> &keys();

private:
    void bind(int index, const Argument &argument);

    sqlite3_stmt *m_statement = nullptr;
    std::vector<Argument> m_arguments;
    std::vector<sqlite3_int64> m_keys;
};

} // namespace tembra
