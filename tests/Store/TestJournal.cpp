#include "TestJournal.h"

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"

#include <QCoreApplication>

#include <sqlite3.h>

namespace tembra::test {

using namespace Qt::StringLiterals;

namespace {

int liveObjects = 0;

template<typename Object>
std::function<std::shared_ptr<ManagedObject>()> maker()
{
    return [] { return std::make_shared<Object>(); };
}

QList<SchemaMigration> testMigrations()
{
    return {
        {1,
         {"CREATE TABLE owner (id INTEGER PRIMARY KEY, name TEXT)",
          "CREATE TABLE label (id INTEGER PRIMARY KEY, name TEXT)",
          "CREATE TABLE item (id INTEGER PRIMARY KEY, date REAL, flag INTEGER, owner INTEGER "
          "REFERENCES owner(id))",
          "CREATE TABLE part (id INTEGER PRIMARY KEY, number INTEGER, content TEXT,"
          " item INTEGER REFERENCES item(id))",
          "CREATE TABLE item_label (item INTEGER NOT NULL REFERENCES item(id),"
          " label INTEGER NOT NULL REFERENCES label(id), PRIMARY KEY (item, label)) WITHOUT ROWID",
          "CREATE INDEX item_owner ON item(owner, date)",
          "CREATE INDEX part_item ON part(item, number)",
          "CREATE INDEX item_label_label ON item_label(label, item)"}}};
}

/// By their length, as texts may hold U+0000.
QByteArray dumpRows(sqlite3 *database, const char *sql)
{
    QByteArray dump;
    sqlite3_stmt *select = nullptr;
    int code = sqlite3_prepare_v2(database, sql, -1, &select, nullptr);
    while (code == SQLITE_OK && (code = sqlite3_step(select)) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(select); ++column) {
            const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(select, column));
            dump += text ? QByteArray(text, sqlite3_column_bytes(select, column)) : "NULL";
            dump += '|';
        }
        dump += '\n';
        code = SQLITE_OK;
    }
    sqlite3_finalize(select);
    return code == SQLITE_DONE ? dump : QByteArray(dump + "cannot be read\n");
}

} // namespace

int liveObjectCount()
{
    return liveObjects;
}

Counted::Counted()
{
    ++liveObjects;
}

Counted::~Counted()
{
    --liveObjects;
}

QList<std::shared_ptr<Part>> Item::parts() const
{
    QList<std::shared_ptr<Part>> found;
    for (const ObjectID id : relatedIDs(partsProperty))
        found.append(managedObjectContext()->object<Part>(id));
    return found;
}

QList<std::shared_ptr<Label>> Item::labels() const
{
    QList<std::shared_ptr<Label>> found;
    for (const ObjectID id : relatedIDs(labelsProperty))
        found.append(managedObjectContext()->object<Label>(id));
    return found;
}

void Item::setOnDeletion(std::function<void()> onDeletion)
{
    m_onDeletion = std::move(onDeletion);
    setPinned(bool(m_onDeletion));
}

void Item::awakeFromInsert()
{
    Counted::awakeFromInsert();
    for (int number = 0; number < partCount; ++number) {
        const auto part = managedObjectContext()->insert<Part>();
        part->setItem(shared_from_this());
        part->setNumber(qint16(number));
    }
}

void Item::prepareForDeletion()
{
    if (m_onDeletion)
        m_onDeletion();
}

ObjectModel testModel()
{
    EntityDescription owner{"Owner", "owner", {{"name", AttributeType::Text}},
                            {},      {},      maker<Owner>()};
    owner.toManys = {{"items", "Item", "owner"}};
    EntityDescription label{"Label", "label", {{"name", AttributeType::Text}},
                            {},      {},      maker<Label>()};
    label.toManys = {{"items", "Item", "labels", "item_label", "label", "item"}};
    EntityDescription item{"Item", "item", {}, {{"owner", "Owner", "items"}}, {}, maker<Item>()};
    item.attributes = {{"date", AttributeType::Date}, {"flag", AttributeType::Integer16}};
    item.toManys = {{"parts", "Part", "item"},
                    {"labels", "Label", "items", "item_label", "item", "label"}};
    EntityDescription part{"Part", "part", {}, {{"item", "Item", "parts"}}, {}, maker<Part>()};
    part.attributes = {{"number", AttributeType::Integer16}, {"content", AttributeType::Text}};
    return {{owner, label, item, part}, testMigrations()};
}

TestStore::TestStore(QByteArray fileSystem) : vfs(std::move(fileSystem)) {}

bool TestStore::open()
{
    container.reset();
    container = std::make_unique<PersistentContainer>(
        u"Test"_s, testModel(),
        PersistentContainer::Options{folder.filePath(u"data"_s), &clock, vfs});
    const Result<void> loaded = container->loadPersistentStores();
    if (!loaded)
        qWarning("%s", qUtf8Printable(loaded.error().description()));
    return loaded.has_value();
}

std::shared_ptr<Owner> TestStore::addOwner(const QString &name, int items) const
{
    const auto owner = context().insert<Owner>();
    owner->setName(name);
    for (int i = 0; i < items; ++i)
        addItem(owner);
    return owner;
}

std::shared_ptr<Item> TestStore::addItem(const std::shared_ptr<Owner> &owner) const
{
    const auto item = context().insert<Item>();
    item->setOwner(owner);
    return item;
}

std::shared_ptr<Label> TestStore::addLabel(const QString &name) const
{
    const auto label = context().insert<Label>();
    label->setName(name);
    return label;
}

Value TestStore::stored(const QByteArray &sql) const
{
    auto connection = Connection::open(container->storeFile(), Connection::Mode::ReadWrite);
    if (!connection)
        return {};
    const auto statement = (*connection)->prepare(sql);
    if (!statement)
        return {};
    const auto row = (*statement)->step();
    const Value value = row && *row ? (*statement)->value(0) : Value();
    (*statement)->reset();
    return value;
}

qint64 TestStore::storedCount(const QByteArray &table) const
{
    const Value count = stored("SELECT count(*) FROM " + table);
    const auto *number = std::get_if<qint64>(&count);
    return number ? *number : -1;
}

bool TestStore::executeElsewhere(const QByteArray &sql) const
{
    auto connection = Connection::open(container->storeFile(), Connection::Mode::ReadWrite);
    return connection && (*connection)->execute(sql);
}

QByteArray dumpStore(const QString &file)
{
    QByteArray dump;
    sqlite3 *database = nullptr;
    if (sqlite3_open_v2(file.toUtf8().constData(), &database, SQLITE_OPEN_READWRITE, nullptr)
        != SQLITE_OK)
        dump = "cannot be opened";
    for (const char *sql :
         {"SELECT 'owner', * FROM owner ORDER BY id", "SELECT 'label', * FROM label ORDER BY id",
          "SELECT 'item', * FROM item ORDER BY id", "SELECT 'part', * FROM part ORDER BY id",
          "SELECT 'link', * FROM item_label ORDER BY 1, 2"})
        dump += dumpRows(database, sql);
    sqlite3_close(database);
    return dump;
}

void endTurn()
{
    QCoreApplication::sendPostedEvents();
}

} // namespace tembra::test
