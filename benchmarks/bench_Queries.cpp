// Every query the program makes, as keys, beside the same question in hand-written SQL.

#include "BenchmarkJournal.h"
#include "Figures.h"
#include "Foundation/Precondition.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "RawQuery.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QCoreApplication>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double allowedFactor = 1.5;
constexpr double allowance = 0.2;
constexpr double listLimit = 3.0;

struct Question
{
    std::string name;
    FetchRequest request;
    std::string sql;
    std::vector<RawQuery::Argument> arguments;
};

std::vector<Question> questions(BenchmarkJournal &journal)
{
    const ObjectID teammate = journal.largestTeammate();
    const int tagEntity = teammate.entity + 1;
    const ObjectID tag{tagEntity, 41};
    const ObjectID otherTag{tagEntity, 48};
    const Date end = journal.clock.now().adding(-100.0 * 86400);
    const Date start = end.adding(-180.0 * 86400);
    const std::string filled = " AND n.contentString IS NOT NULL AND n.contentString IS NOT ''";
    const sqlite3_int64 key = teammate.key;
    const double from = start.secondsSinceReferenceDate;
    const double to = end.secondsSinceReferenceDate;
    FetchRequest lastEntry = JournalQueries::filledNotes(teammate, 3);
    lastEntry.fetchLimit = 1;
    return {
        {"sessions of a teammate",
         JournalQueries::sessions(teammate),
         "SELECT id FROM session WHERE counterpart = ? ORDER BY date DESC, id",
         {key}},
        {"sessions with two tags",
         JournalQueries::sessions(teammate, {tag, otherTag}),
         "SELECT s.id FROM session_tag j CROSS JOIN session_tag k ON k.session = j.session AND "
         "k.tag = ?3"
         " CROSS JOIN session s ON s.id = j.session WHERE j.tag = ?2 AND +s.counterpart = ?1"
         " ORDER BY s.date DESC, s.id",
         {key, tag.key, otherTag.key}},
        {"note search, rare word",
         JournalQueries::sessions(teammate, {}, u"zebra"_s),
         "SELECT s.id FROM session s WHERE s.counterpart = ? AND EXISTS (SELECT 1 FROM note n "
         "WHERE n.session = s.id"
         " AND text_contains(n.contentString, ?)) ORDER BY s.date DESC, s.id",
         {key, std::string("zebra")}},
        {"note search, common word",
         JournalQueries::sessions(teammate, {}, u"CAFE"_s),
         "SELECT s.id FROM session s WHERE s.counterpart = ? AND EXISTS (SELECT 1 FROM note n "
         "WHERE n.session = s.id"
         " AND text_contains(n.contentString, ?)) ORDER BY s.date DESC, s.id",
         {key, std::string("CAFE")}},
        {"most recent session",
         JournalQueries::mostRecentSession(teammate),
         "SELECT id FROM session WHERE counterpart = ? ORDER BY date DESC LIMIT 1",
         {key}},
        {"sessions carrying a tag",
         JournalQueries::sessionsCarrying(tag),
         "SELECT s.id FROM session_tag j CROSS JOIN session s ON s.id = j.session WHERE j.tag = ?"
         " ORDER BY s.date DESC, s.id",
         {tag.key}},
        {"all tags", JournalQueries::allTags(), "SELECT id FROM tag ORDER BY name DESC, id", {}},
        {"flagged sessions",
         JournalQueries::flaggedSessions(),
         "SELECT id FROM session WHERE flag > 0 ORDER BY +id",
         {}},
        {"last entry of a field",
         lastEntry,
         "SELECT n.id FROM session s CROSS JOIN note n ON n.session = s.id WHERE s.counterpart = ?"
         " AND n.identifier = 3"
             + filled + " ORDER BY s.date DESC LIMIT 1",
         {key}},
        {"entries in a window",
         JournalQueries::filledNotesBetween(start, end, 3),
         "SELECT n.id FROM session s CROSS JOIN note n ON n.session = s.id WHERE s.date < ? AND "
         "s.date > ?"
         " AND n.identifier = 3"
             + filled + " ORDER BY n.id",
         {to, from}},
        {"notes of one teammate",
         JournalQueries::notes(teammate),
         "SELECT n.id FROM session s CROSS JOIN note n ON n.session = s.id WHERE s.counterpart = ? "
         "ORDER BY n.id",
         {key}},
        {"notes of any teammate",
         JournalQueries::notesOfAnyCounterpart(),
         "SELECT n.id FROM note n CROSS JOIN session s ON s.id = n.session WHERE s.counterpart IS "
         "NOT NULL ORDER BY n.id",
         {}},
        {"sessions in a range",
         JournalQueries::sessionsBetween(start, end),
         "SELECT id FROM session WHERE date < ? AND date > ? ORDER BY id",
         {to, from}},
    };
}

void addQueries(BenchmarkJournal &journal, const std::string &size)
{
    for (const Question &question : questions(journal)) {
        const auto raw = std::make_shared<RawQuery>(journal.raw(), question.sql,
                                                    question.arguments);
        const auto answer = journal.context().fetchKeys(question.request);
        require(answer.has_value(), "the query is answered");
        const auto &expected = raw->keys();
        require(std::equal(answer->begin(), answer->end(), expected.begin(), expected.end()),
                "both give the same records in the same order");
        figures::compare(
            question.name + ", " + size,
            [&journal, request = question.request] { (void)journal.context().fetchKeys(request); },
            [raw] { (void)raw->keys(); }, allowedFactor, allowance);
    }
}

/// The list as the window needs it: the teammates, in the order of their days, with every text.
void readTeammateList(BenchmarkJournal &journal)
{
    journal.derivedTexts.invalidateAll();
    auto teammates = journal.context().fetch<Counterpart>(JournalQueries::counterparts()).value();
    std::vector<std::pair<int, Counterpart *>> order;
    for (const auto &teammate : teammates) {
        teammate->invalidateDerived();
        order.emplace_back(-teammate->daysSinceLastSession(), teammate.get());
    }
    std::sort(order.begin(), order.end());
    qsizetype length = 0;
    for (const auto &[days, teammate] : order)
        length += teammate->recentSessionSummary().size()
                  + teammate->recentSessionTagSummary().size();
    require(length > 0, "the texts are there");
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
        addQueries(*journals.back(), size);
        figures::limit(
            "list of 40 teammates with texts, " + size,
            [journal = journals.back().get()] { readTeammateList(*journal); }, listLimit);
    }
    return figures::run(argc, argv);
}
