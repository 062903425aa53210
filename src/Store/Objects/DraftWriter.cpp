#include "Store/Objects/DraftWriter.h"

#include "Foundation/Logging.h"
#include "Store/Objects/EditWriter.h"
#include "Store/Objects/PendingEdits.h"
#include "Store/Objects/TurnNotifier.h"

#include <utility>

namespace tembra {

using namespace std::chrono_literals;

namespace {

constexpr auto draftDelay = 1000ms;
constexpr auto retryDelay = 500ms;

} // namespace

DraftWriter::DraftWriter(EditWriter &writer, TurnNotifier &turns) : m_writer(writer), m_turns(turns)
{
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { (void)writeEdits(); });
}

void DraftWriter::didAddEdits()
{
    if (!m_timer.isActive())
        m_timer.start(draftDelay);
}

Result<void> DraftWriter::writeEdits()
{
    if (m_writer.edits().isEmpty())
        return {};
    const Result<IdentityMap::ObjectList> vanished = write(Transaction::Durability::Draft);
    if (vanished) {
        IdentityMap::notifyDeleted(*vanished);
        return {};
    }
    if (!std::exchange(m_isFailing, true))
        qCWarning(storeLog, "Edits could not be written yet; they are kept and tried again: %s",
                  qUtf8Printable(vanished.error().description()));
    return failure(vanished.error());
}

Result<IdentityMap::ObjectList> DraftWriter::save()
{
    return write(Transaction::Durability::Durable);
}

Result<IdentityMap::ObjectList> DraftWriter::write(Transaction::Durability durability)
{
    m_timer.start(retryDelay); // Not needed if all goes well.
    std::vector<ObjectID> vanished;
    {
        Result<Transaction> transaction = Transaction::begin(m_writer.connection(), durability);
        if (!transaction)
            return failure(transaction.error());
        Result<std::vector<ObjectID>> written = m_writer.write(*transaction);
        if (!written)
            return failure(written.error());
        if (const Result<void> committed = transaction->commit(); !committed)
            return failure(committed.error());
        vanished = std::move(*written);
    }
    m_timer.stop();
    // Queries did not see these edits when they were told.
    if (std::exchange(m_isFailing, false))
        m_turns.changes().addBulk(m_writer.edits().entities());
    return m_writer.didCommit(vanished);
}

Result<void> DraftWriter::transact(const std::function<Result<void>(Transaction &)> &work)
{
    Result<Transaction> transaction = Transaction::begin(m_writer.connection(),
                                                         Transaction::Durability::Draft);
    if (!transaction)
        return failure(transaction.error());
    return work(*transaction).and_then([&] { return transaction->commit(); });
}

} // namespace tembra
