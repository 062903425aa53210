#pragma once

#include "Foundation/Result.h"

#include <QByteArray>

struct sqlite3;

namespace tembra {

class SearchedTexts;

/// The SQL functions behind CONTAINS[cd]: they tell whether a text contains another without regard
/// to case and diacritics. NULL contains nothing and is nowhere.
///
///     text_contains(text, needle)                    1 or 0
///     text_contains(text, needle, column, record)    the same, and remembers the text
///     known_text_contains(column, record, needle)    1 or 0; NULL when the text is not remembered
namespace SearchFunction {

/// Makes the functions known to a connection, for as long as that is open. Without @p texts, which
/// have to outlive it, nothing is remembered.
Result<void> registerOn(sqlite3 *connection, SearchedTexts *texts = nullptr);

/// The test of one record, as SQL with the place holder for the needle twice: the text is read only
/// when it is not remembered. @p columnNumber is the same for no other column of the store.
QByteArray testOfRecord(const QByteArray &text, int columnNumber, const QByteArray &record);

} // namespace SearchFunction

} // namespace tembra
