#pragma once

#include "QueryJournal.h"

#include "Store/Query/PredicateNode.h"

namespace tembra::test {

/// What a predicate means, written down a second time: over plain values, without SQL.
class PlainEvaluator
{
public:
    explicit PlainEvaluator(const QueryJournal &journal);

    bool matches(const PredicateNode &node, int entity, qint64 key) const;
    /// The answer to a request as it must be.
    std::vector<qint64> fetchKeys(const FetchRequest &request) const;

private:
    bool compares(const Comparison &comparison, int entity, qint64 key) const;
    /// The values at the end of a key path: one, or as many as there are related records.
    std::vector<Value> valuesAt(int entity, qint64 key, const QList<QByteArray> &names) const;
    std::vector<qint64> related(int entity, qint64 key, int toMany) const;

    const QueryJournal &m_journal;
};

} // namespace tembra::test
