#include "Store/Objects/RecordEditor.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/WellFormedText.h"
#include "Store/File/IdAllocator.h"
#include "Store/Objects/ChangeTracker.h"
#include "Store/Objects/ContextWriter.h"
#include "Store/Objects/IdentityMap.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Objects/PropertyNotifications.h"
#include "Store/Objects/RelationshipCache.h"
#include "Store/Undo/UndoHistory.h"

namespace tembra {

namespace {

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

std::shared_ptr<ManagedObject> RecordEditor::insert(int entity)
{
    const ObjectID id{entity, m.ids.next()};
    m.writer.willInsert(id);
    const std::shared_ptr<ManagedObject> object = m.objects.insert(id);
    m.edits.addInserted(object);
    m.writer.didAddEdits();
    m.changes.addInserted({id, allProperties, {}});
    if (m.history)
        m.history->recordInserted({id});
    IdentityMap::awakeInserted(*object);
    m.changes.didEdit();
    return object;
}

void RecordEditor::setValue(ManagedObject &object, int property, Value value)
{
    const EntityDescription &entity = object.entity();
    require(property >= 0 && property < entity.columnCount(), "the property has a column");
    require(isOfKind(value, entity, property), "the value is of the property's type");
    const std::shared_ptr<ManagedObject> self = object.shared_from_this();
    if (!object.isLive() || !m.objects.load(object))
        return;
    if (auto *text = std::get_if<QString>(&value))
        value = textValue(wellFormedText(std::move(*text)));
    if (object.value(property) == value)
        return;
    const ObjectID id = object.objectID();
    const ToOneDescription *toOne = m.schema.entity(id.entity).toOne(property);
    if (toOne && !isMissing(value) && !m.objects.exists({toOne->destination, keyOf(value)}))
        return;
    const Value before = IdentityMap::replaceValue(object, property, value);
    m.edits.addUpdated(object, propertyBit(property));
    m.writer.didAddEdits();
    if (m.history)
        m.history->recordValue(id, property, before, value);
    PropertyNotifications notifications;
    notifications.add(self, property);
    trackValue(object, property, before, value, notifications);
    m.changes.didEdit();
    notifications.emitAll();
}

void RecordEditor::trackValue(const ManagedObject &object, int property, const Value &before,
                              const Value &after, PropertyNotifications &notifications)
{
    const ObjectID id = object.objectID();
    const ToOneDescription *toOne = m.schema.entity(id.entity).toOne(property);
    if (!toOne) {
        m.changes.addUpdated(id, propertyBit(property));
        return;
    }
    const ToOneChange change{property, keyOf(before), keyOf(after)};
    m.changes.addToOne(id, change);
    setRelatedKey({toOne->destination, change.oldKey}, toOne->inverse, id.key, false,
                  notifications);
    setRelatedKey({toOne->destination, change.newKey}, toOne->inverse, id.key, true, notifications);
}

void RecordEditor::setRelated(ManagedObject &owner, int property, ManagedObject &other,
                              bool related)
{
    const ObjectID id = owner.objectID();
    const ToManyDescription &link = m.schema.entity(id.entity).toMany(property);
    require(other.objectID().entity == link.destination,
            "the related record is of the relationship's entity");
    if (!owner.isLive() || !other.isLive())
        return;
    require(other.managedObjectContext() == owner.managedObjectContext(),
            "related records belong to one context");
    if (link.joined) {
        setLinked(owner, link, other, related);
        return;
    }
    const Value ownKey = Value(id.key);
    if (related || other.value(link.inverse) == ownKey)
        setValue(other, link.inverse, related ? ownKey : Value());
}

void RecordEditor::setLinked(ManagedObject &owner, const ToManyDescription &link,
                             ManagedObject &other, bool linked)
{
    const ObjectID id = owner.objectID();
    const ObjectID otherID = other.objectID();
    if (m.relationships.isLinked(id, link, otherID) == linked)
        return;
    m.edits.addLink(LinkKey::of(link, id.key, otherID.key), linked);
    m.writer.didAddEdits();
    if (m.history)
        m.history->recordLink(id, link.property, otherID, linked);
    m.changes.addUpdated(id, propertyBit(link.property));
    m.changes.addUpdated(otherID, propertyBit(link.inverse));
    PropertyNotifications notifications;
    setRelatedKey(id, link.property, otherID.key, linked, notifications);
    setRelatedKey(otherID, link.inverse, id.key, linked, notifications);
    m.changes.didEdit();
    notifications.emitAll();
}

void RecordEditor::setRelatedKey(ObjectID owner, int property, qint64 key, bool related,
                                 PropertyNotifications &notifications)
{
    if (property < 0 || owner.isNull())
        return;
    m.relationships.setRelated(owner, property, key, related);
    notifications.add(m.objects.find(owner), property);
}

} // namespace tembra
