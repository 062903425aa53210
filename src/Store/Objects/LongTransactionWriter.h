#pragma once

#include "Store/File/Transaction.h"
#include "Store/Objects/ContextWriter.h"
#include "Store/Rows/KeyRanges.h"

#include <optional>

namespace tembra {

class EditWriter;

/// Writes everything in one transaction, which save() commits, in batches while records are
/// inserted, so that memory stays flat. Any failure rolls all of it back: then nothing can be
/// written any more, and save() fails for the same reason. Dropped without save(), it leaves nothing.
class LongTransactionWriter final : public ContextWriter
{
public:
    explicit LongTransactionWriter(EditWriter &writer);

    void willInsert(ObjectID id) override;
    void didAddEdits() override {}
    Result<void> writeEdits() override;
    Result<IdentityMap::ObjectList> save() override;
    Result<void> transact(const std::function<Result<void>(Transaction &)> &work) override;

    const KeyRanges &insertedKeys() const { return m_insertedKeys; }
    /// Rolls everything back. Returns @p reason as a failure.
    tl::unexpected<Error> rollBack(const Error &reason);

private:
    Result<void> begin();

    EditWriter &m_writer;
    std::optional<Transaction> m_transaction;
    std::optional<Error> m_failure; ///< Why it was rolled back.
    KeyRanges m_insertedKeys;
};

} // namespace tembra
