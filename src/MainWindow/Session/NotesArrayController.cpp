#include "MainWindow/Session/NotesArrayController.h"

#include "Model/Note.h"

namespace tembra {

NotesArrayController::NotesArrayController(QObject *parent) : ArrayController(parent)
{
    // The second column is not shown; it is there so that a change of a text is told.
    setColumns({"titleString", "contentString"});
}

Note *NotesArrayController::noteAt(int row) const
{
    return static_cast<Note *>(objectAt(row).get());
}

QVariant NotesArrayController::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != IsFilledRole && role != Qt::AccessibleTextRole))
        return ArrayController::data(index, role);
    const Note *note = noteAt(index.row());
    const bool isFilled = !note->contentString().isEmpty();
    if (role == IsFilledRole)
        return isFilled;
    return isFilled ? tr("%1, filled in", "A note field that holds text, read aloud")
                          .arg(note->titleString())
                    : note->titleString();
}

} // namespace tembra
