#include "Tags/TagCandidates.h"

#include "Store/Results/FetchedResultsController.h"

namespace tembra {

const std::vector<TagCandidates::Candidate> &TagCandidates::candidates() const
{
    if (!m_candidates.empty())
        return m_candidates;
    const auto objects = m_tags.fetchedObjects();
    if (!objects)
        return m_candidates; // The next key tries again.
    m_candidates.reserve(size_t(objects->size()));
    for (const std::shared_ptr<ManagedObject> &object : *objects) {
        const auto tag = std::static_pointer_cast<Tag>(object);
        m_candidates.push_back({tag, tag->name().toLower(), tag->emoji()});
    }
    return m_candidates;
}

QStringList TagCandidates::completions(const QString &substring,
                                       const QSet<const QObject *> &attached,
                                       const QString &newTagPrompt) const
{
    const QString lower = substring.toLower();
    QStringList titles;
    bool hasExactMatch = false;
    for (const Candidate &candidate : candidates()) {
        if (attached.contains(candidate.tag.get()))
            continue;
        const bool hasName = !candidate.lowerName.isNull();
        const bool isNamedSo = hasName && candidate.lowerName.startsWith(lower);
        if (isNamedSo || (!candidate.emoji.isNull() && candidate.emoji == substring))
            titles.append(candidate.tag->titleString());
        hasExactMatch = hasExactMatch || (hasName && candidate.lowerName == lower);
    }
    if (!hasExactMatch)
        titles.append(substring + newTagPrompt);
    return titles;
}

std::shared_ptr<Tag> TagCandidates::tagTitled(const QString &title) const
{
    for (const Candidate &candidate : candidates()) {
        if (candidate.tag->titleString() == title)
            return candidate.tag;
    }
    return {};
}

} // namespace tembra
