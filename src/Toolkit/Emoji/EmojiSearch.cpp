#include "Toolkit/Emoji/EmojiSearch.h"

#include "Foundation/Text/TextFolding.h"
#include "Toolkit/Emoji/EmojiCatalogue.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tembra {

namespace {

enum Rank : std::size_t { Name, NameBeginning, WordBeginning, Anywhere, None };

std::string folded(const QString &text)
{
    return foldForSearch(text.toStdString());
}

/// Letters of other scripts count as parts of words too.
bool isPartOfWord(char unit)
{
    const bool isLetter = (unit >= 'a' && unit <= 'z') || static_cast<unsigned char>(unit) >= 0x80;
    return isLetter || (unit >= '0' && unit <= '9');
}

bool beginsAWord(const std::string &text, const std::string &word)
{
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        if (at == 0 || !isPartOfWord(text[at - 1]))
            return true;
    }
    return false;
}

std::vector<std::string> wordsOf(const std::string &text)
{
    std::vector<std::string> words;
    std::size_t start = text.find_first_not_of(' ');
    while (start != std::string::npos) {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        words.push_back(text.substr(start, end - start));
        start = text.find_first_not_of(' ', end);
    }
    return words;
}

Rank rankOf(const std::string &name, const std::string &all, const std::string &needle,
            const std::vector<std::string> &words)
{
    const auto isThere = [&all](const auto &word) { return all.find(word) != std::string::npos; };
    if (!std::ranges::all_of(words, isThere))
        return None;
    if (name == needle)
        return Name;
    if (name.starts_with(needle))
        return NameBeginning;
    const auto begins = [&all](const auto &word) { return beginsAWord(all, word); };
    return std::ranges::all_of(words, begins) ? WordBeginning : Anywhere;
}

} // namespace

EmojiSearch::EmojiSearch(const EmojiCatalogue &catalogue)
{
    for (const EmojiGroup &group : catalogue.groups()) {
        for (const EmojiEntry &entry : group.emoji) {
            add(entry, entry);
            for (const EmojiEntry &tone : entry.skinTones)
                add(tone, entry);
        }
    }
}

void EmojiSearch::add(const EmojiEntry &entry, const EmojiEntry &base)
{
    const std::string name = folded(entry.name);
    m_candidates.push_back({.entry = &entry,
                            .base = &base,
                            .name = name,
                            .all = name + '|' + folded(base.keywords) + '|' + folded(entry.text)});
}

QList<const EmojiEntry *> EmojiSearch::find(const QString &text) const
{
    const std::string needle = folded(text.simplified());
    const std::vector<std::string> words = wordsOf(needle);
    if (words.empty())
        return {};
    std::array<QList<const EmojiEntry *>, None> found;
    const EmojiEntry *foundBase = nullptr;
    for (const Candidate &candidate : m_candidates) {
        const Rank rank = rankOf(candidate.name, candidate.all, needle, words);
        if (rank == None || candidate.base == foundBase)
            continue;
        if (candidate.entry == candidate.base)
            foundBase = candidate.base;
        found[rank].append(candidate.entry);
    }
    QList<const EmojiEntry *> result;
    for (const QList<const EmojiEntry *> &part : found)
        result.append(part);
    return result;
}

} // namespace tembra
