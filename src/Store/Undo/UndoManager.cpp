#include "Store/Undo/UndoManager.h"

#include "Foundation/Logging.h"
#include "Store/Objects/ManagedObjectContextPrivate.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Rows/RecordArchive.h"
#include "Store/Undo/UndoHistory.h"

#include <algorithm>

namespace tembra {

struct UndoManager::Private
{
    explicit Private(ManagedObjectContext &owner)
        : context(owner)
        , history(owner.container().clock())
    {
    }

    ManagedObjectContext &context;
    UndoHistory history;
    int suspensions = 0;
    bool isReversing = false;
};

namespace {

template<typename... Functions>
struct Overloaded : Functions...
{
    using Functions::operator()...;
};
template<typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

} // namespace

UndoManager::UndoManager(ManagedObjectContext &context) : d(std::make_unique<Private>(context)) {}

UndoManager::~UndoManager() = default;

UndoHistory *UndoManager::recorder()
{
    return d->suspensions > 0 ? nullptr : &d->history;
}

bool UndoManager::canUndo() const
{
    return d->history.canUndo();
}

bool UndoManager::canRedo() const
{
    return d->history.canRedo() && !d->history.hasOpenChanges();
}

void UndoManager::undo()
{
    reverseNewest(&UndoHistory::takeUndo, &UndoHistory::pushUndo, &UndoHistory::pushRedo);
}

void UndoManager::redo()
{
    reverseNewest(&UndoHistory::takeRedo, &UndoHistory::pushRedo, &UndoHistory::pushUndo);
}

void UndoManager::reverseNewest(std::optional<UndoStep> (UndoHistory::*takeFrom)(),
                                void (UndoHistory::*putBack)(UndoStep),
                                void (UndoHistory::*putOpposite)(UndoStep))
{
    UndoHistory &history = d->history;
    if (d->isReversing || history.isGrouping())
        return;
    history.closeStep();
    std::optional<UndoStep> step = (history.*takeFrom)();
    if (!step)
        return;
    d->isReversing = true;
    announce(*step);
    // What listeners did to show the record is no part of what is reversed.
    history.closeStep();
    if (!reverse(*step))
        (history.*putBack)(std::move(*step));
    (history.*putOpposite)(history.takeOpen());
    d->isReversing = false;
    Q_EMIT changed();
}

/// Reverses the changes of @p step, last one first, and takes each out. False when the store
/// failed; then the rest is left in the step.
bool UndoManager::reverse(UndoStep &step)
{
    for (; !step.changes.empty(); step.changes.pop_back()) {
        if (const Result<void> done = reverse(step.changes.back()); !done) {
            qCWarning(storeLog, "Undo or redo failed: %s",
                      qUtf8Printable(done.error().description()));
            return false;
        }
    }
    return true;
}

Result<void> UndoManager::reverse(const RecordedChange &change)
{
    ManagedObjectContext &context = d->context;
    return std::visit(Overloaded{
                          [&](const ValueEdit &edit) -> Result<void> {
                              if (const auto object = context.object(edit.id))
                                  object->setValue(edit.property, edit.before);
                              return {};
                          },
                          [&](const LinkEdit &edit) -> Result<void> {
                              const auto owner = context.object(edit.owner);
                              const auto other = context.object(edit.other);
                              if (owner && other)
                                  context.d->setLinked(*owner, edit.property, *other, !edit.added);
                              return {};
                          },
                          [&](const InsertedRecords &inserted) {
                              std::vector<ObjectID> present = inserted.ids;
                              std::erase_if(present,
                                            [&](ObjectID id) { return !context.d->exists(id); });
                              return context.d->deleteRecords(std::move(present));
                          },
                          [&](const DeletedRecords &deleted) {
                              return context.d->restoreRecords(*deleted.archive);
                          },
                      },
                      change);
}

void UndoManager::announce(const UndoStep &step)
{
    TouchedProperties touched;
    for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
        addTouched(*change, touched);
    touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
    for (const auto &[id, property] : touched)
        Q_EMIT willChangeObject(id, property);
}

void UndoManager::addTouched(const RecordedChange &change, TouchedProperties &touched)
{
    const auto addWithOwner = [&](ObjectID id, const auto &valueOf) {
        for (const ToOneDescription &column : d->context.d->schema.entity(id.entity).toOnes) {
            const Value value = valueOf(column.property);
            const auto *owner = std::get_if<qint64>(&value);
            if (owner && column.rule == DeleteRule::Cascade)
                touched.push_back({{column.destination, *owner}, column.inverse});
        }
        touched.push_back({id, -1});
    };
    std::visit(
        Overloaded{
            [&](const ValueEdit &edit) {
                touched.push_back({edit.id, edit.property});
            },
            [&](const LinkEdit &edit) {
                touched.push_back({edit.owner, edit.property});
            },
            [&](const InsertedRecords &inserted) {
                if (const auto first = d->context.object(inserted.ids.front()))
                    addWithOwner(first->objectID(),
                                 [&](int column) { return first->value(column); });
            },
            [&](const DeletedRecords &deleted) {
                deleted.archive->forEachRow([&](ObjectID id, RowReader::Row row) {
                    addWithOwner(id, [&](int column) { return row[size_t(column)]; });
                    return false; // The first row is the topmost record; the rest hangs on it.
                });
            },
        },
        change);
}

void UndoManager::removeAllSteps()
{
    d->history.clear();
    Q_EMIT changed();
}

void UndoManager::beginGroup()
{
    d->history.beginGroup();
}

void UndoManager::endGroup()
{
    d->history.endGroup();
    if (!d->history.isGrouping())
        Q_EMIT changed();
}

void UndoManager::breakMerging()
{
    d->history.endTyping();
}

void UndoManager::endTurn()
{
    if (!d->isReversing && !d->history.isGrouping() && d->history.closeStep())
        Q_EMIT changed();
}

UndoManager::Suspension::Suspension(UndoManager &manager) : m_manager(manager)
{
    ++m_manager.d->suspensions;
}

UndoManager::Suspension::~Suspension()
{
    --m_manager.d->suspensions;
}

} // namespace tembra
