#pragma once

#include "Model/Tag.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace tembra {

class FetchedResultsController;

/// A search index over the tags that a field completes to, fast enough for every key.
class TagCandidates
{
public:
    /// Completions come in the order of @p tags, which must outlive this.
    explicit TagCandidates(FetchedResultsController &tags) : m_tags(tags) {}

    /// The titles of the tags that @p substring begins to name, whatever its case, or whose emoji it
    /// is; last of all, unless one is named exactly so, @p substring itself followed by
    /// @p newTagPrompt. Tags of @p attached are passed over.
    QStringList completions(const QString &substring, const QSet<const QObject *> &attached,
                            const QString &newTagPrompt) const;
    /// The first tag with exactly this title, if any.
    std::shared_ptr<Tag> tagTitled(const QString &title) const;

    /// Drops the cache; to be called when the tags have changed.
    void invalidate() { m_candidates.clear(); }

private:
    struct Candidate
    {
        std::shared_ptr<Tag> tag;
        QString lowerName; ///< Null when the tag has no name.
        QString emoji;
    };

    const std::vector<Candidate> &candidates() const;

    FetchedResultsController &m_tags;
    mutable std::vector<Candidate> m_candidates; ///< A cache, filled on demand.
};

} // namespace tembra
