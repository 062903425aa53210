// Edits: inserting, setting values, linking, and telling what changed.

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Foundation/Text/WellFormedText.h"
#include "Store/File/IdAllocator.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Undo/UndoHistory.h"
#include "Store/Undo/UndoManager.h"

namespace tembra {

namespace {

/// How many new objects a background context gathers before it writes and lets go of them.
constexpr size_t pieceSize = 500;

bool isOfKind(const Value &value, const EntityDescription &entity, int property)
{
    if (isMissing(value))
        return true;
    if (entity.kindOf(property) == PropertyKind::ToOne)
        return std::holds_alternative<qint64>(value);
    switch (entity.attributeAt(property).type) {
    case AttributeType::Text:
        return std::holds_alternative<QString>(value);
    case AttributeType::Integer16:
        return std::holds_alternative<qint64>(value);
    case AttributeType::Date:
        return std::holds_alternative<double>(value);
    }
    return false;
}

qint64 keyOf(const Value &toOne)
{
    const auto *key = std::get_if<qint64>(&toOne);
    return key ? *key : 0;
}

} // namespace

std::shared_ptr<ManagedObject> ManagedObjectContext::Private::insert(int entity)
{
    if (setup.isBackground && unwritten.objects.size() >= pieceSize)
        (void)writePiece(); // A failure is remembered, and told by save().
    const ObjectID id{entity, setup.ids->next()};
    const std::shared_ptr<ManagedObject> object = makeObject(id, {});
    object->m_values.assign(size_t(schema.entity(entity).columnCount()), Value());
    // Nothing can have been related to a record that did not exist.
    for (const ToManyDescription &link : schema.entity(entity).toManys)
        object->m_related.push_back({link.property, {}});
    object->m_isNew = true;
    if (setup.isBackground)
        inserted.add(id.key);
    unwritten.objects.push_back(object);
    startDraftTimer();
    note([&](PendingChanges &changes) { changes.noteInserted({id, allProperties, {}}); });
    if (UndoHistory *history = recorder())
        history->recordInserted({id});
    object->awakeFromInsert();
    object->awake();
    didEdit();
    return object;
}

void ManagedObjectContext::Private::setColumn(ManagedObject &object, int property, Value value)
{
    const EntityDescription &entity = schema.entity(object.m_id.entity);
    require(property >= 0 && property < entity.columnCount(), "the property has a column");
    require(isOfKind(value, entity, property), "the value is of the property's type");
    const std::shared_ptr<ManagedObject> self = object.shared_from_this();
    if (!load(object))
        return;
    if (auto *text = std::get_if<QString>(&value))
        value = textValue(wellFormedText(std::move(*text)));
    if (object.m_values[size_t(property)] == value)
        return;
    const ToOneDescription *toOne = schema.entity(object.m_id.entity).toOne(property);
    if (toOne && !isMissing(value) && !exists({toOne->destination, keyOf(value)}))
        return;
    const Value before = std::exchange(object.m_values[size_t(property)], value);
    markUnwritten(object, propertyBit(property));
    if (UndoHistory *history = recorder())
        history->recordValue(object.m_id, property, before, value);
    Announcements announcements{{self, property}};
    noteColumn(object, property, before, value, announcements);
    didEdit();
    announce(announcements);
}

void ManagedObjectContext::Private::noteColumn(const ManagedObject &object, int property,
                                               const Value &before, const Value &after,
                                               Announcements &announcements)
{
    const ToOneDescription *toOne = schema.entity(object.m_id.entity).toOne(property);
    if (!toOne) {
        note([&](PendingChanges &changes) {
            changes.noteUpdated(object.m_id, propertyBit(property));
        });
        return;
    }
    const ToOneChange change{property, keyOf(before), keyOf(after)};
    note([&](PendingChanges &changes) { changes.noteToOne(object.m_id, change); });
    relate({toOne->destination, change.oldKey}, toOne->inverse, object.m_id.key, false,
           announcements);
    relate({toOne->destination, change.newKey}, toOne->inverse, object.m_id.key, true,
           announcements);
}

void ManagedObjectContext::Private::setLinked(ManagedObject &owner, int property,
                                              ManagedObject &other, bool linked)
{
    const ToManyDescription &link = schema.entity(owner.m_id.entity).toMany(property);
    require(other.m_id.entity == link.destination,
            "the related record is of the relationship's entity");
    if (other.m_deleted)
        return;
    require(other.m_context == &q, "related records belong to one context");
    if (!link.joined) {
        const Value ownKey = Value(owner.m_id.key);
        if (linked || other.value(link.inverse) == ownKey)
            setColumn(other, link.inverse, linked ? ownKey : Value());
        return;
    }
    if (isLinked(owner, link, other) == linked)
        return;
    unwritten.links.insert(LinkKey::of(link, owner.m_id.key, other.m_id.key), linked);
    startDraftTimer();
    if (UndoHistory *history = recorder())
        history->recordLink(owner.m_id, property, other.m_id, linked);
    note([&](PendingChanges &changes) {
        changes.noteUpdated(owner.m_id, propertyBit(property));
        changes.noteUpdated(other.m_id, propertyBit(link.inverse));
    });
    Announcements announcements;
    relate(owner.m_id, property, other.m_id.key, linked, announcements);
    relate(other.m_id, link.inverse, owner.m_id.key, linked, announcements);
    didEdit();
    announce(announcements);
}

void ManagedObjectContext::Private::markUnwritten(ManagedObject &object, PropertyMask columns)
{
    if (!object.m_isNew && object.m_unwritten == 0)
        unwritten.objects.push_back(object.shared_from_this());
    object.m_unwritten |= columns;
    startDraftTimer();
}

void ManagedObjectContext::Private::announce(const Announcements &announcements)
{
    for (const auto &[object, property] : announcements)
        object->emitChangeOf(property);
}

void ManagedObjectContext::Private::didEdit()
{
    ++edits;
    scheduleTurnEnd();
    if (!std::exchange(hasChanges, true))
        Q_EMIT q.hasChangesChanged(true);
}

void ManagedObjectContext::Private::scheduleTurnEnd()
{
    if (setup.isBackground || std::exchange(turnEndScheduled, true))
        return;
    QMetaObject::invokeMethod(
        &q, [this] { endTurn(); }, Qt::QueuedConnection);
}

void ManagedObjectContext::Private::endTurn()
{
    turnEndScheduled = false;
    undoManager->endTurn();
    tellChanges();
}

void ManagedObjectContext::Private::tellChanges()
{
    if (turn.isEmpty())
        return;
    const ChangeSet changes = turn.take();
    if (changes.isEmpty())
        return;
    Q_EMIT q.objectsDidChange(changes);
    if (draftsFail)
        unseenByQueries.noteAsUpdates(changes);
}

UndoHistory *ManagedObjectContext::Private::recorder() const
{
    return undoManager ? undoManager->recorder() : nullptr;
}

} // namespace tembra
