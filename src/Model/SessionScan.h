#pragma once

#include "Foundation/Result.h"
#include "Model/RecordValues.h"
#include "Store/RecordScan.h"

#include <QHash>

#include <functional>
#include <span>

namespace tembra {

class ManagedObjectContext;

/// Goes through meetings with their notes and tags as values, a few hundred at a time, so that a
/// journal of any size needs no more memory than those.
class SessionScan
{
public:
    using Visitor = std::function<void(const SessionValues &session)>;

    /// Fails when the journal cannot be read whole, edits of this moment included.
    static Result<SessionScan> of(ManagedObjectContext &context);

    /// Visits the meetings with these ascending keys in their order: notes by field, tags in the
    /// order of Session::sortedTags().
    Result<void> forEach(std::span<const qint64> keys, const Visitor &visit);

private:
    SessionScan(ManagedObjectContext &context, RecordScan records);

    struct Piece;
    Result<void> readTags();
    Result<void> readPiece(Piece &piece);
    void take(const std::vector<Value> &row, qint64 key, SessionValues &session) const;

    ManagedObjectContext *m_context;
    RecordScan m_records;
    QHash<qint64, TagValues> m_tags;
};

} // namespace tembra
