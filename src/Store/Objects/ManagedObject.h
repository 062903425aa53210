#pragma once

#include "Foundation/Time/Date.h"
#include "Store/Schema/ObjectID.h"
#include "Store/Schema/Value.h"

#include <QList>
#include <QObject>

#include <memory>
#include <vector>

namespace tembra {

class ManagedObjectContext;
struct EntityDescription;

/// A record of the store as an object: its values are read when first asked for, its edits go to
/// its context, which writes them.
///
/// Held by std::shared_ptr. Its context keeps one object per record while anyone holds it, holds
/// it itself while it has unwritten edits, and lets go of it otherwise. Lives on the context's
/// thread. Subclasses declare each attribute as a Q_PROPERTY of the entity's property name with a
/// NOTIFY signal without arguments, which the store emits on every change, whoever made it (a
/// setter, undo, a merge). A relationship's NOTIFY tells at both of its ends.
class ManagedObject : public QObject, public std::enable_shared_from_this<ManagedObject>
{
    Q_OBJECT

public:
    ~ManagedObject() override;

    ObjectID objectID() const { return m_id; }
    /// Valid while the container lives.
    const EntityDescription &entity() const;
    /// The context the record belongs to; null once it is deleted or its context is gone.
    ManagedObjectContext *managedObjectContext() const { return m_context; }
    /// True once the record was deleted. Its last values can still be read.
    bool isDeleted() const { return m_state == State::Deleted; }
    /// False once the deletion of the record is certain: from then on edits have no effect.
    bool isLive() const { return m_state == State::Live; }

    /// The stored value of a column (attribute, or to-one as its key), by property number.
    const Value &value(int property) const;
    /// Changes a column. Equal values change nothing. No effect on a deleted record, and none when
    /// a to-one is to point to a record that does not exist.
    void setValue(int property, Value value);

    /// The record a to-one relationship points to, without loading it; null ID when there is none.
    ObjectID toOneID(int toOneProperty) const;

    /// The records a to-many relationship reaches, by ascending key.
    std::vector<ObjectID> relatedIDs(int toManyProperty) const;
    /// Links or unlinks a record through a to-many relationship (either kind). No effect when it
    /// already is as asked, or when either record is deleted.
    void addRelated(int toManyProperty, const ManagedObject &other);
    void removeRelated(int toManyProperty, const ManagedObject &other);

Q_SIGNALS:
    /// Some text or number derived from this record and its relatives may now read differently.
    void derivedChanged();
    /// The record was deleted (after the fact; also by a cascade, an undo or a merge).
    void deleted();

protected:
    ManagedObject() = default;

    /// Called once, when the record is first inserted (never again by undo or loading).
    virtual void awakeFromInsert() {}
    /// Called each time the object was loaded from the store, and after awakeFromInsert().
    virtual void awake() {}
    /// Called just before the record is deleted, also when a cascade reaches it; once, when nothing
    /// can stop the deletion any more. The record can be read then, but not edited.
    virtual void prepareForDeletion() {}

    QString text(int property) const; ///< Null when missing.
    void setText(int property, const QString &text); ///< A null text is stored as missing.
    qint16 integer(int property) const; ///< 0 when missing.
    void setInteger(int property, qint16 number);
    OptionalDate date(int property) const;
    void setDate(int property,
                 OptionalDate date); ///< A date that is not finite is stored as missing.
    std::shared_ptr<ManagedObject> toOne(int property) const; ///< Null when there is none.
    void setToOne(int property, const std::shared_ptr<ManagedObject> &other);

    template<typename Object>
    std::shared_ptr<Object> toOne(int property) const
    {
        return std::static_pointer_cast<Object>(toOne(property));
    }

    /// The objects of relatedIDs().
    QList<std::shared_ptr<ManagedObject>> relatedObjects(int toManyProperty) const;
    template<typename Object>
    QList<std::shared_ptr<Object>> related(int toManyProperty) const
    {
        QList<std::shared_ptr<Object>> typed;
        for (const auto &object : relatedObjects(toManyProperty))
            typed.append(std::static_pointer_cast<Object>(object));
        return typed;
    }

    /// Keeps the object alive although nobody holds it, because it carries something in memory
    /// that must not be lost (a callback); until the record is deleted or unpinned.
    void setPinned(bool pinned);

private:
    friend class IdentityMap;
    friend class PropertyNotifications;

    enum class State { Live, BeingDeleted, Deleted };

    void emitChangeOf(int property);

    ManagedObjectContext *m_context = nullptr;
    const EntityDescription *m_entity = nullptr;
    ObjectID m_id;
    std::vector<Value> m_values; ///< Per column; empty while the object is a fault.
    State m_state = State::Live;
};

} // namespace tembra
