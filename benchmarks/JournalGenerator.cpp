#include "JournalGenerator.h"

#include "BenchmarkJournal.h"
#include "Foundation/Precondition.h"

#include <QDir>
#include <QFile>

#include <sqlite3.h>

#include <array>
#include <map>
#include <random>
#include <string>

namespace tembra::JournalGenerator {

using namespace Qt::StringLiterals;

namespace {

constexpr int notesPerSession = 9;
constexpr double day = 86400;
constexpr double newest = 815'000'000; // some day in 2026

const std::array<const char *, 24> words{"team",    "release",   "goal",     "Kundin",   "größer",
                                         "naïve",   "café",      "review",   "plan",     "budget",
                                         "hiring",  "customer",  "deadline", "почта",    "встреча",
                                         "東京",    "会議",      "مشروع",    "feedback", "mentor",
                                         "on-call", "migration", "🚀",        "done"};

class Writer
{
public:
    Writer(sqlite3 *database, int sessions) : m_database(database), m_sessions(sessions) {}

    void write()
    {
        execute("BEGIN");
        for (int i = 1; i <= teammates; ++i)
            run(prepare("INSERT INTO counterpart (id, name) VALUES (?, ?)"), ++m_key,
                "Teammate " + std::to_string(i));
        for (int i = 1; i <= tags; ++i)
            run(prepare("INSERT INTO tag (id, name, emoji) VALUES (?, ?, '🎯')"), ++m_key,
                "tag " + std::to_string(i));
        for (int i = 0; i < m_sessions; ++i)
            writeSession(i);
        execute(("UPDATE store_meta SET high_water_mark = " + std::to_string(m_key)).c_str());
        execute("COMMIT");
        for (const auto &[sql, statement] : m_statements)
            sqlite3_finalize(statement);
    }

private:
    int below(int bound) { return int(m_random() % unsigned(bound)); }

    void execute(const char *sql)
    {
        require(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK,
                sqlite3_errmsg(m_database));
    }

    sqlite3_stmt *prepare(const char *sql)
    {
        sqlite3_stmt *&statement = m_statements[sql];
        if (!statement)
            require(sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr) == SQLITE_OK,
                    sqlite3_errmsg(m_database));
        return statement;
    }

    void step(sqlite3_stmt *statement)
    {
        require(sqlite3_step(statement) == SQLITE_DONE, sqlite3_errmsg(m_database));
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }

    void run(sqlite3_stmt *statement, sqlite3_int64 key, const std::string &text)
    {
        sqlite3_bind_int64(statement, 1, key);
        sqlite3_bind_text(statement, 2, text.data(), int(text.size()), SQLITE_TRANSIENT);
        step(statement);
    }

    void writeSession(int number)
    {
        sqlite3_stmt *insert = prepare("INSERT INTO session (id, date, flag, personalSentiment, "
                                       "meetingSentiment, counterpartSentiment, counterpart)"
                                       " VALUES (?, ?, 0, ?, ?, ?, ?)");
        const sqlite3_int64 session = ++m_key;
        // The first teammate holds a tenth.
        const int teammate = number % 10 == 0 ? 1 : 2 + below(teammates - 1);
        sqlite3_bind_int64(insert, 1, session);
        sqlite3_bind_double(insert, 2, newest - below(3650) * day - below(86400));
        sqlite3_bind_int(insert, 3, below(9));
        sqlite3_bind_int(insert, 4, below(7));
        sqlite3_bind_int(insert, 5, below(9));
        sqlite3_bind_int(insert, 6, teammate);
        step(insert);
        for (int identifier = 0; identifier < notesPerSession; ++identifier)
            writeNote(session, identifier);
        for (int count = below(3), tag = below(tags); count > 0; --count, tag = (tag + 7) % tags)
            writeLink(session, teammates + 1 + tag);
    }

    void writeNote(sqlite3_int64 session, int identifier)
    {
        sqlite3_stmt *insert = prepare(
            "INSERT INTO note (id, identifier, contentString, session) VALUES (?, ?, ?, ?)");
        sqlite3_bind_int64(insert, 1, ++m_key);
        sqlite3_bind_int(insert, 2, identifier);
        sqlite3_bind_int64(insert, 4, session);
        if (below(9) < 4) {
            const std::string text = sentence();
            sqlite3_bind_text(insert, 3, text.data(), int(text.size()), SQLITE_TRANSIENT);
        }
        step(insert);
    }

    void writeLink(sqlite3_int64 session, int tag)
    {
        sqlite3_stmt *insert = prepare(
            "INSERT OR IGNORE INTO session_tag (session, tag) VALUES (?, ?)");
        sqlite3_bind_int64(insert, 1, session);
        sqlite3_bind_int(insert, 2, tag);
        step(insert);
    }

    /// Two thirds of the notes are plain ASCII, as in life.
    std::string sentence()
    {
        const bool mixed = below(3) == 0;
        std::string text;
        while (text.size() < 150) {
            const char *word = words.at(size_t(below(int(words.size()))));
            if (mixed
                || (static_cast<unsigned char>(word[0]) < 0x80 && std::string_view(word) != "naïve"
                    && std::string_view(word) != "größer" && std::string_view(word) != "café"))
                text.append(word).append(" ");
        }
        return text;
    }

    sqlite3 *m_database;
    int m_sessions;
    sqlite3_int64 m_key = 0;
    std::mt19937 m_random{42};
    std::map<std::string, sqlite3_stmt *> m_statements;
};

} // namespace

QString cachedDirectory(int sessions)
{
    return QDir::temp().filePath(u"tembra-benchmark-journals-v3/%1"_s.arg(sessions));
}

void make(const QString &directory, int sessions)
{
    const QString file = BenchmarkJournal::storeFile(directory);
    const QString finished = directory + u"/finished"_s;
    if (QFile::exists(finished))
        return;
    QDir(directory).removeRecursively();
    require(QDir().mkpath(directory), "the folder for benchmark journals can be made");
    BenchmarkJournal::createEmpty(directory);
    sqlite3 *database = nullptr;
    require(sqlite3_open(QFile::encodeName(file).constData(), &database) == SQLITE_OK,
            "the new journal opens");
    Writer(database, sessions).write();
    sqlite3_close(database);
    QFile mark(finished);
    require(mark.open(QIODevice::WriteOnly), "the folder for benchmark journals can be written");
}

} // namespace tembra::JournalGenerator
