#pragma once

#include "Toolkit/List/ArrayController.h"

namespace tembra {

class Note;

/// Lists the notes of a meeting as rows of the field list: title, and whether the note has text.
class NotesArrayController final : public ArrayController
{
    Q_OBJECT

public:
    enum Role {
        IsFilledRole = ArrayController::ObjectRole + 1, ///< True when the field holds text.
    };

    explicit NotesArrayController(QObject *parent = nullptr);

    Note *noteAt(int row) const;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};

} // namespace tembra
