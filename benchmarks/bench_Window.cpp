// A teammate of 10,000 meetings in the real window: everything painted before the clock stops.

#include "BenchmarkJournal.h"
#include "Figures.h"
#include "Foundation/Precondition.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Session.h"
#include "RawDeletion.h"
#include "RawQuery.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Undo/UndoManager.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>

#include <sqlite3.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double paintLimit = 50;
constexpr double stuffLimit = 3000;
constexpr double searchFactor = 1.5;
constexpr double searchPaintLimit = 16; ///< A frame of 60 in a second.
constexpr double rawFactor = 2;

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
    }

    void undo()
    {
        m_journal.context().processPendingChanges();
        m_journal.context().undoManager()->undo();
    }

private:
    BenchmarkJournal m_journal;
    MainWindow m_window;
    QList<std::shared_ptr<Counterpart>> m_teammates;
    std::shared_ptr<Counterpart> m_largest;
    size_t m_next = 0;
};

/// A third way into a journal. What it commits empties the page caches of the others.
class OtherConnection
{
public:
    explicit OtherConnection(const BenchmarkJournal &journal)
    {
        const QString file = BenchmarkJournal::storeFile(journal.directory.path());
        require(sqlite3_open(QFile::encodeName(file).constData(), &m_database) == SQLITE_OK,
                "the journal opens once more");
    }
    ~OtherConnection() { sqlite3_close(m_database); }
    Q_DISABLE_COPY_MOVE(OtherConnection)

    void commit()
    {
        const int code = sqlite3_exec(m_database, "UPDATE store_meta SET saves = saves + 1",
                                      nullptr, nullptr, nullptr);
        require(code == SQLITE_OK, "the journal can be written");
    }

private:
    sqlite3 *m_database = nullptr;
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

void addFigures(const std::shared_ptr<WindowBench> &bench)
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

    figures::limitPrepared(
        "5,000 generated meetings", [bench] { bench->search(QString()); },
        [bench] { bench->stuffSessions(); }, stuffLimit);
}

/// Every key of a word: the keys of the meetings that are found, beside a scan of the teammate's notes
/// by hand. Cold is with nothing in the page caches, as after a commit of another connection.
void addSearches(const std::shared_ptr<WindowBench> &bench)
{
    const auto elsewhere = std::make_shared<OtherConnection>(bench->journal());
    const QString word = u"zebra"_s;
    for (qsizetype length = 1; length <= word.size(); ++length) {
        const QString needle = word.first(length);
        const auto scan = std::make_shared<RawQuery>(
            bench->journal().raw(),
            "SELECT DISTINCT s.id FROM session s CROSS JOIN note n ON n.session = s.id WHERE "
            "s.counterpart = ? AND text_contains(n.contentString, ?)",
            std::vector<RawQuery::Argument>{bench->journal().largestTeammate().key,
                                            needle.toStdString()});
        const auto search = [bench, needle] {
            (void)bench->journal().context().fetchKeys(
                JournalQueries::sessions(bench->journal().largestTeammate(), {}, needle));
        };
        const auto floor = [scan] { (void)scan->keys(); };
        const std::string name = "note search for " + needle.toStdString();
        figures::compare(name + ", warm", search, floor, searchFactor, 0);
        figures::comparePrepared(
            name + ", cold", [elsewhere] { elsewhere->commit(); }, search, floor, searchFactor, 0);
    }
}

void addPaintedSearch(const std::shared_ptr<WindowBench> &bench)
{
    const auto typing = std::make_shared<SearchTyping>();
    figures::limit(
        "note search among 500 meetings, a key, painted",
        [bench, typing] { bench->search(typing->next()); }, searchPaintLimit);
}

/// Deletes the largest teammate by the program, and on a copy of the journal by the raw C API; then
/// both bring everything back.
void reportDeletion(int sessions)
{
    WindowBench own(sessions);
    BenchmarkJournal other(sessions);
    RawDeletion raw(other.raw(), other.largestTeammate().key);
    const double deletionFloor = figures::measureOnce([&] { raw.run(); });
    const double deletion = figures::measureOnce([&] { own.deleteLargest(); });
    figures::report("delete a teammate of 10,000 meetings", deletion, rawFactor * deletionFloor,
                    "ms", deletionFloor);
    const double undoFloor = figures::measureOnce([&] { raw.undo(); });
    const double undo = figures::measureOnce([&] { own.undo(); });
    figures::report("undo of that", undo, rawFactor * undoFloor, "ms", undoFloor);
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const bool smoke = figures::isSmoke(argc, argv);
    const int sessions = smoke ? 1'000 : 100'000;
    const auto bench = std::make_shared<WindowBench>(sessions);
    addSearches(bench); // Before the figures below change the journal.
    addFigures(bench);
    addPaintedSearch(std::make_shared<WindowBench>(smoke ? 1'000 : 5'000));
    reportDeletion(sessions);
    return figures::run(argc, argv);
}
