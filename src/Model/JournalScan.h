#pragma once

#include "Foundation/Result.h"
#include "Model/RecordValues.h"
#include "Store/Rows/RecordScan.h"

#include <QHash>

#include <functional>
#include <span>

namespace tembra {

class ManagedObjectContext;

/// Goes through a journal as values: teammates one by one, and their meetings with notes and tags a
/// few dozen at a time, so that a journal of any size needs no more memory than those. Unlike
/// objects, which show a value that cannot be read as missing, it fails.
class JournalScan
{
public:
    /// A teammate and the ascending keys of the meetings.
    struct Teammate
    {
        CounterpartValues values;
        std::vector<qint64> sessionKeys;
    };
    using Visitor = std::function<void(const SessionValues &session)>;

    /// Fails when the journal cannot be read whole, edits of this moment included.
    static Result<JournalScan> of(ManagedObjectContext &context);

    /// The teammate with this key; nothing when there is none in the store.
    Result<std::optional<Teammate>> teammate(qint64 key);
    /// Visits the meetings with these ascending keys in their order: notes by field, tags in the
    /// order of Session::sortedTags().
    Result<void> forEachSession(std::span<const qint64> keys, const Visitor &visit);

private:
    JournalScan(ManagedObjectContext &context, RecordScan records);

    struct Piece;
    Result<void> readTags();
    Result<void> readPiece(Piece &piece);
    void take(const std::vector<Value> &row, qint64 key, SessionValues &session) const;

    ManagedObjectContext *m_context;
    RecordScan m_records;
    QHash<qint64, TagValues> m_tags;
};

} // namespace tembra
