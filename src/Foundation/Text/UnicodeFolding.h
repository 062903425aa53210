#pragma once

#include <string>
#include <string_view>

namespace tembra {

/// What folding is, by ICU and without a shortcut: NFKC_Casefold, then NFD, then without the
/// diacritics that do not count, then NFC.
std::string foldByNormalizing(std::string_view utf8);

/// Whether @p folded can begin with a character that joins one before it.
bool canJoinBackward(std::string_view folded);

/// Whether the character @p mark composes or changes places with the end of @p folded when it is
/// appended.
bool joins(std::string_view folded, std::string_view mark);

} // namespace tembra
