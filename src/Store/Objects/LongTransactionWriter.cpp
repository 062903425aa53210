#include "Store/Objects/LongTransactionWriter.h"

#include "Store/File/Connection.h"
#include "Store/Objects/EditWriter.h"
#include "Store/Objects/PendingEdits.h"

namespace tembra {

namespace {

/// How many new records are gathered before they are written and let go of.
constexpr qsizetype batchSize = 500;

} // namespace

LongTransactionWriter::LongTransactionWriter(EditWriter &writer) : m_writer(writer) {}

void LongTransactionWriter::willInsert(ObjectID id)
{
    if (m_writer.edits().recordCount() >= batchSize)
        (void)writeEdits(); // A failure is remembered, and returned by save().
    m_insertedKeys.add(id.key);
}

Result<void> LongTransactionWriter::begin()
{
    if (m_failure)
        return rollBack(Error(*m_failure));
    if (m_transaction)
        return {};
    Result<Transaction> begun = Transaction::begin(m_writer.connection(),
                                                   Transaction::Durability::Durable);
    if (!begun)
        return rollBack(begun.error());
    m_transaction.emplace(std::move(*begun));
    return {};
}

Result<void> LongTransactionWriter::writeEdits()
{
    if (m_writer.edits().isEmpty())
        return {};
    if (const Result<void> begun = begin(); !begun)
        return begun;
    const Result<std::vector<ObjectID>> vanished = m_writer.write(*m_transaction);
    if (!vanished)
        return rollBack(vanished.error());
    IdentityMap::notifyDeleted(m_writer.didCommit(*vanished));
    return {};
}

Result<IdentityMap::ObjectList> LongTransactionWriter::save()
{
    if (m_failure)
        return rollBack(Error(*m_failure));
    if (const Result<void> written = writeEdits(); !written)
        return failure(written.error());
    if (!m_transaction)
        return IdentityMap::ObjectList();
    if (const Result<void> committed = m_transaction->commit(); !committed)
        return rollBack(committed.error());
    m_transaction.reset();
    // On this thread, where nobody waits for it.
    m_writer.connection().checkpointAsFarAsPossible();
    return IdentityMap::ObjectList();
}

Result<void> LongTransactionWriter::transact(const std::function<Result<void>(Transaction &)> &work)
{
    if (Result<void> begun = begin(); !begun)
        return begun;
    if (const Result<void> done = work(*m_transaction); !done)
        return rollBack(done.error());
    return {};
}

/// What is written cannot be told apart from what is not once the transaction is gone: so nothing
/// of it can be tried again.
tl::unexpected<Error> LongTransactionWriter::rollBack(const Error &reason)
{
    m_failure = reason;
    m_transaction.reset();
    m_writer.discard();
    return failure(reason);
}

} // namespace tembra
