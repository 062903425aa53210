// A teammate of 10,000 meetings in the real window: everything painted before the clock stops.

#include "BenchmarkJournal.h"
#include "Figures.h"
#include "Foundation/Precondition.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Session.h"
#include "RawQuery.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>

#include <sqlite3.h>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double paintLimit = 50;
constexpr double deleteTeammateLimit = 500;
constexpr double stuffLimit = 3000;
constexpr double searchFactor = 1.5;
constexpr double firstSearchLimit = 150;

/// Until everything that was asked for is on the screen.
void paintAll(QWidget &window)
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    window.repaint();
    QCoreApplication::processEvents();
}

class WindowBench
{
public:
    explicit WindowBench(int sessions)
        : m_journal(sessions)
        , m_window(m_journal.coreData, m_journal.services, m_journal.notifications,
                   m_journal.directory.filePath(u"windows.ini"_s), [] {})
    {
        m_window.show();
        m_teammates = m_journal.context().fetch<Counterpart>(JournalQueries::counterparts()).value();
        for (const auto &teammate : std::as_const(m_teammates)) {
            if (teammate->objectID() == m_journal.largestTeammate())
                m_largest = teammate;
        }
        require(m_largest != nullptr, "the largest teammate is there");
        show(m_largest);
    }

    BenchmarkJournal &journal() { return m_journal; }
    DetailPaneViewController &pane() { return m_window.detailPaneViewController(); }

    void show(const std::shared_ptr<Counterpart> &teammate)
    {
        pane().setSelectedCounterpart(teammate);
        paintAll(m_window);
    }
    void showAnother() { show(m_teammates.at(m_teammates.first() == m_largest ? 1 : 0)); }
    void showLargest() { show(m_largest); }

    void selectNextSession()
    {
        const auto keys =
            m_journal.context().fetchKeys(JournalQueries::sessions(m_largest->objectID())).value();
        m_next = (m_next + 997) % keys.size();
        const int entity = pane().selectedSession()->objectID().entity;
        pane().setSelectedSession(m_journal.context().object<Session>({entity, keys[m_next]}));
        paintAll(m_window);
    }

    void addSession()
    {
        pane().addSession();
        paintAll(m_window);
    }

    void deleteSession()
    {
        require(m_journal.context().deleteObject(pane().selectedSession()).has_value(),
                "the meeting is deleted");
        paintAll(m_window);
    }

    void search(const QString &text)
    {
        auto *field = pane().findChild<QLineEdit *>(u"searchField"_s);
        require(field, "there is a search field");
        field->setText(text);
        paintAll(m_window);
    }

    void stuffSessions()
    {
        pane().stuffSessions();
        paintAll(m_window);
    }

    void deleteLargest()
    {
        require(m_journal.context().deleteObject(m_largest).has_value(), "the teammate is deleted");
        paintAll(m_window);
    }

    /// Until the rows that the deletion left behind are gone. The longest time, in milliseconds, in
    /// which the user would have waited for an answer.
    double longestPauseAfterwards()
    {
        double longest = 0;
        const auto isLeft = [this] {
            return !RawQuery(m_journal.raw(), "SELECT 1 FROM sqlite_schema WHERE name = 'leftover'",
                             {})
                        .keys()
                        .empty();
        };
        QElapsedTimer turn;
        for (bool left = isLeft(); left; left = isLeft()) {
            turn.start();
            QCoreApplication::processEvents();
            longest = std::max(longest, double(turn.nsecsElapsed()) / 1e6);
        }
        return longest;
    }

private:
    BenchmarkJournal m_journal;
    MainWindow m_window;
    QList<std::shared_ptr<Counterpart>> m_teammates;
    std::shared_ptr<Counterpart> m_largest;
    size_t m_next = 0;
};

/// Each time another key of the word, so that every call searches.
class SearchTyping
{
public:
    QString next()
    {
        m_length = m_length % m_word.size() + 1;
        return m_word.first(m_length);
    }

private:
    QString m_word = u"deadline zebra"_s;
    qsizetype m_length = 0;
};

void addFigures(const std::shared_ptr<WindowBench> &bench,
                const std::shared_ptr<WindowBench> &spare)
{
    figures::limitPrepared(
        "select a teammate of 10,000 meetings, painted", [bench] { bench->showAnother(); },
        [bench] { bench->showLargest(); }, paintLimit);
    figures::limit(
        "select a meeting, painted", [bench] { bench->selectNextSession(); }, paintLimit);
    figures::limit(
        "add a meeting, painted", [bench] { bench->addSession(); }, paintLimit);
    figures::limit(
        "delete a meeting, painted", [bench] { bench->deleteSession(); }, paintLimit);

    const auto typing = std::make_shared<SearchTyping>();
    figures::limit(
        "note search, a key, painted", [bench, typing] { bench->search(typing->next()); },
        paintLimit);
    const auto scan = std::make_shared<RawQuery>(
        bench->journal().raw(),
        "SELECT DISTINCT s.id FROM session s CROSS JOIN note n ON n.session = s.id WHERE "
        "s.counterpart = ?"
        " AND text_contains(n.contentString, ?)",
        std::vector<RawQuery::Argument>{bench->journal().largestTeammate().key,
                                        std::string("zebra")});
    figures::compare(
        "note search beside a hand-written scan",
        [bench] {
            (void)bench->journal().context().fetchKeys(
                JournalQueries::sessions(bench->journal().largestTeammate(), {}, u"zebra"_s));
        },
        [scan] { (void)scan->keys(); }, searchFactor, 0);
    figures::limit(
        "a first search that has to read everything",
        [bench] {
            // Another connection's commit makes the journal's forget.
            const int code = sqlite3_exec(bench->journal().raw(),
                                          "UPDATE store_meta SET saves = saves + 1", nullptr,
                                          nullptr, nullptr);
            require(code == SQLITE_OK, "the journal can be written");
            (void)bench->journal().context().fetchKeys(
                JournalQueries::sessions(bench->journal().largestTeammate(), {}, u"zebra"_s));
        },
        firstSearchLimit);
    figures::limitPrepared(
        "5,000 generated meetings", [bench] { bench->search(QString()); },
        [bench] { bench->stuffSessions(); }, stuffLimit);

    figures::limitOnce(
        "delete a teammate of 10,000 meetings", [spare] { spare->deleteLargest(); },
        deleteTeammateLimit);
    figures::report("longest pause while the last of it leaves", spare->longestPauseAfterwards(),
                    paintLimit, "ms");
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const int sessions = figures::isSmoke(argc, argv) ? 1'000 : 100'000;
    addFigures(std::make_shared<WindowBench>(sessions), std::make_shared<WindowBench>(sessions));
    return figures::run(argc, argv);
}
