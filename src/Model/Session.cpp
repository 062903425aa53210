#include "Model/Session.h"

#include "Foundation/Precondition.h"
#include "Foundation/Time/Clock.h"
#include "Foundation/Time/DateFormatting.h"
#include "Model/Counterpart.h"
#include "Model/DerivedTexts.h"
#include "Model/JournalEncoding.h"
#include "Model/JournalServices.h"
#include "Model/Note.h"
#include "Model/RecordDecoding.h"
#include "Model/RecordValues.h"
#include "Model/SentimentScale.h"
#include "Model/Tag.h"
#include "Model/TagMerger.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString emojiOnScale(const SentimentScale &scale, qint16 value, const DefaultsManager &defaults)
{
    return scale.contains(value) ? scale.emoji(value, defaults) : QString();
}

bool isEarlierTag(const std::shared_ptr<Tag> &left, const std::shared_ptr<Tag> &right)
{
    if (Tag::comesBefore(left->name(), left->emoji(), right->name(), right->emoji()))
        return true;
    if (Tag::comesBefore(right->name(), right->emoji(), left->name(), left->emoji()))
        return false;
    return left->objectID().key < right->objectID().key;
}

/// A note that takes the place of one made with the meeting leaves that one without a meeting, but
/// in the store.
void replaceNotes(const std::shared_ptr<Session> &session, const std::vector<NoteValues> &decoded)
{
    QMultiHash<qint16, std::shared_ptr<Note>> groups;
    for (const std::shared_ptr<Note> &note : session->notes())
        groups.insert(note->identifier(), note);
    for (const NoteValues &values : decoded) {
        const auto note = session->managedObjectContext()->insert<Note>();
        values.attributes.assignTo(*note);
        for (const std::shared_ptr<Note> &replaced : groups.values(note->identifier()))
            replaced->setSession({});
        note->setSession(session);
        groups.remove(note->identifier());
        groups.insert(note->identifier(), note);
    }
}

} // namespace

Session::Session(const JournalServices &services) : m_services(services) {}

Session::~Session()
{
    m_services.derivedTexts.remove(this);
}

void Session::awakeFromInsert()
{
    setDate(m_services.clock.now());
    for (const Note::Identifier identifier : allNoteIdentifiers()) {
        const auto note = managedObjectContext()->insert<Note>();
        note->setSession(std::static_pointer_cast<Session>(shared_from_this()));
        note->setIdentifier(qint16(identifier));
    }
}

void Session::awake()
{
    m_services.derivedTexts.add(this);
}

void Session::prepareForDeletion()
{
    // It may take itself away.
    if (const auto callback = m_onDeletion)
        callback();
}

std::shared_ptr<Counterpart> Session::counterpart() const
{
    return toOne<Counterpart>(counterpartProperty);
}

void Session::setCounterpart(const std::shared_ptr<Counterpart> &counterpart)
{
    setToOne(counterpartProperty, counterpart);
}

QList<std::shared_ptr<Note>> Session::notes() const
{
    return related<Note>(notesProperty);
}

QList<std::shared_ptr<Tag>> Session::tags() const
{
    return related<Tag>(tagsProperty);
}

void Session::addTag(const Tag &tag)
{
    addRelated(tagsProperty, tag);
}

void Session::removeTag(const Tag &tag)
{
    removeRelated(tagsProperty, tag);
}

void Session::setOnDeletion(std::function<void()> onDeletion)
{
    m_onDeletion = std::move(onDeletion);
    setPinned(bool(m_onDeletion));
}

QString Session::emojiSummary() const
{
    return joinedEmoji(u' ');
}

QString Session::emojiColumn() const
{
    return joinedEmoji(u'\n');
}

QString Session::joinedEmoji(QChar separator) const
{
    const SentimentScale &personal = SentimentScale::personal();
    const SentimentScale &meeting = SentimentScale::meeting();
    // The separators are always there, also around a value off its scale.
    return emojiOnScale(personal, personalSentiment(), m_services.defaults) + separator
           + emojiOnScale(meeting, meetingSentiment(), m_services.defaults) + separator
           + emojiOnScale(personal, counterpartSentiment(), m_services.defaults);
}

QString Session::dateText() const
{
    const OptionalDate moment = date();
    return moment ? m_services.dates.displayDate(*moment) : u""_s;
}

QString Session::sessionSummary() const
{
    return dateText() + u' ' + emojiSummary();
}

QList<std::shared_ptr<Note>> Session::sortedNotes() const
{
    QList<std::shared_ptr<Note>> sorted = notes();
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto &left, const auto &right) {
        return std::pair(left->identifier(), left->objectID().key)
               < std::pair(right->identifier(), right->objectID().key);
    });
    return sorted;
}

QList<std::shared_ptr<Tag>> Session::sortedTags() const
{
    QList<std::shared_ptr<Tag>> sorted = tags();
    std::stable_sort(sorted.begin(), sorted.end(), isEarlierTag);
    return sorted;
}

QString Session::tagEmojiSummary() const
{
    QString summary = u""_s;
    for (const std::shared_ptr<Tag> &tag : sortedTags())
        summary += tag->emoji();
    return summary;
}

void Session::invalidateDerived()
{
    Q_EMIT derivedChanged();
}

Result<void> Session::encode(JsonEncoder &encoder) const
{
    require(managedObjectContext(), "a meeting that is written is in the store");
    const qint64 key = objectID().key;
    return JournalEncoding::begin(*managedObjectContext(), encoder)
        .and_then([&](JournalEncoding &&encoding) {
            return encoding.encodeSessions(std::span(&key, 1));
        });
}

std::shared_ptr<Session> Session::decode(JsonDecoder &decoder)
{
    ManagedObjectContext &context = decodingContext(decoder, "Session");
    const SessionValues values = SessionValues::decode(decoder);
    const auto session = context.insert<Session>();
    values.attributes.assignTo(*session);
    session->importID = values.objectID;
    for (const TagValues &tag : values.tags)
        session->addTag(*decodingTagMerger(decoder, context).tagFor(tag));
    if (values.notes)
        replaceNotes(session, *values.notes);
    return session;
}

} // namespace tembra
