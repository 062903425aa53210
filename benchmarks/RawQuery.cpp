#include "RawQuery.h"

#include "Foundation/Precondition.h"

namespace tembra {

RawQuery::RawQuery(sqlite3 *database, const std::string &sql, std::vector<Argument> arguments)
    : m_arguments(std::move(arguments))
{
    require(sqlite3_prepare_v2(database, sql.c_str(), -1, &m_statement, nullptr) == SQLITE_OK,
            sqlite3_errmsg(database));
}

RawQuery::~RawQuery()
{
    sqlite3_finalize(m_statement);
}

void RawQuery::bind(int index, const Argument &argument)
{
    if (const auto *number = std::get_if<sqlite3_int64>(&argument))
        sqlite3_bind_int64(m_statement, index, *number);
    else if (const auto *real = std::get_if<double>(&argument))
        sqlite3_bind_double(m_statement, index, *real);
    else if (const auto *text = std::get_if<std::string>(&argument))
        sqlite3_bind_text(m_statement, index, text->data(), int(text->size()), SQLITE_STATIC);
}

const std::vector<sqlite3_int64> &RawQuery::keys()
{
    for (size_t i = 0; i < m_arguments.size(); ++i)
        bind(int(i) + 1, m_arguments[i]);
    m_keys.clear();
    while (sqlite3_step(m_statement) == SQLITE_ROW)
        m_keys.push_back(sqlite3_column_int64(m_statement, 0));
    sqlite3_reset(m_statement);
    return m_keys;
}

} // namespace tembra
