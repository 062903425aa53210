#pragma once

#include "Foundation/Result.h"

#include <rapidjson/error/error.h>

namespace tembra {

// What JsonDecoder says of a document it cannot read. For .cpp files only, so that no header spreads
// RapidJSON's.

/// Why a document cannot be read that has no mistake in its grammar, as far as there is any of it.
enum class JsonProblem {
    ExpectedList,
    ExpectedRecord,
    ExpectedText,
    ExpectedNumber,
    ExpectedInt16,
    NumberTooLarge,
    NestedTooDeeply,
    Empty,
    EndsTooEarly,
    TooLarge,
};

/// The place of an element in the user's words: "session 12".
QString jsonElementPlace(const QString &label, qint64 number);

/// @p place tells in the user's words where the problem is ("session 12, date") and may be empty;
/// @p offset counts bytes from the start of the document.
Error unreadableJsonError(const QString &place, JsonProblem problem, size_t offset);

/// The same of a document whose grammar is wrong.
Error malformedJsonError(const QString &place, rapidjson::ParseErrorCode code, size_t offset);

} // namespace tembra
