#pragma once

#include <QList>
#include <QString>

#include <string>
#include <vector>

namespace tembra {

class EmojiCatalogue;
struct EmojiEntry;

/// Finds emoji by name and keyword, without regard to case and accents.
class EmojiSearch
{
public:
    /// @p catalogue must live as long.
    explicit EmojiSearch(const EmojiCatalogue &catalogue);

    /// The emoji that have every word of @p text in their name or keywords: first those whose name
    /// is the text or begins with it, then where each is the beginning of a word, then the rest. A
    /// variant in a skin tone is found where the emoji itself is not ("waving dark"). An emoji is
    /// found by itself too. Nothing for a blank text.
    QList<const EmojiEntry *> find(const QString &text) const;

private:
    struct Candidate
    {
        const EmojiEntry *entry;
        const EmojiEntry *base;
        std::string name; ///< Folded, as the rest.
        std::string all; ///< Name, keywords and the emoji.
    };

    void add(const EmojiEntry &entry, const EmojiEntry &base);

    std::vector<Candidate> m_candidates;
};

} // namespace tembra
