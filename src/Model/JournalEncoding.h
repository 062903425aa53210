#pragma once

#include "Foundation/Result.h"
#include "Model/RecordValues.h"
#include "Store/Rows/RecordScan.h"

#include <QByteArray>
#include <QHash>
#include <QList>

#include <memory>
#include <span>

namespace tembra {

class Counterpart;
class JsonEncoder;
class ManagedObjectContext;

/// Writes records of a journal as JSON. Reads them in one read transaction, so that all of them are
/// as they were at one moment; as values, because an object shows a value that cannot be read as
/// missing, and this must rather fail; and meetings in batches, so that a journal of any size needs
/// no more memory than its document.
class JournalEncoding
{
public:
    /// Begins the transaction. Fails when edits of the context cannot be written.
    static Result<JournalEncoding> begin(ManagedObjectContext &context, JsonEncoder &encoder);

    /// All teammates of the journal by name.
    Result<std::vector<qint64>> teammates();
    /// Writes a teammate with all meetings.
    Result<void> encodeTeammate(qint64 key);
    /// Writes the meetings with these ascending keys: notes by field, tags in the order of
    /// Session::sortedTags().
    Result<void> encodeSessions(std::span<const qint64> keys);

private:
    JournalEncoding(ManagedObjectContext &context, JsonEncoder &encoder, RecordScan records);

    struct Batch;
    Result<void> readTags();
    Result<void> readBatch(Batch &batch);
    QString uriOf(const QByteArray &entityName, qint64 key) const;

    ManagedObjectContext *m_context;
    JsonEncoder *m_encoder;
    RecordScan m_records;
    QHash<qint64, TagValues> m_tags;
};

/// The JSON document of a backup: every teammate of the journal with everything of theirs, edits of
/// this moment included. Those of @p order come first, in that order; a list that is out of date
/// leaves nobody out. Fails rather than leaving out what cannot be read.
Result<QByteArray> encodeJournal(ManagedObjectContext &context,
                                 const QList<std::shared_ptr<Counterpart>> &order);

} // namespace tembra
