// Typing into one note and asking the store, and saving it, beside the same by the raw C API.

#include "BenchmarkJournal.h"
#include "Figures.h"
#include "Foundation/Precondition.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "RawQuery.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QCoreApplication>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double allowedFactor = 2.0;
constexpr double editAllowance = 0.02;

/// Gives another text each time, as typing does.
class Typist
{
public:
    QString next()
    {
        return u"What was typed, and a number to make it another text: %1"_s.arg(++m_count);
    }

private:
    int m_count = 0;
};

/// The same edit by the raw C API: one row in a transaction of its own.
class RawEdit
{
public:
    RawEdit(sqlite3 *database, sqlite3_int64 note, bool durable)
        : m_database(database)
        , m_note(note)
        , m_durable(durable)
    {
        require(sqlite3_prepare_v2(database, "UPDATE note SET contentString = ? WHERE id = ?", -1,
                                   &m_update, nullptr)
                    == SQLITE_OK,
                sqlite3_errmsg(database));
    }
    ~RawEdit() { sqlite3_finalize(m_update); }
    RawEdit(const RawEdit &) = delete;
    RawEdit &operator=(const RawEdit &) = delete;

    void operator()(const QByteArray &text)
    {
        if (m_durable)
            execute("PRAGMA synchronous=FULL");
        execute("BEGIN IMMEDIATE");
        sqlite3_bind_text(m_update, 1, text.constData(), int(text.size()), SQLITE_STATIC);
        sqlite3_bind_int64(m_update, 2, m_note);
        require(sqlite3_step(m_update) == SQLITE_DONE, sqlite3_errmsg(m_database));
        sqlite3_reset(m_update);
        execute("COMMIT");
        if (m_durable)
            execute("PRAGMA synchronous=NORMAL");
    }

private:
    void execute(const char *sql)
    {
        require(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK,
                sqlite3_errmsg(m_database));
    }

    sqlite3 *m_database;
    sqlite3_int64 m_note;
    bool m_durable;
    sqlite3_stmt *m_update = nullptr;
};

std::shared_ptr<Note> someNote(BenchmarkJournal &journal)
{
    const auto session = journal.context().fetch<Session>(
        JournalQueries::mostRecentSession(journal.largestTeammate()));
    return session->first()->sortedNotes().first();
}

void addEditing(BenchmarkJournal &journal, const std::string &size)
{
    const std::shared_ptr<Note> note = someNote(journal);
    const auto typist = std::make_shared<Typist>();
    const FetchRequest query = JournalQueries::mostRecentSession(journal.largestTeammate());
    const auto rawQuery = std::make_shared<RawQuery>(
        journal.raw(), "SELECT id FROM session WHERE counterpart = ? ORDER BY date DESC LIMIT 1",
        std::vector<RawQuery::Argument>{journal.largestTeammate().key});
    const auto rawEdit = std::make_shared<RawEdit>(journal.raw(), note->objectID().key, false);
    const auto rawSave = std::make_shared<RawEdit>(journal.raw(), note->objectID().key, true);

    figures::compare(
        "edit a note, then query, " + size,
        [&journal, note, typist, query] {
            note->setContentString(typist->next());
            (void)journal.context().fetchKeys(query);
        },
        [rawEdit, rawQuery, typist] {
            (*rawEdit)(typist->next().toUtf8());
            (void)rawQuery->keys();
        },
        allowedFactor, editAllowance);
    figures::compare(
        "save of one edited note, " + size,
        [&journal, note, typist] {
            note->setContentString(typist->next());
            require(journal.context().save().has_value(), "the save succeeds");
        },
        [rawSave, typist] { (*rawSave)(typist->next().toUtf8()); }, allowedFactor, 0);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    std::vector<std::unique_ptr<BenchmarkJournal>> journals;
    const std::vector<std::pair<int, std::string>> sizes =
        figures::isSmoke(argc, argv) ? std::vector<std::pair<int, std::string>>{{1'000, "1k"}}
                                     : std::vector<std::pair<int, std::string>>{{1'000, "1k"},
                                                                                {10'000, "10k"},
                                                                                {100'000, "100k"}};
    for (const auto &[sessions, size] : sizes) {
        journals.push_back(std::make_unique<BenchmarkJournal>(sessions));
        addEditing(*journals.back(), size);
    }
    return figures::run(argc, argv);
}
