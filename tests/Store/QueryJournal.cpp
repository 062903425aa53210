#include "QueryJournal.h"

#include "Foundation/Precondition.h"
#include "Store/Query/SqlText.h"

namespace tembra::test {

using namespace Qt::StringLiterals;

namespace {

constexpr char schema[] =
    "CREATE TABLE counterpart (id INTEGER PRIMARY KEY, name TEXT, email TEXT, lastUpdate REAL);"
    "CREATE TABLE tag (id INTEGER PRIMARY KEY, name TEXT, emoji TEXT, lastUse REAL);"
    "CREATE TABLE session (id INTEGER PRIMARY KEY, date REAL, flag INTEGER, counterpart INTEGER);"
    "CREATE TABLE note (id INTEGER PRIMARY KEY, identifier INTEGER, contentString TEXT, session "
    "INTEGER);"
    "CREATE TABLE session_tag (session INTEGER NOT NULL, tag INTEGER NOT NULL, PRIMARY KEY "
    "(session, tag)) WITHOUT ROWID;"
    "CREATE INDEX session_counterpart_date ON session(counterpart, date DESC);"
    "CREATE INDEX session_date ON session(date DESC);"
    "CREATE INDEX session_flag ON session(flag) WHERE flag > 0;"
    "CREATE INDEX note_session_identifier ON note(session, identifier);"
    "CREATE INDEX note_filled ON note(session, identifier) WHERE contentString IS NOT NULL AND "
    "contentString IS NOT '';"
    "CREATE INDEX session_tag_tag ON session_tag(tag, session);"
    "CREATE INDEX tag_lastUse ON tag(lastUse);";

Statement &prepared(Connection &connection, const QByteArray &sql,
                    const std::vector<Value> &bindings)
{
    const Result<Statement *> statement = connection.prepare(sql);
    if (!statement)
        fatal(qUtf8Printable(statement.error().description()));
    int index = 1;
    for (const Value &value : bindings)
        (*statement)->bind(index++, value);
    return **statement;
}

void run(Connection &connection, const QByteArray &sql, const std::vector<Value> &bindings)
{
    require(prepared(connection, sql, bindings).run().has_value(), "the statement runs");
}

template<typename Item, size_t count>
Item oneOf(QRandomGenerator &random, const Item (&items)[count])
{
    return items[random.bounded(int(count))];
}

Value perhaps(QRandomGenerator &random, const Value &value)
{
    return random.bounded(5) == 0 ? Value() : value;
}

} // namespace

ObjectModel queryModel()
{
    EntityDescription counterpart{"Counterpart", "counterpart", {}, {}, {}, {}};
    counterpart.attributes = {{"name", AttributeType::Text},
                              {"email", AttributeType::Text},
                              {"lastUpdate", AttributeType::Date}};
    counterpart.toManys = {{"sessions", "Session", "counterpart"}};
    EntityDescription tag{"Tag", "tag", {}, {}, {}, {}};
    tag.attributes = {{"name", AttributeType::Text},
                      {"emoji", AttributeType::Text},
                      {"lastUse", AttributeType::Date}};
    tag.toManys = {{"sessions", "Session", "tags", "session_tag", "tag", "session"}};
    EntityDescription session{"Session", "session",
                              {},        {{"counterpart", "Counterpart", "sessions"}},
                              {},        {}};
    session.attributes = {{"date", AttributeType::Date}, {"flag", AttributeType::Integer16}};
    session.toManys = {{"notes", "Note", "session"},
                       {"tags", "Tag", "sessions", "session_tag", "session", "tag"}};
    EntityDescription note{"Note", "note", {}, {{"session", "Session", "notes"}}, {}, {}};
    note.attributes = {{"identifier", AttributeType::Integer16},
                       {"contentString", AttributeType::Text}};
    return {{counterpart, tag, session, note}, {}};
}

QString randomText(QRandomGenerator &random)
{
    static const QString texts[] = {u""_s,
                                    u"Café"_s,
                                    u"cafe\u0301 au lait"_s,
                                    u"CAFE"_s,
                                    u"Straße"_s,
                                    u"strasse"_s,
                                    u"naïve 🎉"_s,
                                    u"100%_x"_s,
                                    u"zebra"_s,
                                    u"Zebra crossing"_s,
                                    u"встреча"_s,
                                    u"ВСТРЕЧА"_s,
                                    u"a'b\"c"_s,
                                    u"😀"_s,
                                    u"\uFFFD"_s,
                                    QString(QChar(0)),
                                    u"ﬁne"_s};
    return oneOf(random, texts);
}

QueryJournal::QueryJournal() : rows(size_t(model.entities().size()))
{
    auto opened = Connection::open(m_folder.filePath(u"journal.sqlite"_s),
                                   Connection::Mode::Create);
    require(opened.has_value(), "the store opens");
    m_connection = std::move(*opened);
    require(m_connection->execute(schema).has_value(), "the schema is made");
}

qint64 QueryJournal::insert(int entity, Row row)
{
    const EntityDescription &description = model.entity(entity);
    require(int(row.size()) == description.columnCount(), "a value for each column");
    QByteArray names = "id";
    QByteArray places = "?";
    std::vector<Value> values{++m_lastKey};
    for (int property = 0; property < description.columnCount(); ++property) {
        names += ',' + quoted(description.propertyName(property));
        places += ",?";
        values.push_back(row[size_t(property)]);
    }
    run(*m_connection,
        "INSERT INTO " + quoted(description.table) + '(' + names + ") VALUES (" + places + ')',
        values);
    rows[size_t(entity)].emplace(m_lastKey, std::move(row));
    return m_lastKey;
}

void QueryJournal::link(qint64 session, qint64 tag)
{
    if (links.emplace(session, tag).second)
        run(*m_connection, "INSERT INTO session_tag VALUES (?, ?)", {session, tag});
}

void QueryJournal::fillAtRandom(QRandomGenerator &random, int sessions)
{
    require(m_connection->execute("BEGIN").has_value(), "a transaction");
    const auto text = [&] { return perhaps(random, Value(randomText(random))); };
    const auto date = [&] { return perhaps(random, Value(random.bounded(8) + 0.25)); };
    std::vector<qint64> counterparts;
    std::vector<qint64> tags;
    for (int i = 0; i < 4; ++i)
        counterparts.push_back(insert(counterpartEntity, {text(), text(), date()}));
    for (int i = 0; i < 6; ++i)
        tags.push_back(insert(tagEntity, {text(), text(), date()}));
    for (int i = 0; i < sessions; ++i) {
        const Value owner = perhaps(random, Value(counterparts[size_t(random.bounded(4))]));
        const Value flag = perhaps(random, Value(qint64(random.bounded(3))));
        const qint64 session = insert(sessionEntity, {date(), flag, owner});
        for (int k = random.bounded(4); k > 0; --k)
            link(session, tags[size_t(random.bounded(6))]);
        for (int k = random.bounded(5); k > 0; --k) {
            const Value identifier = perhaps(random, Value(qint64(random.bounded(3))));
            insert(noteEntity, {identifier, text(), perhaps(random, Value(session))});
        }
    }
    require(m_connection->execute("COMMIT").has_value(), "a commit");
}

Result<std::vector<qint64>> QueryJournal::fetchKeys(const FetchRequest &request) const
{
    const Result<FetchStatement> compiled = compileFetch(model, request);
    if (!compiled)
        return failure(compiled.error());
    std::vector<qint64> keys;
    Statement &statement = prepared(*m_connection, compiled->sql, compiled->bindings);
    Result<bool> found = statement.step();
    for (; found && *found; found = statement.step())
        keys.push_back(statement.key(0));
    return found.map([&](bool) { return keys; });
}

QByteArray QueryJournal::plan(const FetchRequest &request) const
{
    const Result<FetchStatement> compiled = compileFetch(model, request);
    require(compiled.has_value(), "the request compiles");
    Statement &statement = prepared(*m_connection, "EXPLAIN QUERY PLAN " + compiled->sql,
                                    compiled->bindings);
    QByteArray lines;
    for (Result<bool> found = statement.step(); found && *found; found = statement.step())
        lines += std::get<QString>(statement.value(3)).toUtf8() + '\n';
    return lines;
}

} // namespace tembra::test
