#pragma once

#include <string>
#include <string_view>

namespace tembra {

/// @p utf8 as a search without regard to case and diacritics compares it: case, width, ligatures,
/// and the accents, Hebrew points and Arabic vowels are folded away; kana voicing and Indic vowel
/// signs, which make another letter, stay. U+0000 is a character like any other; bytes that are
/// no UTF-8 become U+FFFD.
std::string foldForSearch(std::string_view utf8);

/// What is searched for, folded once to be looked for in many texts.
class FoldedNeedle
{
public:
    explicit FoldedNeedle(std::string_view utf8);

    /// Whether the text, folded, contains the needle. An empty needle is in every text, and so is
    /// one of nothing but what is folded away. Callable from several threads.
    bool isContainedIn(std::string_view utf8) const;

private:
    std::string m_folded;
    bool m_isAscii;
};

} // namespace tembra
