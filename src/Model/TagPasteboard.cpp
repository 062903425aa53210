#include "Model/TagPasteboard.h"

#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <plist/plist.h>

#include <cstdlib>

namespace tembra::TagPasteboard {

namespace {

/// More than all tags of anybody need; what another program offers is not read beyond it.
constexpr qsizetype longestData = 16 << 20;

struct FreePropertyList
{
    void operator()(void *list) const { plist_free(list); }
};
using PropertyList = std::unique_ptr<void, FreePropertyList>;

QByteArray uriOf(const Tag &tag)
{
    const ManagedObjectContext *context = tag.managedObjectContext();
    return context ? context->container().uriRepresentation(tag.objectID()).toUtf8() : QByteArray();
}

QString textAt(plist_t array, uint32_t index)
{
    const plist_t item = plist_array_get_item(array, index);
    if (plist_get_node_type(item) != PLIST_STRING)
        return {};
    char *text = nullptr;
    plist_get_string_val(item, &text);
    const QString uri = QString::fromUtf8(text);
    std::free(text);
    return uri;
}

PropertyList parse(const QByteArray &data)
{
    plist_t list = nullptr;
    if (!data.isEmpty() && data.size() <= longestData)
        plist_from_memory(data.constData(), uint32_t(data.size()), &list);
    return PropertyList(list);
}

std::shared_ptr<Tag> tagAt(const QString &uri, ManagedObjectContext &context)
{
    const PersistentContainer &container = context.container();
    const auto id = container.objectIDForURI(uri);
    if (!id || id->entity != container.model().entityIndex(Tag::entityName()))
        return {};
    return context.object<Tag>(*id);
}

} // namespace

QByteArray encode(const QList<std::shared_ptr<Tag>> &tags)
{
    const PropertyList array(plist_new_array());
    for (const std::shared_ptr<Tag> &tag : tags) {
        if (const QByteArray uri = uriOf(*tag); !uri.isEmpty())
            plist_array_append_item(array.get(), plist_new_string(uri.constData()));
    }
    if (plist_array_get_size(array.get()) == 0)
        return {};
    char *bytes = nullptr;
    uint32_t size = 0;
    plist_to_bin(array.get(), &bytes, &size);
    const QByteArray data(bytes, bytes ? qsizetype(size) : 0);
    std::free(bytes);
    return data;
}

QList<std::shared_ptr<Tag>> decode(const QByteArray &data, ManagedObjectContext &context)
{
    QList<std::shared_ptr<Tag>> tags;
    const PropertyList list = parse(data);
    if (!list || plist_get_node_type(list.get()) != PLIST_ARRAY)
        return tags;
    for (uint32_t i = 0; i < plist_array_get_size(list.get()); ++i) {
        if (const auto tag = tagAt(textAt(list.get(), i), context))
            tags.append(tag);
    }
    return tags;
}

} // namespace tembra::TagPasteboard
