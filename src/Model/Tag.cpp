#include "Model/Tag.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Model/JournalQueries.h"
#include "Model/RecordDecoding.h"
#include "Model/RecordValues.h"
#include "Model/Session.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Results/FetchedResultsController.h"

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// A missing text equals only a missing one, not an empty one.
bool sameText(const QString &left, const QString &right)
{
    return left.isNull() == right.isNull() && left == right;
}

/// Code-point order, a missing text before every other.
int compareTexts(const QString &left, const QString &right)
{
    if (left.isNull() || right.isNull())
        return int(right.isNull()) - int(left.isNull());
    // QString compares UTF-16 units, which puts surrogates before U+E000: UTF-8 keeps the order.
    return left.toUtf8().compare(right.toUtf8());
}

} // namespace

Tag::Tag(const JournalServices &) {}

void Tag::awakeFromInsert()
{
    setEmoji(defaultEmoji());
}

QString Tag::defaultEmoji()
{
    return u"🏷"_s;
}

bool Tag::comesBefore(const QString &name, const QString &emoji, const QString &otherName,
                      const QString &otherEmoji)
{
    if (const int byName = compareTexts(name, otherName))
        return byName < 0;
    return compareTexts(emoji, otherEmoji) < 0;
}

void Tag::awake()
{
    updateTitleString();
    m_nameObservation = connect(this, &Tag::nameChanged, this, &Tag::updateTitleString);
    m_emojiObservation = connect(this, &Tag::emojiChanged, this, &Tag::updateTitleString);
}

QString Tag::titleString() const
{
    // It is made when the record is loaded, which this may be the first to ask for.
    (void)value(nameProperty);
    return m_titleString;
}

void Tag::updateTitleString()
{
    m_titleString = name() + u' ' + emoji();
    Q_EMIT titleStringChanged();
}

QList<std::shared_ptr<Session>> Tag::sessions() const
{
    return related<Session>(sessionsProperty);
}

void Tag::addSession(const Session &session)
{
    addRelated(sessionsProperty, session);
}

std::unique_ptr<FetchedResultsController> Tag::sessionsResultController() const
{
    require(managedObjectContext(), "a tag whose sessions are listed is in the store");
    return std::make_unique<FetchedResultsController>(*managedObjectContext(),
                                                      JournalQueries::sessionsCarrying(objectID()));
}

std::shared_ptr<Tag> Tag::findOrCreate(ManagedObjectContext &context, const QString &name,
                                       const QString &emoji)
{
    const auto created = context.insert<Tag>();
    created->setName(name);
    created->setEmoji(emoji);

    const auto tags = context.fetch<Tag>(JournalQueries::allTags());
    if (!tags) {
        qCWarning(modelLog, "Could not load tags: %s", qUtf8Printable(tags.error().description()));
        return created;
    }
    const auto existing = std::find_if(tags->begin(), tags->end(),
                                       [&](const std::shared_ptr<Tag> &tag) {
                                           return tag != created && sameText(tag->name(), name)
                                                  && sameText(tag->emoji(), emoji);
                                       });
    if (existing == tags->end())
        return created;
    if (const auto deletion = context.deleteObject(created); !deletion)
        qCWarning(modelLog, "Could not delete a tag: %s",
                  qUtf8Printable(deletion.error().description()));
    return *existing;
}

std::unique_ptr<FetchedResultsController> Tag::allTagsResultController(ManagedObjectContext &context)
{
    return std::make_unique<FetchedResultsController>(context, JournalQueries::allTags());
}

void Tag::encode(JsonEncoder &encoder) const
{
    require(managedObjectContext(), "a tag that is written is in the store");
    TagValues values{.objectID = managedObjectContext()->container().uriRepresentation(objectID())};
    values.attributes.set(emojiProperty, value(emojiProperty));
    values.attributes.set(nameProperty, value(nameProperty));
    values.encode(encoder);
}

std::shared_ptr<Tag> Tag::decode(JsonDecoder &decoder)
{
    ManagedObjectContext &context = decodingContext(decoder, "Tag");
    const TagValues values = TagValues::decode(decoder);
    const auto tag = context.insert<Tag>();
    values.attributes.assignTo(*tag);
    return tag;
}

} // namespace tembra
