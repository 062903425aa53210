#pragma once

#include "Foundation/Result.h"
#include "Store/UndoHistory.h"

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
    /// About to change this record by undo or redo: show it to the user first. For a record that
    /// undo brings back or takes away, its surviving owner comes first in the sequence of signals.
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
    void announce(const UndoStep &step);

    std::unique_ptr<Private> d;
};

} // namespace tembra
