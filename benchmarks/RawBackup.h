#pragma once

#include <QByteArray>
#include <QString>

struct sqlite3;

namespace tembra::rawBackup {

// The least that writing and reading a backup can take: the same rows by the raw C API, the same
// JSON coders, and none of this program's records. Stops the program when anything fails.

/// The document of a whole journal.
QByteArray encode(sqlite3 *database);

/// Brings a document into the store in @p file, in one durable transaction: the rows that an import
/// makes of it, the nine notes of each meeting and those that take their places included.
void import(const QByteArray &json, const QString &file);

} // namespace tembra::rawBackup
