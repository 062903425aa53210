// How the records of the journal are made of a backup.

#include "Model/RecordDecoding.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Model/Counterpart.h"
#include "Model/ImportedTags.h"
#include "Model/Note.h"
#include "Model/RecordValues.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QVariant>

Q_DECLARE_METATYPE(tembra::ManagedObjectContext *)
Q_DECLARE_METATYPE(std::shared_ptr<tembra::ImportedTags>)

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

const QString contextKey = u"context"_s;
const QString tagsKey = u"tags"_s;

/// The context handed over; it takes a program's mistake for there to be none.
ManagedObjectContext &decodingContext(JsonDecoder &decoder, const char *entityName)
{
    auto *context = decoder.userInfo().value(contextKey).value<ManagedObjectContext *>();
    require(context && context->container().model().entityIndex(entityName) >= 0,
            "Failed to decode User");
    return *context;
}

/// The tags that one reading has met so far.
ImportedTags &importedTags(JsonDecoder &decoder, ManagedObjectContext &context)
{
    QVariant &kept = decoder.userInfo()[tagsKey];
    if (!kept.isValid())
        kept = QVariant::fromValue(std::make_shared<ImportedTags>(context));
    return *kept.value<std::shared_ptr<ImportedTags>>();
}

void fill(Note &note, const NoteValues &values)
{
    note.setIdentifier(values.identifier);
    note.setContentString(values.contentString);
}

/// Those that take the place of a note made with the meeting leave it without a meeting, but in the
/// store.
void replaceNotes(const std::shared_ptr<Session> &session, const std::vector<NoteValues> &decoded)
{
    QMultiHash<qint16, std::shared_ptr<Note>> groups;
    for (const std::shared_ptr<Note> &note : session->notes())
        groups.insert(note->identifier(), note);
    for (const NoteValues &values : decoded) {
        const auto note = session->managedObjectContext()->insert<Note>();
        fill(*note, values);
        for (const std::shared_ptr<Note> &replaced : groups.values(note->identifier()))
            replaced->setSession({});
        note->setSession(session);
        groups.remove(note->identifier());
        groups.insert(note->identifier(), note);
    }
}

} // namespace

void setDecodingContext(JsonDecoder &decoder, ManagedObjectContext &context)
{
    decoder.userInfo().insert(contextKey, QVariant::fromValue(&context));
}

std::shared_ptr<Tag> Tag::decode(JsonDecoder &decoder)
{
    ManagedObjectContext &context = decodingContext(decoder, "Tag");
    const TagValues values = TagValues::decode(decoder);
    const auto tag = context.insert<Tag>();
    if (values.emoji)
        tag->setEmoji(*values.emoji);
    tag->setName(values.name);
    return tag;
}

std::shared_ptr<Note> Note::decode(JsonDecoder &decoder)
{
    ManagedObjectContext &context = decodingContext(decoder, "Note");
    const auto note = context.insert<Note>();
    fill(*note, NoteValues::decode(decoder));
    return note;
}

std::shared_ptr<Session> Session::decode(JsonDecoder &decoder)
{
    ManagedObjectContext &context = decodingContext(decoder, "Session");
    const SessionValues values = SessionValues::decode(decoder);
    const auto session = context.insert<Session>();
    session->setDate(values.date);
    session->setFlag(values.flag);
    session->setCounterpartSentiment(values.counterpartSentiment);
    session->setMeetingSentiment(values.meetingSentiment);
    session->setPersonalSentiment(values.personalSentiment);
    session->importID = values.objectID;
    for (const TagValues &tag : values.tags)
        session->addTag(*importedTags(decoder, context).tagFor(tag));
    if (values.notes)
        replaceNotes(session, *values.notes);
    return session;
}

std::shared_ptr<Counterpart> Counterpart::decode(JsonDecoder &decoder,
                                                 const std::function<void()> &didDecodeSession)
{
    ManagedObjectContext &context = decodingContext(decoder, "Counterpart");
    const auto counterpart = context.insert<Counterpart>();
    const auto values = CounterpartValues::decode(decoder, [&] {
        Session::decode(decoder)->setCounterpart(counterpart);
        if (didDecodeSession)
            didDecodeSession();
    });
    counterpart->setName(values.name);
    counterpart->importID = values.objectID;
    return counterpart;
}

} // namespace tembra
