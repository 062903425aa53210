#include "Store/Undo/UndoManager.h"

#include "Foundation/Logging.h"
#include "Store/Objects/IdentityMap.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/RecordDeleter.h"
#include "Store/Objects/RecordEditor.h"
#include "Store/Objects/RecordRestorer.h"
#include "Store/Rows/RecordArchive.h"
#include "Store/Schema/ObjectModel.h"
#include "Store/Undo/UndoHistory.h"

#include <algorithm>

namespace tembra {

namespace {

template<typename... Functions>
struct Overloaded : Functions...
{
    using Functions::operator()...;
};
template<typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

} // namespace

bool UndoManager::canUndo() const
{
    return m.history.canUndo();
}

bool UndoManager::canRedo() const
{
    return m.history.canRedo() && !m.history.hasOpenChanges();
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
    UndoHistory &history = m.history;
    if (m_isReversing || history.isGrouping())
        return;
    history.closeStep();
    std::optional<UndoStep> step = (history.*takeFrom)();
    if (!step)
        return;
    m_isReversing = true;
    notifyBefore(*step);
    // What listeners did to show the record is no part of what is reversed.
    history.closeStep();
    const Result<void> reversed = reverse(*step);
    if (!reversed)
        (history.*putBack)(std::move(*step));
    (history.*putOpposite)(history.takeOpen());
    m_isReversing = false;
    Q_EMIT changed();
    if (!reversed)
        Q_EMIT failed(reversed.error());
}

/// Reverses the changes of @p step, last one first, and takes each out. When the store fails the
/// rest is left in the step.
Result<void> UndoManager::reverse(UndoStep &step)
{
    for (; !step.changes.empty(); step.changes.pop_back()) {
        if (Result<void> done = reverse(step.changes.back()); !done) {
            qCWarning(storeLog, "Undo or redo failed: %s",
                      qUtf8Printable(done.error().description()));
            return done;
        }
    }
    return {};
}

Result<void> UndoManager::reverse(const RecordedChange &change)
{
    return std::visit(Overloaded{
                          [&](const ValueEdit &edit) -> Result<void> {
                              if (const auto object = m.objects.object(edit.id))
                                  m.editor.setValue(*object, edit.property, edit.before);
                              return {};
                          },
                          [&](const LinkEdit &edit) -> Result<void> {
                              const auto owner = m.objects.object(edit.owner);
                              const auto other = m.objects.object(edit.other);
                              if (owner && other)
                                  m.editor.setRelated(*owner, edit.property, *other, !edit.added);
                              return {};
                          },
                          [&](const InsertedRecords &inserted) {
                              std::vector<ObjectID> present = inserted.ids;
                              std::erase_if(present,
                                            [&](ObjectID id) { return !m.objects.exists(id); });
                              return m.deleter.deleteRecords(present);
                          },
                          [&](const DeletedRecords &deleted) {
                              return m.restorer.restore(*deleted.archive);
                          },
                      },
                      change);
}

/// Tells which records the step is about: of many that hang together, the topmost one.
void UndoManager::notifyBefore(const UndoStep &step)
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
        for (const ToOneDescription &column : m.schema.entity(id.entity).toOnes) {
            const auto &value = valueOf(column.property);
            if (const auto *owner = std::get_if<qint64>(&value))
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
                if (const auto first = m.objects.object(inserted.ids.front()))
                    addWithOwner(first->objectID(),
                                 [&](int column) -> const Value & { return first->value(column); });
            },
            [&](const DeletedRecords &deleted) {
                deleted.archive->forEachRow([&](ObjectID id, const std::vector<StoredValue> &row) {
                    addWithOwner(id, [&](int column) -> const StoredValue & {
                        return row[size_t(column)];
                    });
                    return false; // The first row is the topmost record; the rest hangs on it.
                });
            },
        },
        change);
}

void UndoManager::beginGroup()
{
    m.history.beginGroup();
}

void UndoManager::endGroup()
{
    m.history.endGroup();
    if (!m.history.isGrouping())
        Q_EMIT changed();
}

void UndoManager::endTurn()
{
    if (!m_isReversing && !m.history.isGrouping() && m.history.closeStep())
        Q_EMIT changed();
}

UndoManager::Suspension::Suspension(UndoManager &manager) : m_history(manager.m.history)
{
    m_history.suspend();
}

UndoManager::Suspension::~Suspension()
{
    m_history.resume();
}

} // namespace tembra
