#pragma once

#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Schema/ObjectModel.h"
#include "Store/Undo/UndoManager.h"
#include "support/FixedClock.h"
#include "support/FolderContents.h"

#include <QTemporaryDir>

#include <functional>

namespace tembra::test {

class Owner;
class Label;

/// Objects of the classes below that exist now, in all contexts.
int liveObjectCount();

/// Counts itself, so that a test sees which objects are held.
class Counted : public ManagedObject
{
    Q_OBJECT

public:
    ~Counted() override;

    int awakenedFromInsert = 0;
    int awakened = 0;

protected:
    Counted();
    void awakeFromInsert() override { ++awakenedFromInsert; }
    void awake() override { ++awakened; }
};

class Part : public Counted
{
    Q_OBJECT
    Q_PROPERTY(qint16 number READ number WRITE setNumber NOTIFY numberChanged)
    Q_PROPERTY(QString content READ content WRITE setContent NOTIFY contentChanged)

public:
    enum Property { numberProperty, contentProperty, itemProperty };
    static QByteArray entityName() { return "Part"; }

    qint16 number() const { return integer(numberProperty); }
    void setNumber(qint16 number) { setInteger(numberProperty, number); }
    QString content() const { return text(contentProperty); }
    void setContent(const QString &content) { setText(contentProperty, content); }
    std::shared_ptr<ManagedObject> item() const { return toOne(itemProperty); }
    void setItem(const std::shared_ptr<ManagedObject> &item) { setToOne(itemProperty, item); }

Q_SIGNALS:
    void numberChanged();
    void contentChanged();
};

/// One that makes its parts when it is inserted, and has a hook.
class Item : public Counted
{
    Q_OBJECT
    Q_PROPERTY(tembra::OptionalDate date READ date WRITE setDate NOTIFY dateChanged)
    Q_PROPERTY(qint16 flag READ flag WRITE setFlag NOTIFY flagChanged)
    Q_PROPERTY(QObject *owner MEMBER m_unused NOTIFY ownerChanged)
    Q_PROPERTY(QObject *parts MEMBER m_unused NOTIFY partsChanged)
    Q_PROPERTY(QObject *labels MEMBER m_unused NOTIFY labelsChanged)

public:
    enum Property { dateProperty, flagProperty, ownerProperty, partsProperty, labelsProperty };
    static QByteArray entityName() { return "Item"; }
    static constexpr int partCount = 3;

    OptionalDate date() const { return ManagedObject::date(dateProperty); }
    void setDate(OptionalDate date) { ManagedObject::setDate(dateProperty, date); }
    qint16 flag() const { return integer(flagProperty); }
    void setFlag(qint16 flag) { setInteger(flagProperty, flag); }
    std::shared_ptr<Owner> owner() const { return toOne<Owner>(ownerProperty); }
    void setOwner(const std::shared_ptr<ManagedObject> &owner) { setToOne(ownerProperty, owner); }
    QList<std::shared_ptr<Part>> parts() const;
    QList<std::shared_ptr<Label>> labels() const;

    /// Called by prepareForDeletion(); pins the object while there is one.
    void setOnDeletion(std::function<void()> onDeletion);

Q_SIGNALS:
    void dateChanged();
    void flagChanged();
    void ownerChanged();
    void partsChanged();
    void labelsChanged();

protected:
    void awakeFromInsert() override;
    void prepareForDeletion() override;

private:
    std::function<void()> m_onDeletion;
    QObject *m_unused = nullptr;
};

class Owner : public Counted
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QObject *items MEMBER m_unused NOTIFY itemsChanged)

public:
    enum Property { nameProperty, itemsProperty };
    static QByteArray entityName() { return "Owner"; }

    QString name() const { return text(nameProperty); }
    void setName(const QString &name) { setText(nameProperty, name); }
    std::vector<ObjectID> itemIDs() const { return relatedIDs(itemsProperty); }

Q_SIGNALS:
    void nameChanged();
    void itemsChanged();

private:
    QObject *m_unused = nullptr;
};

class Label : public Counted
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QObject *items MEMBER m_unused NOTIFY itemsChanged)

public:
    enum Property { nameProperty, itemsProperty };
    static QByteArray entityName() { return "Label"; }

    QString name() const { return text(nameProperty); }
    void setName(const QString &name) { setText(nameProperty, name); }

Q_SIGNALS:
    void nameChanged();
    void itemsChanged();

private:
    QObject *m_unused = nullptr;
};

enum Entity { ownerEntity, labelEntity, itemEntity, partEntity };

ObjectModel testModel();

/// A store of the model above in a folder of its own, that can be closed and opened again.
class TestStore
{
public:
    explicit TestStore(QByteArray vfs = {});

    /// False when the store does not open.
    bool open();
    void close() { container.reset(); }
    ManagedObjectContext &context() const { return container->viewContext(); }
    UndoManager &undo() const { return *context().undoManager(); }

    std::shared_ptr<Owner> addOwner(const QString &name, int items = 0) const;
    std::shared_ptr<Item> addItem(const std::shared_ptr<Owner> &owner) const;
    std::shared_ptr<Label> addLabel(const QString &name) const;
    /// As the store has it, without writing anything before: by a connection of its own.
    Value stored(const QByteArray &sql) const;
    qint64 storedCount(const QByteArray &table) const;
    bool executeElsewhere(const QByteArray &sql) const;

    QTemporaryDir folder{temporaryTemplate()};
    QByteArray vfs;
    FixedClock clock{Date{700000000}};
    std::unique_ptr<PersistentContainer> container;
};

/// What a store holds, as text: every row and link, in order. By the connection's own eyes.
QByteArray dumpStore(const QString &file);

/// Lets the queued end of the turn come.
void endTurn();

} // namespace tembra::test
