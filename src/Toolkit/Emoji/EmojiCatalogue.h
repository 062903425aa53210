#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <vector>

namespace tembra {

/// An emoji with its name, its keywords and its variants in skin tones.
struct EmojiEntry
{
    QString text; ///< The characters to insert, complete.
    QString name;
    QString keywords; ///< Separated by "|".
    std::vector<EmojiEntry> skinTones; ///< Most have none.
};

/// A group of emoji under one title.
struct EmojiGroup
{
    QString title; ///< In English, as Unicode has it.
    std::vector<EmojiEntry> emoji;
};

/// Lists every emoji, in groups, in the order in which a palette shows them. It is immutable.
class EmojiCatalogue
{
public:
    /// In the first of @p languages ("de-AT", best first) that has names of its own, else in
    /// English. Read once per language, then shared.
    static const EmojiCatalogue &inLanguage(const QStringList &languages);

    /// From the lines that the build writes for one language.
    explicit EmojiCatalogue(const QString &lines);
    EmojiCatalogue(const EmojiCatalogue &) = delete;
    EmojiCatalogue &operator=(const EmojiCatalogue &) = delete;

    const std::vector<EmojiGroup> &groups() const { return m_groups; }
    /// The entry of an emoji, in a skin tone or not, with or without U+FE0F; null if it is none.
    const EmojiEntry *find(const QString &emoji) const;
    /// The emoji of which @p entry is a variant; itself if it is none.
    const EmojiEntry *base(const EmojiEntry *entry) const;

private:
    void addLine(const QString &line);
    void index();

    std::vector<EmojiGroup> m_groups;
    QHash<QString, const EmojiEntry *> m_entries; ///< By the text without U+FE0F.
    QHash<const EmojiEntry *, const EmojiEntry *> m_bases; ///< Of the variants.
};

} // namespace tembra
