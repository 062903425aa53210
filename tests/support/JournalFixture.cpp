#include "support/JournalFixture.h"

#include "Foundation/Precondition.h"
#include "Model/JournalModel.h"
#include "Model/JournalQueries.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QDateTime>
#include <QTimeZone>

namespace tembra {

using namespace Qt::StringLiterals;

Date utc(int year, int month, int day, int hour, int minute)
{
    const QDateTime moment(QDate(year, month, day), QTime(hour, minute), QTimeZone::utc());
    return Date::fromUnixMilliseconds(double(moment.toMSecsSinceEpoch()));
}

JournalFixture::JournalFixture(Date now, const QByteArray &vfs)
    : clock(now)
    , defaults(directory.filePath(u"settings.ini"_s), notifications)
    , calendar(u"UTC"_s)
    , dates(u"en_US"_s, u"UTC"_s, clock)
    , derivedTexts(clock, calendar, notifications)
    , services{clock, calendar, dates, defaults, derivedTexts}
    , m_vfs(vfs)
{
    defaults.registerDefaults();
    open();
    m_setup = std::make_unique<UndoManager::Suspension>(*context().undoManager());
}

JournalFixture::~JournalFixture() = default;

void JournalFixture::open()
{
    m_coreData = std::make_unique<CoreDataInterface>(
        [this] {
            return std::make_unique<PersistentContainer>(
                u"Tembra"_s, makeJournalModel(services),
                PersistentContainer::Options{.directory = directory.filePath(u"store"_s),
                                             .clock = &clock,
                                             .vfs = m_vfs});
        },
        defaults);
    derivedTexts.follow(m_coreData->viewContext());
}

void JournalFixture::reopen()
{
    m_setup.reset();
    m_coreData.reset();
    open();
}

std::shared_ptr<Counterpart> JournalFixture::addCounterpart(const QString &name) const
{
    const auto counterpart = context().insert<Counterpart>();
    counterpart->setName(name);
    return counterpart;
}

std::shared_ptr<Session> JournalFixture::addSession(const std::shared_ptr<Counterpart> &counterpart,
                                                    Date date) const
{
    const auto session = context().insert<Session>();
    session->setCounterpart(counterpart);
    session->setDate(date);
    return session;
}

std::shared_ptr<Session> JournalFixture::addSessionDaysAgo(
    const std::shared_ptr<Counterpart> &counterpart, double days) const
{
    return addSession(counterpart, clock.now().adding(-days * secondsPerDay));
}

std::shared_ptr<Tag> JournalFixture::addTag(const std::shared_ptr<Session> &session,
                                            const QString &name, const QString &emoji) const
{
    const auto tag = Tag::findOrCreate(context(), name, emoji);
    session->addTag(*tag);
    return tag;
}

std::shared_ptr<Note> JournalFixture::note(const std::shared_ptr<Session> &session,
                                           NoteIdentifier identifier) const
{
    for (const std::shared_ptr<Note> &note : session->sortedNotes()) {
        if (note->identifier() == qint16(identifier))
            return note;
    }
    fatal("Every meeting has a note of every field");
}

void JournalFixture::write(const std::shared_ptr<Session> &session, NoteIdentifier identifier,
                           const QString &text) const
{
    note(session, identifier)->setContentString(text);
}

QList<std::shared_ptr<Counterpart>> JournalFixture::counterparts() const
{
    const auto found = context().fetch<Counterpart>(JournalQueries::counterparts());
    require(found.has_value(), "The teammates can be fetched");
    return *found;
}

void JournalFixture::settle()
{
    context().processPendingChanges();
    const auto saved = context().save();
    require(saved.has_value(), "The journal can be saved");
    m_setup.reset();
}

} // namespace tembra
