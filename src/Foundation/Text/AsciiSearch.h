#pragma once

#include <cstddef>
#include <string_view>

namespace tembra {

/// Whether all bytes are ASCII.
bool isAscii(std::string_view text);

/// @p letter in lower case if it is an ASCII one.
constexpr char asciiLowered(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? char(letter + ('a' - 'A')) : letter;
}

/// Lowers the ASCII that @p text begins with, into @p lowered, and returns how much that is.
size_t lowerLeadingAscii(std::string_view text, char *lowered);

/// Whether @p text contains @p needle (lower case, not empty), regardless of ASCII case. Without a
/// copy of the text, in time proportional to the text's length and, at worst, the needle's.
bool containsIgnoringAsciiCase(std::string_view text, std::string_view needle);

} // namespace tembra
