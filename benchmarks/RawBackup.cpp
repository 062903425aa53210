#include "RawBackup.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Foundation/Json/JsonEncoder.h"
#include "Foundation/Precondition.h"
#include "Model/NoteField.h"
#include "Model/RecordValues.h"

#include <QFile>
#include <QHash>

#include <sqlite3.h>

#include <array>

namespace tembra::rawBackup {

namespace {

/// A statement by the C API.
class Raw
{
public:
    Raw(sqlite3 *database, const char *sql)
    {
        require(sqlite3_prepare_v2(database, sql, -1, &m_statement, nullptr) == SQLITE_OK,
                sqlite3_errmsg(database));
    }
    ~Raw() { sqlite3_finalize(m_statement); }
    Q_DISABLE_COPY_MOVE(Raw)

    bool next() { return sqlite3_step(m_statement) == SQLITE_ROW; }
    void reset() { sqlite3_reset(m_statement); }
    qint64 integer(int column) const { return sqlite3_column_int64(m_statement, column); }
    double real(int column) const { return sqlite3_column_double(m_statement, column); }
    QString text(int column) const
    {
        const auto *bytes = reinterpret_cast<const char *>(
            sqlite3_column_text(m_statement, column));
        return bytes ? QString::fromUtf8(bytes, sqlite3_column_bytes(m_statement, column))
                     : QString();
    }

    Raw &bind(int index, qint64 value)
    {
        sqlite3_bind_int64(m_statement, index, value);
        return *this;
    }
    Raw &bind(int index, double value)
    {
        sqlite3_bind_double(m_statement, index, value);
        return *this;
    }
    Raw &bind(int index, const QString &value)
    {
        const QByteArray bytes = value.toUtf8();
        if (value.isNull())
            sqlite3_bind_null(m_statement, index);
        else
            sqlite3_bind_text(m_statement, index, bytes.constData(), int(bytes.size()),
                              SQLITE_TRANSIENT);
        return *this;
    }
    Raw &bindNull(int index)
    {
        sqlite3_bind_null(m_statement, index);
        return *this;
    }
    void run()
    {
        require(sqlite3_step(m_statement) == SQLITE_DONE, "the row is inserted");
        reset();
    }

private:
    sqlite3_stmt *m_statement = nullptr;
};

QString uri(const char *entity, qint64 key)
{
    return QStringLiteral("tembra-store://0f5e0a32-6a4b-4d6e-9a0c-000000000000/%1/p%2")
        .arg(QLatin1StringView(entity))
        .arg(key);
}

class Encoding
{
public:
    explicit Encoding(sqlite3 *database)
        : m_teammates(database, "SELECT id, name FROM counterpart ORDER BY name, id")
        , m_sessions(database, "SELECT id, date, flag, counterpartSentiment, meetingSentiment, "
                               "personalSentiment FROM session WHERE counterpart = ? ORDER BY id")
        , m_notes(
              database,
              "SELECT identifier, contentString FROM note WHERE session = ? ORDER BY identifier")
        , m_links(database,
                  "SELECT t.id, t.emoji, t.name FROM session_tag j JOIN tag t ON t.id = j.tag "
                  "WHERE j.session = ? ORDER BY t.name")
    {
    }

    QByteArray document()
    {
        m_encoder.beginArray();
        while (m_teammates.next())
            writeTeammate();
        m_encoder.endArray();
        auto document = m_encoder.takeDocument();
        require(document.has_value(), "the document is written");
        return std::move(*document);
    }

private:
    void writeTeammate()
    {
        m_encoder.beginObject();
        m_encoder.key(QLatin1StringView("name"));
        m_encoder.textOrNull(m_teammates.text(1));
        m_encoder.key(QLatin1StringView("objectID"));
        m_encoder.text(uri("Counterpart", m_teammates.integer(0)));
        m_encoder.key(QLatin1StringView("sessions"));
        m_encoder.beginArray();
        m_sessions.bind(1, m_teammates.integer(0));
        while (m_sessions.next())
            session().encode(m_encoder);
        m_sessions.reset();
        m_encoder.endArray();
        m_encoder.endObject();
    }

    SessionValues session()
    {
        SessionValues values;
        const qint64 key = m_sessions.integer(0);
        values.attributes.set(Session::dateProperty, m_sessions.real(1));
        values.attributes.set(Session::flagProperty, m_sessions.integer(2));
        values.attributes.set(Session::counterpartSentimentProperty, m_sessions.integer(3));
        values.attributes.set(Session::meetingSentimentProperty, m_sessions.integer(4));
        values.attributes.set(Session::personalSentimentProperty, m_sessions.integer(5));
        values.objectID = uri("Session", key);
        for (m_links.bind(1, key); m_links.next();) {
            TagValues &tag = values.tags.emplace_back();
            tag.attributes.set(Tag::emojiProperty, textValue(m_links.text(1)));
            tag.attributes.set(Tag::nameProperty, textValue(m_links.text(2)));
            tag.objectID = uri("Tag", m_links.integer(0));
        }
        m_links.reset();
        values.notes.emplace();
        for (m_notes.bind(1, key); m_notes.next();) {
            NoteValues &note = values.notes->emplace_back();
            note.attributes.set(Note::identifierProperty, m_notes.integer(0));
            note.attributes.set(Note::contentStringProperty, textValue(m_notes.text(1)));
        }
        m_notes.reset();
        return values;
    }

    Raw m_teammates;
    Raw m_sessions;
    Raw m_notes;
    Raw m_links;
    JsonEncoder m_encoder;
};

class Importing
{
public:
    explicit Importing(sqlite3 *database)
        : m_teammates(database, "INSERT INTO counterpart (id, name) VALUES (?, ?)")
        , m_sessions(database,
                     "INSERT INTO session (id, date, flag, counterpartSentiment, meetingSentiment, "
                     "personalSentiment, counterpart) VALUES (?, ?, ?, ?, ?, ?, ?)")
        , m_notes(database,
                  "INSERT INTO note (id, identifier, contentString, session) VALUES (?, ?, ?, ?)")
        , m_tags(database, "INSERT INTO tag (id, name, emoji) VALUES (?, ?, ?)")
        , m_links(database, "INSERT OR IGNORE INTO session_tag (session, tag) VALUES (?, ?)")
    {
    }

    void run(const QByteArray &json)
    {
        JsonDecoder decoder(json);
        decodeJournal(decoder, [&] {
            const qint64 teammate = ++m_key;
            m_teammates.bind(1, teammate).bindNull(2).run();
            (void)CounterpartValues::decode(decoder, [&] {
                insert(SessionValues::decode(decoder), teammate);
            });
        });
        require(!decoder.hasFailed(), "the document is read");
    }

private:
    void insert(const SessionValues &values, qint64 teammate)
    {
        const qint64 session = ++m_key;
        const auto number = [&](int property) {
            return qint64(values.attributes.integer(property));
        };
        m_sessions.bind(1, session)
            .bind(2, values.attributes.date(Session::dateProperty)->secondsSinceReferenceDate)
            .bind(3, number(Session::flagProperty))
            .bind(4, number(Session::counterpartSentimentProperty))
            .bind(5, number(Session::meetingSentimentProperty))
            .bind(6, number(Session::personalSentimentProperty))
            .bind(7, teammate)
            .run();
        std::array<bool, maximumNoteIdentifier + 1> replaced{};
        for (const NoteValues &note : *values.notes)
            replaced.at(size_t(note.attributes.integer(Note::identifierProperty))) = true;
        for (qint64 identifier = 0; identifier <= maximumNoteIdentifier; ++identifier) {
            m_notes.bind(1, ++m_key).bind(2, identifier).bindNull(3);
            if (replaced.at(size_t(identifier)))
                m_notes.bindNull(4).run();
            else
                m_notes.bind(4, session).run();
        }
        for (const NoteValues &note : *values.notes)
            m_notes.bind(1, ++m_key)
                .bind(2, qint64(note.attributes.integer(Note::identifierProperty)))
                .bind(3, note.attributes.text(Note::contentStringProperty))
                .bind(4, session)
                .run();
        for (const TagValues &tag : values.tags)
            m_links.bind(1, session).bind(2, keyOf(tag)).run();
    }

    qint64 keyOf(const TagValues &tag)
    {
        const QString name = tag.attributes.text(Tag::nameProperty);
        const QString emoji = tag.attributes.text(Tag::emojiProperty);
        qint64 &key = m_known[{name, emoji}];
        if (key == 0) {
            key = ++m_key;
            m_tags.bind(1, key).bind(2, name).bind(3, emoji).run();
        }
        return key;
    }

    Raw m_teammates;
    Raw m_sessions;
    Raw m_notes;
    Raw m_tags;
    Raw m_links;
    QHash<std::pair<QString, QString>, qint64> m_known;
    qint64 m_key = 0;
};

void execute(sqlite3 *database, const char *sql)
{
    require(sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK,
            sqlite3_errmsg(database));
}

} // namespace

QByteArray encode(sqlite3 *database)
{
    return Encoding(database).document();
}

void import(const QByteArray &json, const QString &file)
{
    sqlite3 *database = nullptr;
    require(sqlite3_open(QFile::encodeName(file).constData(), &database) == SQLITE_OK,
            "the store opens by the raw API");
    execute(database, "PRAGMA foreign_keys=ON; PRAGMA synchronous=FULL;");
    sqlite3_wal_autocheckpoint(database, 0);
    execute(database, "BEGIN IMMEDIATE");
    Importing(database).run(json);
    execute(database, "COMMIT");
    sqlite3_close(database);
}

} // namespace tembra::rawBackup
