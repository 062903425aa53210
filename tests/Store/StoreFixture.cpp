#include "StoreFixture.h"

#include <QDir>

#include <unistd.h>

namespace tembra {

namespace {

QList<SchemaMigration> itemMigrations()
{
    return {
        {1, {"CREATE TABLE item (id INTEGER PRIMARY KEY, title TEXT)"}},
        {2,
         {"ALTER TABLE item ADD COLUMN rating INTEGER", "UPDATE item SET rating = length(title)"}},
        {3,
         {"CREATE TABLE part (id INTEGER PRIMARY KEY, item INTEGER REFERENCES item(id) ON DELETE "
          "CASCADE)",
          "INSERT INTO part SELECT id + 1000, id FROM item",
          "CREATE TABLE item_new (id INTEGER PRIMARY KEY, title TEXT, rating INTEGER)",
          "INSERT INTO item_new SELECT id, title, rating FROM item", "DROP TABLE item",
          "ALTER TABLE item_new RENAME TO item"}},
    };
}

} // namespace

ObjectModel itemModel(int version)
{
    EntityDescription item;
    item.name = "Item";
    item.table = "item";
    item.attributes.append({"title", AttributeType::Text});
    if (version >= 2)
        item.attributes.append({"rating", AttributeType::Integer16});
    return {{item}, itemMigrations().first(version)};
}

void StoreFolder::put(const QByteArray &content) const
{
    QDir().mkpath(directory);
    writeFile(file(), content);
}

StoreResult<OpenStore> openIn(const StoreFolder &folder, int version)
{
    return openStore({folder.directory, QStringLiteral("Vum")}, itemModel(version), {});
}

void close(StoreResult<OpenStore> &store)
{
    store = tl::unexpected(StoreError({QStringLiteral("closed"), {}}));
}

void makeStore(const StoreFolder &folder, int items)
{
    const auto store = openIn(folder);
    for (int key = 1; store && key <= items; ++key) {
        if (!addItem(*store->connection, key, QString(900, QLatin1Char('x')),
                     Transaction::Durability::Draft))
            qFatal("no item");
    }
}

void makeKilledStore(const StoreFolder &folder, const QByteArray &lastStatements)
{
    makeStore(folder);
    const int status = runAndDie([&] {
        const auto store = openIn(folder);
        const bool done = store && addItem(*store->connection, 1000, QStringLiteral("in the log"))
                          && store->connection->execute(lastStatements);
        ::_exit(done ? 0 : 1);
        return done;
    });
    if (status != 0)
        qFatal("the process to kill failed");
}

void patch(const StoreFolder &folder, int offset, const QByteArray &bytes)
{
    QByteArray content = readFile(folder.file());
    content.replace(offset, bytes.size(), bytes);
    writeFile(folder.file(), content);
}

Value queryValue(Connection &connection, const QByteArray &sql)
{
    const auto statement = connection.prepare(sql);
    if (!statement)
        return {};
    const auto row = (*statement)->step();
    const Value value = row && *row ? (*statement)->value(0) : Value();
    (*statement)->reset();
    return value;
}

Result<void> addItem(Connection &connection, qint64 key, const QString &title,
                     Transaction::Durability durability)
{
    auto transaction = Transaction::begin(connection, durability);
    if (!transaction)
        return failure(transaction.error());
    const auto insert = connection.prepare("INSERT INTO item (id, title) VALUES (?, ?)");
    if (!insert)
        return failure(insert.error());
    (*insert)->bindKey(1, key);
    (*insert)->bind(2, textValue(title));
    return transaction->run(**insert).and_then([&] { return transaction->commit(); });
}

} // namespace tembra
