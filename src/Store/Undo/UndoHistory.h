#pragma once

#include "Store/Schema/ObjectID.h"
#include "Store/Schema/Value.h"
#include "Store/Undo/TypingCoalescer.h"

#include <QSet>

#include <deque>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace tembra {

class Clock;
class RecordArchive;

/// One recorded change, as what it takes to reverse it.
struct ValueEdit
{
    ObjectID id;
    int property;
    Value before;
};
struct LinkEdit
{
    ObjectID owner;
    int property;
    ObjectID other;
    bool added;
};
struct InsertedRecords
{
    std::vector<ObjectID> ids;
};
struct DeletedRecords
{
    std::shared_ptr<const RecordArchive> archive;
};
using RecordedChange = std::variant<ValueEdit, LinkEdit, InsertedRecords, DeletedRecords>;

/// What one undo reverses: its changes, last one first.
struct UndoStep
{
    std::vector<RecordedChange> changes;
    size_t byteSize() const;
};

/// What was changed, as steps that can be reversed, in a bounded amount of memory: the oldest
/// steps are forgotten. Knows keys and values only; reversing is up to the UndoManager.
class UndoHistory
{
public:
    static constexpr size_t maximumSteps = 200;
    static constexpr size_t maximumBytes = 64 * 1024
                                           * 1024; ///< The newest step is kept at any size.

    explicit UndoHistory(const Clock &clock);

    /// While it is suspended nothing is recorded. Suspensions nest.
    void suspend() { ++m_suspensions; }
    void resume() { --m_suspensions; }

    void recordInserted(std::vector<ObjectID> ids);
    void recordValue(ObjectID id, int property, const Value &before, const Value &after);
    void recordLink(ObjectID owner, int property, ObjectID other, bool added);
    void recordDeleted(std::shared_ptr<const RecordArchive> archive);

    void beginGroup();
    void endGroup();
    bool isGrouping() const { return m_depth > 0; }
    /// Makes a step of what was recorded since the last one. True when there is a new step, or an
    /// old one that grew.
    bool closeStep();

    bool canUndo() const { return !m_undo.empty() || !m_open.changes.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    bool hasOpenChanges() const { return !m_open.changes.empty(); }
    std::optional<UndoStep> takeUndo() { return take(m_undo); }
    std::optional<UndoStep> takeRedo() { return take(m_redo); }
    /// What was recorded since the last step, without making a step of it.
    UndoStep takeOpen();
    void pushUndo(UndoStep step) { push(m_undo, std::move(step)); }
    void pushRedo(UndoStep step) { push(m_redo, std::move(step)); }

private:
    using Stack = std::deque<UndoStep>;

    std::optional<UndoStep> take(Stack &stack);
    static void push(Stack &stack, UndoStep step);
    /// True when the newest step holds what the open one would undo already.
    bool continuesTyping() const;
    void recordOther(RecordedChange change);

    const Clock &m_clock;
    Stack m_undo;
    Stack m_redo;
    UndoStep m_open;
    QSet<ObjectID> m_insertedInOpen; ///< Undo takes them away whole: their edits need no record.
    int m_suspensions = 0;
    int m_depth = 0;
    TypingCoalescer m_typing;
    bool m_openContinuesTyping = false;
    bool m_newestIsTyping = false; ///< m_undo.back() is the step of m_typing.
};

} // namespace tembra
