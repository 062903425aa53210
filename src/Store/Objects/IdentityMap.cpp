#include "Store/Objects/IdentityMap.h"

#include "Foundation/Logging.h"
#include "Store/Objects/ChangeTracker.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/RelationshipCache.h"
#include "Store/Rows/RowReader.h"
#include "Store/Schema/ObjectModel.h"

#include <utility>

namespace tembra {

namespace {

void logReadFailure(const Error &error)
{
    qCWarning(storeLog, "A record could not be read: %s", qUtf8Printable(error.description()));
}

} // namespace

IdentityMap::IdentityMap(ManagedObjectContext &context, const ObjectModel &schema,
                         RowReader &reader, RelationshipCache &relationships,
                         ChangeTracker &changes)
    : m_context(context)
    , m_schema(schema)
    , m_reader(reader)
    , m_relationships(relationships)
    , m_changes(changes)
{
}

IdentityMap::~IdentityMap()
{
    for (ManagedObject *object : std::as_const(m_objects))
        object->m_context = nullptr;
}

std::shared_ptr<ManagedObject> IdentityMap::find(ObjectID id) const
{
    ManagedObject *object = m_objects.value(id);
    // An object whose destructor runs right now is still listed, but cannot be held any more.
    return object ? object->weak_from_this().lock() : nullptr;
}

IdentityMap::ObjectList IdentityMap::liveObjects() const
{
    ObjectList live;
    live.reserve(m_objects.size());
    for (ManagedObject *object : m_objects) {
        if (auto held = object->weak_from_this().lock())
            live.append(std::move(held));
    }
    return live;
}

std::shared_ptr<ManagedObject> IdentityMap::makeObject(ObjectID id)
{
    const EntityDescription &entity = m_schema.entity(id.entity);
    std::shared_ptr<ManagedObject> made = entity.makeObject();
    made->m_context = &m_context;
    made->m_entity = &entity;
    made->m_id = id;
    m_objects.insert(id, made.get());
    return made;
}

std::shared_ptr<ManagedObject> IdentityMap::object(ObjectID id)
{
    if (id.isNull())
        return nullptr;
    if (auto live = find(id))
        return live;
    Result<std::optional<RowReader::Row>> row = m_reader.row(id);
    if (!row)
        logReadFailure(row.error());
    if (!row || !*row)
        return nullptr;
    auto made = makeObject(id);
    setValues(*made, std::move(**row));
    return made;
}

Result<IdentityMap::ObjectList> IdentityMap::objects(int entity, std::span<const qint64> keys,
                                                     Loading loading)
{
    ObjectList found;
    found.reserve(qsizetype(keys.size()));
    for (const qint64 key : keys) {
        auto live = find({entity, key});
        found.append(live ? std::move(live) : makeObject({entity, key}));
    }
    if (loading == Loading::AsFaults)
        return found;
    if (const Result<void> done = loadTogether(found); !done)
        return failure(done.error());
    found.removeIf([](const std::shared_ptr<ManagedObject> &object) { return isFault(*object); });
    return found;
}

std::shared_ptr<ManagedObject> IdentityMap::insert(ObjectID id)
{
    auto made = makeObject(id);
    made->m_values.assign(size_t(m_schema.entity(id.entity).columnCount()), Value());
    m_relationships.insertEmpty(id);
    return made;
}

void IdentityMap::awakeInserted(ManagedObject &object)
{
    object.awakeFromInsert();
    object.awake();
}

bool IdentityMap::exists(ObjectID id)
{
    if (const auto live = find(id))
        return live->isLive();
    const Result<bool> found = m_reader.exists(id);
    return found && *found;
}

void IdentityMap::remove(const ManagedObject &object)
{
    const auto found = m_objects.constFind(object.objectID());
    // Another object may have taken its place.
    if (found == m_objects.cend() || *found != &object)
        return;
    m_objects.erase(found);
    m_relationships.forget(object.objectID());
}

bool IdentityMap::isFault(const ManagedObject &object)
{
    return object.m_values.empty();
}

bool IdentityMap::load(ManagedObject &object)
{
    if (!isFault(object))
        return true;
    Result<std::optional<RowReader::Row>> row = m_reader.row(object.m_id);
    if (!row) {
        logReadFailure(row.error());
        return false;
    }
    if (*row)
        setValues(object, std::move(**row));
    else
        notifyDeleted(takeVanished(std::span(&object.m_id, 1)));
    return row->has_value();
}

Result<void> IdentityMap::loadTogether(const ObjectList &objects)
{
    std::vector<std::vector<qint64>> missing(size_t(m_schema.entityCount()));
    for (const auto &object : objects) {
        if (isFault(*object) && object->m_context == &m_context)
            missing[size_t(object->m_id.entity)].push_back(object->m_id.key);
    }
    std::vector<std::pair<std::shared_ptr<ManagedObject>, RowReader::Row>> loaded;
    for (int entity = 0; entity < m_schema.entityCount(); ++entity) {
        const auto take = [&](qint64 key, RowReader::Row row) {
            if (auto object = find({entity, key}))
                loaded.emplace_back(std::move(object), std::move(row));
        };
        if (Result<void> done = m_reader.rows(entity, missing[size_t(entity)], take); !done)
            return done;
    }
    for (auto &[object, row] : loaded)
        setValues(*object, std::move(row));
    return {};
}

void IdentityMap::setValues(ManagedObject &object, std::vector<Value> values)
{
    if (!isFault(object))
        return;
    object.m_values = std::move(values);
    object.awake();
}

const std::vector<Value> &IdentityMap::values(const ManagedObject &object)
{
    return object.m_values;
}

Value IdentityMap::replaceValue(ManagedObject &object, int property, Value value)
{
    return std::exchange(object.m_values[size_t(property)], std::move(value));
}

void IdentityMap::setPinned(ManagedObject &object, bool pinned)
{
    if (pinned)
        m_pinned.insert(object.m_id, object.shared_from_this());
    else
        m_pinned.remove(object.m_id);
}

void IdentityMap::beginDeletion(const ObjectList &objects)
{
    for (const auto &object : objects)
        object->m_state = ManagedObject::State::BeingDeleted;
    for (const auto &object : objects)
        object->prepareForDeletion();
}

std::shared_ptr<ManagedObject> IdentityMap::takeDeleted(ObjectID id)
{
    auto object = find(id);
    if (!object)
        return nullptr;
    remove(*object);
    object->m_state = ManagedObject::State::Deleted;
    object->m_context = nullptr;
    m_pinned.remove(id);
    return object;
}

IdentityMap::ObjectList IdentityMap::takeVanished(std::span<const ObjectID> ids)
{
    ObjectList vanished;
    for (const ObjectID id : ids) {
        auto object = takeDeleted(id);
        m_changes.addDeleted(deletionOf(id, object ? object->m_values : std::vector<Value>(),
                                        m_schema.entity(id.entity)));
        if (object)
            vanished.append(std::move(object));
    }
    return vanished;
}

void IdentityMap::notifyDeleted(const ObjectList &objects)
{
    for (const auto &object : objects)
        Q_EMIT object->deleted();
}

} // namespace tembra
