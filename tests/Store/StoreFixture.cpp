#include "StoreFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <sys/wait.h>
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

char kindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return 'f';
    if (S_ISDIR(mode))
        return 'd';
    return S_ISLNK(mode) ? 'l' : 'o';
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

QString temporaryTemplate()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath())
           + QStringLiteral("/tembra-XXXXXX");
}

void StoreFolder::put(const QByteArray &content) const
{
    QDir().mkpath(directory);
    writeFile(file(), content);
}

Result<OpenStore> openIn(const StoreFolder &folder, int version)
{
    return openStore({folder.directory, QStringLiteral("Vum")}, itemModel(version), {});
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

QMap<QString, QByteArray> snapshot(const QString &folder)
{
    QMap<QString, QByteArray> entries;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString path = walk.next();
        struct stat status = {};
        ::lstat(QFile::encodeName(path).constData(), &status);
        QByteArray entry = QByteArray(1, kindOf(status.st_mode))
                           + QByteArray::number(status.st_mode, 8) + ' ';
        if (S_ISREG(status.st_mode))
            entry += readFile(path);
        if (S_ISLNK(status.st_mode))
            entry += QFile::symLinkTarget(path).toUtf8();
        entries.insert(QDir(folder).relativeFilePath(path), entry);
    }
    return entries;
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int runAndDie(const std::function<bool()> &work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work() ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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
