#include "Model/TagMerger.h"

#include "Foundation/Logging.h"
#include "Model/JournalQueries.h"
#include "Model/RecordValues.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString marked(const QString &text)
{
    return text.isNull() ? u"-"_s : QString(u'+' + text);
}

void logTag(const char *how, const Tag &tag)
{
    qCDebug(importLog, "%s%s %s", how, qUtf8Printable(tag.titleString()),
            qUtf8Printable(
                tag.managedObjectContext()->container().uriRepresentation(tag.objectID())));
}

} // namespace

TagMerger::TagMerger(ManagedObjectContext &context) : m_context(context)
{
    const auto tags = context.fetch<Tag>(JournalQueries::allTags());
    if (!tags) {
        qCWarning(importLog, "Could not load tags: %s", qUtf8Printable(tags.error().description()));
        return;
    }
    for (const std::shared_ptr<Tag> &tag : *tags) {
        std::shared_ptr<Tag> &first = m_tags[keyOf(tag->name(), tag->emoji())];
        if (!first)
            first = tag;
    }
}

TagMerger::~TagMerger() = default;

TagMerger::NameAndEmoji TagMerger::keyOf(const QString &name, const QString &emoji)
{
    return {marked(name), marked(emoji)};
}

std::shared_ptr<Tag> TagMerger::tagFor(const TagValues &values)
{
    std::shared_ptr<Tag> &tag = m_tags[keyOf(values.attributes.text(Tag::nameProperty),
                                             values.attributes.text(Tag::emojiProperty))];
    if (tag) {
        logTag("Existing: ", *tag);
        return tag;
    }
    tag = m_context.insert<Tag>();
    values.attributes.assignTo(*tag);
    logTag("New: ", *tag);
    return tag;
}

} // namespace tembra
