// Works on a journal at random, as a hasty user does, and tells on standard output what it does:
//
//   W <key> <value>   a record is about to get this value (see JournalContents)
//   U                 something begins whose outcome is told afterwards, by W
//   D <nanoseconds>   all that was announced has happened, at this moment of the steady clock
//   S                 a save was confirmed
//
// Usage: JournalWriter FOLDER SEED (types | does-everything). Runs until it is killed.

#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Foundation/Precondition.h"
#include "JournalContents.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Note.h"
#include "Model/NoteField.h"
#include "Model/Session.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Undo/UndoManager.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <random>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr int mostTeammates = 4;
constexpr int mostMeetings = 12;

void say(const QByteArray &line)
{
    const QByteArray whole = line + '\n';
    require(::write(STDOUT_FILENO, whole.constData(), size_t(whole.size())) == whole.size(),
            "The log can be written");
}

class Writer
{
public:
    Writer(ManagedObjectContext &context, unsigned seed, bool doesEverything)
        : m_context(context)
        , m_random(seed)
        , m_doesEverything(doesEverything)
        , m_told(contentsOf(context))
    {
        load();
        if (m_teammates.isEmpty())
            addTeammate();
        if (m_sessions.isEmpty())
            addMeeting();
    }

    void step()
    {
        if (m_notes.isEmpty() || (m_doesEverything && below(100) < 40))
            change();
        else if (below(1000) < (m_doesEverything ? 30 : 3))
            save();
        else
            type();
    }

    int below(int bound) { return int(m_random() % unsigned(bound)); }

private:
    /// Everything in the journal is held, so that typing asks the store nothing.
    void load()
    {
        const auto teammates = m_context.fetch<Counterpart>(JournalQueries::counterparts());
        require(teammates.has_value(), "The teammates can be fetched");
        m_teammates = *teammates;
        m_sessions.clear();
        m_notes.clear();
        for (const auto &teammate : std::as_const(m_teammates))
            m_sessions += teammate->sessions();
        for (const auto &session : std::as_const(m_sessions))
            m_notes += session->sortedNotes();
    }

    void will(const QByteArray &key, const QByteArray &value)
    {
        m_told.insert(key, value);
        say("W " + key + ' ' + value);
    }

    static void done()
    {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        say("D " + QByteArray::number(qint64(std::chrono::nanoseconds(now).count())));
    }

    /// Tells of everything that reads differently from what was told before.
    void tellOutcome()
    {
        const JournalContents now = contentsOf(m_context);
        const JournalContents told = m_told;
        for (auto record = now.begin(); record != now.end(); ++record) {
            if (told.value(record.key(), absent) != record.value())
                will(record.key(), record.value());
        }
        for (auto record = told.begin(); record != told.end(); ++record) {
            if (!now.contains(record.key()) && record.value() != absent)
                will(record.key(), absent);
        }
        load();
        done();
    }

    QString word()
    {
        static const QStringList words{u"goal"_s,     u"próximo"_s, u"🎉"_s, u"会議"_s,
                                       u"deadline"_s, u"שלום"_s,    u"a"_s};
        return words.at(below(int(words.size()))) + QString::number(below(1000)) + u' ';
    }

    void type()
    {
        Note &note = *m_notes.at(below(int(m_notes.size())));
        QString text = note.contentString();
        text = text.size() > 300 || below(20) == 0 ? QString() : QString(text + word());
        will(keyOf(note), noteValue(text));
        note.setContentString(text);
        done();
    }

    void save()
    {
        require(m_context.save().has_value(), "The journal can be saved");
        say("S");
    }

    void change()
    {
        switch (below(8)) {
        case 0:
            return rename();
        case 1:
            return rate();
        case 2:
            return m_teammates.size() < mostTeammates ? addTeammate() : rate();
        case 3:
            return m_sessions.size() < mostMeetings ? addMeeting() : deleteMeeting();
        case 4:
            return deleteMeeting();
        case 5:
            return below(4) == 0 ? deleteTeammate() : rate();
        case 6:
            return reverse(&UndoManager::undo);
        default:
            return reverse(below(2) == 0 ? &UndoManager::undo : &UndoManager::redo);
        }
    }

    void rename()
    {
        if (m_teammates.isEmpty())
            return addTeammate();
        Counterpart &teammate = *m_teammates.at(below(int(m_teammates.size())));
        const QString name = word();
        will(keyOf(teammate), teammateValue(name));
        teammate.setName(name);
        done();
    }

    void rate()
    {
        if (m_sessions.isEmpty())
            return addMeeting();
        Session &session = *m_sessions.at(below(int(m_sessions.size())));
        say("U");
        session.setPersonalSentiment(qint16(below(9)));
        session.setMeetingSentiment(qint16(below(7)));
        will(keyOf(session), valueOf(session));
        done();
    }

    void addTeammate()
    {
        say("U");
        m_context.insert<Counterpart>()->setName(word());
        tellOutcome();
    }

    void addMeeting()
    {
        if (m_teammates.isEmpty())
            return addTeammate();
        say("U");
        m_context.insert<Session>()->setCounterpart(m_teammates.at(below(int(m_teammates.size()))));
        tellOutcome();
    }

    void deleteMeeting()
    {
        if (m_sessions.isEmpty())
            return addMeeting();
        say("U");
        require(m_context.deleteObject(m_sessions.at(below(int(m_sessions.size())))).has_value(),
                "A meeting can be deleted");
        tellOutcome();
    }

    void deleteTeammate()
    {
        if (m_teammates.isEmpty())
            return addTeammate();
        say("U");
        require(m_context.deleteObject(m_teammates.at(below(int(m_teammates.size())))).has_value(),
                "A teammate can be deleted");
        tellOutcome();
    }

    void reverse(void (UndoManager::*undoOrRedo)())
    {
        say("U");
        (m_context.undoManager()->*undoOrRedo)();
        tellOutcome();
    }

    ManagedObjectContext &m_context;
    std::mt19937 m_random;
    bool m_doesEverything;
    JournalContents m_told;
    QList<std::shared_ptr<Counterpart>> m_teammates;
    QList<std::shared_ptr<Session>> m_sessions;
    QList<std::shared_ptr<Note>> m_notes;
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    require(arguments.size() == 4, "Usage: JournalWriter FOLDER SEED (types | does-everything)");
    const auto folder = DataFolder::forOptions({.dataDirectory = arguments.at(1)});
    ProgramServices services(*folder);
    services.derivedTexts.follow(services.coreData.viewContext());
    Writer writer(services.coreData.viewContext(), arguments.at(2).toUInt(),
                  arguments.at(3) == u"does-everything");

    // One thing at a time, each in a turn of its own, as input arrives.
    QTimer hand;
    hand.setSingleShot(true);
    QObject::connect(&hand, &QTimer::timeout, &hand, [&] {
        writer.step();
        hand.start(writer.below(60));
    });
    hand.start(0);
    return QCoreApplication::exec();
}
