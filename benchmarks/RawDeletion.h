#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

namespace tembra {

/// Deletes a teammate with everything of theirs by the raw C API, in one transaction that reads the
/// rows and keeps them, and inserts them again: the floor under a deletion and its undo.
class RawDeletion
{
public:
    RawDeletion(sqlite3 *database, sqlite3_int64 counterpart);
    ~RawDeletion();
    RawDeletion(const RawDeletion &) = delete;
    RawDeletion &operator=(const RawDeletion &) = delete;

    void run();
    void undo();

private:
    struct FreeValue
    {
        void operator()(sqlite3_value *value) const { sqlite3_value_free(value); }
    };
    using Row = std::vector<std::unique_ptr<sqlite3_value, FreeValue>>;

    /// The rows of one table that belong to the teammate.
    struct Table
    {
        std::string name;
        std::string condition;
        std::vector<Row> rows;
    };

    void execute(const char *sql);
    void read(Table &table);
    void remove(const Table &table);
    void insert(const Table &table);

    sqlite3 *m_database;
    sqlite3_int64 m_counterpart;
    std::vector<Table> m_tables; ///< In an order in which rows may be deleted.
};

} // namespace tembra
