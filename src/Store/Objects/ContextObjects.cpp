// The objects of a context: making, reading, finding what they are related to.

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"

#include <algorithm>

namespace tembra {

using namespace std::chrono_literals;

/// What a background context changed beyond that is told wholesale; nobody waits for each of a
/// hundred thousand records, and neither memory nor the main thread has room for them.
constexpr size_t mostRecordsToldSingly = 5000;

ManagedObjectContext::Private::Private(ManagedObjectContext &context, PersistentContainer &owner,
                                       ContextSetup given)
    : q(context)
    , container(owner)
    , setup(std::move(given))
    , connection(*setup.connection)
    , schema(owner.model())
    , reader(schema, connection)
    , writer(schema, connection)
    , leftovers(schema, connection, reader)
    , notifySignals(schema)
{
    if (setup.isBackground)
        sinceSave.setMostRecords(mostRecordsToldSingly);
    draftTimer.setSingleShot(true);
    QObject::connect(&draftTimer, &QTimer::timeout, &q, [this] { (void)writeDrafts(); });
    leftoverTimer.setSingleShot(true);
    QObject::connect(&leftoverTimer, &QTimer::timeout, &q, [this] { deleteSomeLeftovers(); });
}

ManagedObjectContext::Private::~Private()
{
    // Objects that outlive their context are on their own from here on.
    registry.forEach([](ManagedObject &object) { object.m_context = nullptr; });
}

std::shared_ptr<ManagedObject> ManagedObjectContext::Private::makeObject(ObjectID id,
                                                                         RowReader::Row values)
{
    const EntityDescription &entity = schema.entity(id.entity);
    std::shared_ptr<ManagedObject> made = entity.makeObject();
    made->m_context = &q;
    made->m_entity = &entity;
    made->m_id = id;
    registry.insert(*made);
    if (!values.empty())
        takeValues(*made, std::move(values));
    return made;
}

void ManagedObjectContext::Private::takeValues(ManagedObject &object, RowReader::Row values)
{
    object.m_values = std::move(values);
    object.awake();
}

std::shared_ptr<ManagedObject> ManagedObjectContext::Private::object(ObjectID id)
{
    if (id.isNull())
        return nullptr;
    if (auto live = registry.find(id))
        return live;
    Result<std::optional<RowReader::Row>> row = presentRow(id);
    if (!row) {
        qCWarning(storeLog, "A record could not be read: %s",
                  qUtf8Printable(row.error().description()));
        return nullptr;
    }
    return *row ? makeObject(id, std::move(**row)) : nullptr;
}

bool ManagedObjectContext::Private::exists(ObjectID id)
{
    if (registry.find(id))
        return true;
    if (!leftovers.isEmpty(id.entity)) {
        const auto row = presentRow(id);
        return row && *row;
    }
    const Result<bool> found = reader.exists(id);
    return found && *found;
}

Result<std::optional<RowReader::Row>> ManagedObjectContext::Private::presentRow(ObjectID id)
{
    Result<std::optional<RowReader::Row>> row = reader.row(id);
    if (row && *row && leftovers.includes(id, **row))
        row->reset();
    return row;
}

bool ManagedObjectContext::Private::load(ManagedObject &object)
{
    if (!object.m_values.empty())
        return true;
    Result<std::optional<RowReader::Row>> row = presentRow(object.m_id);
    if (!row) {
        qCWarning(storeLog, "A record could not be read: %s",
                  qUtf8Printable(row.error().description()));
        return false;
    }
    if (*row) {
        takeValues(object, std::move(**row));
        return true;
    }
    noteVanished(object.m_id);
    if (const auto gone = becomeDeleted(object.m_id))
        Q_EMIT gone->deleted();
    return false;
}

Result<void> ManagedObjectContext::Private::loadTogether(
    const QList<std::shared_ptr<ManagedObject>> &objects)
{
    std::vector<std::vector<qint64>> missing(size_t(schema.entityCount()));
    for (const auto &object : objects) {
        if (object->m_values.empty() && object->m_context == &q)
            missing[size_t(object->m_id.entity)].push_back(object->m_id.key);
    }
    std::vector<std::pair<std::shared_ptr<ManagedObject>, RowReader::Row>> loaded;
    for (int entity = 0; entity < schema.entityCount(); ++entity) {
        const auto take = [&](qint64 key, RowReader::Row row) {
            if (auto object = registry.find({entity, key}))
                loaded.emplace_back(std::move(object), std::move(row));
        };
        if (Result<void> done = reader.rows(entity, missing[size_t(entity)], take); !done)
            return done;
    }
    for (auto &[object, row] : loaded) {
        if (object->m_values.empty())
            takeValues(*object, std::move(row));
    }
    return {};
}

Result<QList<std::shared_ptr<ManagedObject>>> ManagedObjectContext::Private::objects(
    int entity, std::span<const qint64> keys, bool asFaults)
{
    QList<std::shared_ptr<ManagedObject>> found;
    found.reserve(qsizetype(keys.size()));
    for (const qint64 key : keys) {
        auto live = registry.find({entity, key});
        found.append(live ? std::move(live) : makeObject({entity, key}, {}));
    }
    if (asFaults)
        return found;
    if (const Result<void> done = loadTogether(found); !done)
        return failure(done.error());
    found.removeIf(
        [](const std::shared_ptr<ManagedObject> &object) { return object->m_values.empty(); });
    return found;
}

void ManagedObjectContext::Private::setPinned(ManagedObject &object, bool isPinned)
{
    if (isPinned)
        pinned.insert(object.m_id, object.shared_from_this());
    else
        pinned.remove(object.m_id);
}

std::vector<qint64> *ManagedObjectContext::Private::knownRelated(const ManagedObject &object,
                                                                 int property)
{
    const auto found = std::find_if(object.m_related.begin(), object.m_related.end(),
                                    [&](const auto &related) {
                                        return related.property == property;
                                    });
    return found == object.m_related.end() ? nullptr : &found->keys;
}

const std::vector<qint64> &ManagedObjectContext::Private::relatedKeys(const ManagedObject &owner,
                                                                      const ToManyDescription &link)
{
    static const std::vector<qint64> none;
    if (const auto *known = knownRelated(owner, link.property))
        return *known;
    const qint64 key = owner.m_id.key;
    if (const Result<void> done = readRelated(link, std::span(&key, 1)); !done) {
        qCWarning(storeLog, "A relationship could not be read: %s",
                  qUtf8Printable(done.error().description()));
        return none;
    }
    const auto *known = knownRelated(owner, link.property);
    return known ? *known : none;
}

Result<void> ManagedObjectContext::Private::readRelated(const ToManyDescription &link,
                                                        std::span<const qint64> owners)
{
    QHash<qint64, std::vector<qint64>> found;
    for (const qint64 owner : owners)
        found.insert(owner, {});
    const Result<void> done = reader.related(link, owners, [&](qint64 owner, qint64 other) {
        found[owner].push_back(other);
    });
    if (!done)
        return done;
    for (auto it = found.begin(); it != found.end(); ++it) {
        const auto owner = registry.find({link.entity, it.key()});
        if (!owner)
            continue;
        std::sort(it->begin(), it->end());
        overlayUnwritten(link, it.key(), *it);
        owner->m_related.push_back({link.property, std::move(*it)});
    }
    return {};
}

namespace {

void setContained(std::vector<qint64> &keys, qint64 key, bool contained)
{
    const auto place = std::lower_bound(keys.begin(), keys.end(), key);
    const bool known = place != keys.end() && *place == key;
    if (contained && !known)
        keys.insert(place, key);
    else if (!contained && known)
        keys.erase(place);
}

} // namespace

void ManagedObjectContext::Private::overlayUnwritten(const ToManyDescription &link, qint64 owner,
                                                     std::vector<qint64> &keys) const
{
    if (!link.joined) {
        for (const auto &object : unwritten.objects) {
            const bool counts = object->m_isNew
                                || (object->m_unwritten & propertyBit(link.inverse));
            if (counts && object->m_id.entity == link.destination && !object->m_deleted)
                setContained(keys, object->m_id.key,
                             object->m_values[size_t(link.inverse)] == Value(owner));
        }
        return;
    }
    const LinkKey pattern = LinkKey::of(link, owner, 0);
    for (auto it = unwritten.links.cbegin(); it != unwritten.links.cend(); ++it) {
        const LinkKey &key = it.key();
        if (key.entity != pattern.entity || key.property != pattern.property)
            continue;
        if ((link.canonical ? key.owner : key.other) == owner)
            setContained(keys, link.canonical ? key.other : key.owner, it.value());
    }
}

bool ManagedObjectContext::Private::isLinked(const ManagedObject &owner, const ToManyDescription &link,
                                             const ManagedObject &other)
{
    if (const auto *known = knownRelated(owner, link.property))
        return std::binary_search(known->begin(), known->end(), other.m_id.key);
    if (const auto *known = knownRelated(other, link.inverse))
        return std::binary_search(known->begin(), known->end(), owner.m_id.key);
    const auto edited = unwritten.links.constFind(
        LinkKey::of(link, owner.m_id.key, other.m_id.key));
    if (edited != unwritten.links.cend())
        return *edited;
    const Result<bool> linked = reader.isLinked(link, owner.m_id.key, other.m_id.key);
    return linked && *linked;
}

void ManagedObjectContext::Private::relate(ObjectID owner, int property, qint64 key, bool related,
                                           Announcements &announcements)
{
    if (property < 0 || owner.isNull())
        return;
    auto live = registry.find(owner);
    if (!live)
        return;
    if (auto *known = knownRelated(*live, property))
        setContained(*known, key, related);
    announcements.emplace_back(std::move(live), property);
}

} // namespace tembra
