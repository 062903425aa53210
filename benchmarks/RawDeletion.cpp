#include "RawDeletion.h"

#include "Foundation/Precondition.h"

namespace tembra {

namespace {

using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

Statement prepare(sqlite3 *database, const std::string &sql)
{
    sqlite3_stmt *statement = nullptr;
    require(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK,
            sqlite3_errmsg(database));
    return {statement, sqlite3_finalize};
}

const std::string sessionsOf = "(SELECT id FROM session WHERE counterpart = ?)";

} // namespace

RawDeletion::RawDeletion(sqlite3 *database, sqlite3_int64 counterpart)
    : m_database(database)
    , m_counterpart(counterpart)
{
    m_tables.push_back({"note", "session IN " + sessionsOf, {}});
    m_tables.push_back({"session_tag", "session IN " + sessionsOf, {}});
    m_tables.push_back({"session", "counterpart = ?", {}});
    m_tables.push_back({"counterpart", "id = ?", {}});
}

RawDeletion::~RawDeletion() = default;

void RawDeletion::run()
{
    execute("BEGIN IMMEDIATE");
    for (Table &table : m_tables)
        read(table);
    for (const Table &table : m_tables)
        remove(table);
    execute("COMMIT");
}

void RawDeletion::undo()
{
    execute("BEGIN IMMEDIATE");
    for (auto table = m_tables.rbegin(); table != m_tables.rend(); ++table)
        insert(*table);
    execute("COMMIT");
}

void RawDeletion::execute(const char *sql)
{
    require(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK,
            sqlite3_errmsg(m_database));
}

void RawDeletion::read(Table &table)
{
    const Statement select = prepare(m_database,
                                     "SELECT * FROM " + table.name + " WHERE " + table.condition);
    sqlite3_bind_int64(select.get(), 1, m_counterpart);
    while (sqlite3_step(select.get()) == SQLITE_ROW) {
        Row row;
        for (int column = 0; column < sqlite3_column_count(select.get()); ++column)
            row.emplace_back(sqlite3_value_dup(sqlite3_column_value(select.get(), column)));
        table.rows.push_back(std::move(row));
    }
    require(!table.rows.empty(), "the teammate has something in every table");
}

void RawDeletion::remove(const Table &table)
{
    const Statement statement = prepare(m_database,
                                        "DELETE FROM " + table.name + " WHERE " + table.condition);
    sqlite3_bind_int64(statement.get(), 1, m_counterpart);
    require(sqlite3_step(statement.get()) == SQLITE_DONE, sqlite3_errmsg(m_database));
}

void RawDeletion::insert(const Table &table)
{
    std::string places = "?";
    for (size_t column = 1; column < table.rows.front().size(); ++column)
        places += ",?";
    const Statement statement = prepare(m_database,
                                        "INSERT INTO " + table.name + " VALUES (" + places + ")");
    for (const Row &row : table.rows) {
        for (size_t column = 0; column < row.size(); ++column)
            sqlite3_bind_value(statement.get(), int(column) + 1, row[column].get());
        require(sqlite3_step(statement.get()) == SQLITE_DONE, sqlite3_errmsg(m_database));
        sqlite3_reset(statement.get());
    }
}

} // namespace tembra
