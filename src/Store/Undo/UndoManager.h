#pragma once

#include "Foundation/Result.h"
#include "Store/Undo/UndoHistory.h"

#include <QObject>
#include <QString>

#include <memory>

namespace tembra {

class ManagedObjectContext;

/// The undo stack of a context. Everything changed in one turn of the event loop, or between
/// beginGroup() and endGroup(), is one step; consecutive edits of one text merge by word or pause.
/// Holds keys and values, never objects. Survives saves, not restarts.
class UndoManager : public QObject
{
    Q_OBJECT

public:
    ~UndoManager() override;

    bool canUndo() const;
    bool canRedo() const;
    void undo();
    void redo();
    void removeAllSteps();

    /// Groups nest; the outermost pair makes the step. Empty groups make none.
    void beginGroup();
    void endGroup();

    /// Ends merging: the next edit of the same text starts a step of its own.
    void breakMerging();

    /// While one of these lives, changes are not recorded (migrations, imports, time stamps).
    class Suspension
    {
    public:
        explicit Suspension(UndoManager &manager);
        ~Suspension();
        Q_DISABLE_COPY_MOVE(Suspension)

    private:
        UndoManager &m_manager;
    };

Q_SIGNALS:
    /// canUndo() or canRedo() may read differently.
    void changed();
    /// About to change this property of a record by undo or redo: show it to the user first. For a
    /// record that undo brings back or takes away (property -1) its surviving owner comes first in
    /// the sequence of signals; of several that come or go together the topmost stands for all.
    void willChangeObject(const tembra::ObjectID &id, int property);

private:
    friend class ManagedObjectContext;

    struct Private;
    explicit UndoManager(ManagedObjectContext &context);

    /// Null while changes are not recorded.
    UndoHistory *recorder();
    void endTurn();
    void reverseNewest(std::optional<UndoStep> (UndoHistory::*takeFrom)(),
                       void (UndoHistory::*putBack)(UndoStep),
                       void (UndoHistory::*putOpposite)(UndoStep));
    bool reverse(UndoStep &step);
    Result<void> reverse(const RecordedChange &change);
    /// Says which records the step is about: of many that hang together, the topmost one.
    void announce(const UndoStep &step);
    using TouchedProperties = std::vector<std::pair<ObjectID, int>>;
    void addTouched(const RecordedChange &change, TouchedProperties &touched);

    std::unique_ptr<Private> d;
};

} // namespace tembra
