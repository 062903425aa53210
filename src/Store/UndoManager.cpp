#include "Store/UndoManager.h"

#include "Foundation/Logging.h"
#include "Store/ManagedObjectContextPrivate.h"
#include "Store/PersistentContainer.h"
#include "Store/RecordArchive.h"
#include "Store/UndoHistory.h"

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
    std::vector<std::pair<ObjectID, int>> touched;
    const auto touch = [&](ObjectID id, int property) {
        if (touched.empty() || touched.back() != std::pair(id, property))
            touched.emplace_back(id, property);
    };
    const auto touchWithOwner = [&](ObjectID id, const auto &valueOf) {
        for (const ToOneColumn &column : d->context.d->schema.table(id.entity).toOnes) {
            const Value value = valueOf(column.property);
            const auto *owner = std::get_if<qint64>(&value);
            if (owner && column.rule == DeleteRule::Cascade)
                touch({column.destination, *owner}, column.inverse);
        }
        touch(id, -1);
    };
    for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change) {
        std::visit(
            Overloaded{
                [&](const ValueEdit &edit) { touch(edit.id, edit.property); },
                [&](const LinkEdit &edit) { touch(edit.owner, edit.property); },
                [&](const InsertedRecords &inserted) {
                    if (const auto first = d->context.object(inserted.ids.front()))
                        touchWithOwner(first->objectID(),
                                       [&](int property) { return first->value(property); });
                },
                [&](const DeletedRecords &deleted) {
                    deleted.archive->forEachRow([&](ObjectID id, RowReader::Row row) {
                        touchWithOwner(id, [&](int property) { return row[size_t(property)]; });
                        return false; // The first row is the topmost record; the rest hangs on it.
                    });
                },
            },
            *change);
    }
    for (const auto &[id, property] : touched)
        Q_EMIT willChangeObject(id, property);
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
