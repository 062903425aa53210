#include "Model/Note.h"

#include "Foundation/Logging.h"
#include "Foundation/Time/DateFormatting.h"
#include "Model/DerivedTexts.h"
#include "Model/JournalQueries.h"
#include "Model/JournalServices.h"
#include "Model/RecordDecoding.h"
#include "Model/RecordValues.h"
#include "Model/Session.h"
#include "Store/Objects/ManagedObjectContext.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// The latest filled note of a field; the list is empty when there is none.
Result<QList<std::shared_ptr<Note>>> fetchLastEntry(ManagedObjectContext &context,
                                                    ObjectID counterpart, qint16 identifier)
{
    FetchRequest request = JournalQueries::filledNotes(counterpart, identifier);
    request.fetchLimit = 1;
    return context.fetch<Note>(request);
}

} // namespace

Note::Note(const JournalServices &services) : m_services(services) {}

Note::~Note()
{
    m_services.derivedTexts.remove(this);
}

void Note::awake()
{
    m_services.derivedTexts.add(this);
}

std::shared_ptr<Session> Note::session() const
{
    return toOne<Session>(sessionProperty);
}

void Note::setSession(const std::shared_ptr<Session> &session)
{
    setToOne(sessionProperty, session);
}

QString Note::lastDateString() const
{
    if (!m_lastDateString)
        m_lastDateString = computeLastDateString();
    return *m_lastDateString;
}

QString Note::computeLastDateString() const
{
    const QString never = tr("Never", "Value for no previous note entry found");
    const std::shared_ptr<Session> meeting = session();
    if (!managedObjectContext() || !meeting)
        return never;
    const ObjectID counterpart = meeting->toOneID(Session::counterpartProperty);
    if (counterpart.isNull())
        return never;
    const auto entries = fetchLastEntry(*managedObjectContext(), counterpart, identifier());
    if (!entries) {
        qCWarning(modelLog, "Could not fetch the last note: %s",
                  qUtf8Printable(entries.error().description()));
        return tr("Failed", "Value when looking for previous note entries failed");
    }
    if (entries->isEmpty())
        return never;
    const QString date = entries->first()->session()->dateText();
    // Nothing at all would read as if there were no entry.
    return date.isEmpty()
               ? tr("No date", "Value for a previous note entry of a meeting without a date")
               : date;
}

QString Note::fullLastDateLabel() const
{
    return tr("Last note", "Label to indicate note staleness") + u": "_s + lastDateString();
}

void Note::invalidateDerived()
{
    m_lastDateString.reset();
    Q_EMIT derivedChanged();
}

std::shared_ptr<Note> Note::lastEntry(ManagedObjectContext &context, ObjectID counterpart,
                                      qint16 identifier)
{
    const auto entries = fetchLastEntry(context, counterpart, identifier);
    return entries && !entries->isEmpty() ? entries->first() : nullptr;
}

void Note::encode(JsonEncoder &encoder) const
{
    NoteValues values;
    values.attributes.set(identifierProperty, value(identifierProperty));
    values.attributes.set(contentStringProperty, value(contentStringProperty));
    values.encode(encoder);
}

std::shared_ptr<Note> Note::decode(JsonDecoder &decoder)
{
    ManagedObjectContext &context = decodingContext(decoder, "Note");
    const auto note = context.insert<Note>();
    NoteValues::decode(decoder).attributes.assignTo(*note);
    return note;
}

} // namespace tembra
