#pragma once

#include <QList>
#include <QString>

namespace tembra {

/// The fixed note fields of every meeting, in screen order. Stored as the raw value; scoped as
/// Note::Identifier.
enum class NoteIdentifier : qint16 {
    actionItemsReceived,
    blockers,
    feedbackGiven,
    feedbackReceived,
    goals,
    wins,
    professionalDevelopment,
    nextTimeOff,
    miscellaneous,
};

constexpr qint16 maximumNoteIdentifier = qint16(NoteIdentifier::miscellaneous);

/// Every field, in raw-value order.
QList<NoteIdentifier> allNoteIdentifiers();

/// The title of a field in the user's language. A raw value outside of 0 to 8 gets the title of
/// the first field.
QString noteFieldTitle(qint16 identifier);

/// What belongs into a field, in the user's language; null where there is no prompt. A raw value
/// outside of 0 to 8 gets the prompt of the first field.
QString noteFieldPrompt(qint16 identifier);

} // namespace tembra
