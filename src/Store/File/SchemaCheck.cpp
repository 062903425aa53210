#include "Store/File/SchemaCheck.h"

#include "Store/File/Connection.h"
#include "Store/File/SchemaMigrator.h"
#include "Store/File/Statement.h"
#include "Store/Schema/ObjectModel.h"

#include <QSet>

namespace tembra {

namespace {

// An administrator may have had statistics made.
constexpr char selectSchema[] = "SELECT type, name, tbl_name, sql FROM sqlite_schema "
                                "WHERE name NOT LIKE 'sqlite\\_stat%' ESCAPE '\\'";
constexpr char selectSharedPage[] = "SELECT 1 FROM sqlite_schema WHERE rootpage > 0 "
                                    "GROUP BY rootpage HAVING count(*) > 1";

/// Name and statement of everything that a schema has.
using SchemaEntries = QSet<QStringList>;

Result<SchemaEntries> readEntries(Connection &connection)
{
    const auto select = connection.prepare(selectSchema);
    if (!select)
        return failure(select.error());
    SchemaEntries entries;
    Result<bool> row = (*select)->step();
    for (; row && *row; row = (*select)->step()) {
        QStringList entry;
        for (int column = 0; column < 4; ++column) {
            const Value value = (*select)->value(column);
            const auto *text = std::get_if<QString>(&value);
            entry.append(text ? *text : QString());
        }
        entries.insert(entry);
    }
    if (!row)
        return failure(row.error());
    return entries;
}

Result<SchemaEntries> expectedEntries(const ObjectModel &model, int version)
{
    const auto connection = Connection::open({}, Connection::Mode::InMemory);
    if (!connection)
        return failure(connection.error());
    const ObjectModel known({}, model.migrations().first(version));
    return migrate(**connection, known, 0).and_then([&] { return readEntries(**connection); });
}

/// A name that only one of the two has, or has something else for.
QString firstDifference(const SchemaEntries &a, const SchemaEntries &b)
{
    const SchemaEntries differing = (a - b) + (b - a);
    return differing.isEmpty() ? QString() : differing.begin()->at(1);
}

} // namespace

StoreResult<void> checkSchema(Connection &connection, const ObjectModel &model, int version)
{
    const auto expected = expectedEntries(model, version);
    if (!expected)
        return failure(expected.error());
    const auto found = readEntries(connection);
    if (!found)
        return tl::unexpected(StoreError(found.error(), connection.lastFault()));
    if (const QString name = firstDifference(*expected, *found); !name.isEmpty())
        return tl::unexpected(storeError(StoreFault::NotAJournal, connection.file(),
                                         QStringLiteral("“%1” differs in the schema").arg(name)));
    const auto select = connection.prepare(selectSharedPage);
    const auto shared = select ? (*select)->step() : Result<bool>(failure(select.error()));
    if (!shared)
        return tl::unexpected(StoreError(shared.error(), connection.lastFault()));
    (*select)->reset();
    if (*shared)
        return tl::unexpected(storeError(StoreFault::Damaged, connection.file(),
                                         QStringLiteral("two tables begin at the same page")));
    return {};
}

} // namespace tembra
