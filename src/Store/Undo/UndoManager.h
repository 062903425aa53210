#pragma once

#include "Foundation/Result.h"
#include "Store/Undo/UndoHistory.h"

#include <QObject>
#include <QString>

namespace tembra {

class IdentityMap;
class RecordDeleter;
class RecordEditor;
class RecordRestorer;
class ObjectModel;

/// The undo stack of a context. Everything changed in one turn of the event loop, or between
/// beginGroup() and endGroup(), is one step; consecutive edits of one text merge by word or pause.
/// Holds keys and values, never objects. Survives saves, not restarts.
class UndoManager : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        const ObjectModel &schema;
        UndoHistory &history;
        IdentityMap &objects;
        RecordEditor &editor;
        RecordDeleter &deleter;
        RecordRestorer &restorer;
    };
    explicit UndoManager(const Parts &parts) : m(parts) {}

    bool canUndo() const;
    bool canRedo() const;
    /// What the store refuses to reverse stays undone or redone, and failed() is emitted.
    void undo();
    void redo();

    /// Groups nest; the outermost pair makes the step. Empty groups make none.
    void beginGroup();
    void endGroup();

    /// To be called at the end of a turn of the event loop.
    void endTurn();

    /// While one of these lives, changes are not recorded (migrations, imports, time stamps).
    class Suspension
    {
    public:
        explicit Suspension(UndoManager &manager);
        ~Suspension();
        Q_DISABLE_COPY_MOVE(Suspension)

    private:
        UndoHistory &m_history;
    };

Q_SIGNALS:
    /// canUndo() or canRedo() may read differently.
    void changed();
    /// An undo or redo could not be carried out, or not to its end; the rest can be tried again.
    void failed(const tembra::Error &error);
    /// About to change this property of a record by undo or redo: show it to the user first. For a
    /// record that undo brings back or takes away (property -1) its surviving owner comes first in
    /// the sequence of signals; of several that come or go together the topmost stands for all.
    void willChangeObject(const tembra::ObjectID &id, int property);

private:
    void reverseNewest(std::optional<UndoStep> (UndoHistory::*takeFrom)(),
                       void (UndoHistory::*putBack)(UndoStep),
                       void (UndoHistory::*putOpposite)(UndoStep));
    Result<void> reverse(UndoStep &step);
    Result<void> reverse(const RecordedChange &change);
    void notifyBefore(const UndoStep &step);
    using TouchedProperties = std::vector<std::pair<ObjectID, int>>;
    void addTouched(const RecordedChange &change, TouchedProperties &touched);

    const Parts m;
    bool m_isReversing = false;
};

} // namespace tembra
