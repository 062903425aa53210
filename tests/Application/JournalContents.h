#pragma once

#include <QByteArray>
#include <QHash>

namespace tembra {

class Counterpart;
class Note;
class Session;
class ManagedObjectContext;

/// What a journal says, in one word per record, to compare before and after: "T1" is a teammate,
/// "S1" a meeting, "N1" a note; the value is made of what the user can change there.
using JournalContents = QHash<QByteArray, QByteArray>;

/// The value of a record that is not there.
inline const QByteArray absent = "-";

QByteArray keyOf(const Counterpart &teammate);
QByteArray keyOf(const Session &session);
QByteArray keyOf(const Note &note);

QByteArray valueOf(const Counterpart &teammate);
QByteArray valueOf(const Session &session);
QByteArray valueOf(const Note &note);

/// A note's value with another text.
QByteArray noteValue(const QString &content);
QByteArray teammateValue(const QString &name);

/// All records of a store. Stops the program where the journal is not whole.
JournalContents contentsOf(ManagedObjectContext &context);

} // namespace tembra
