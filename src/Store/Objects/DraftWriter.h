#pragma once

#include "Store/File/Transaction.h"
#include "Store/Objects/ContextWriter.h"

#include <QTimer>

namespace tembra {

class EditWriter;
class TurnNotifier;

/// Writes edits as drafts: at the latest one second after they were made, in a transaction of their
/// own that does not wait for the disk. What cannot be written stays pending and is tried again.
class DraftWriter final : public ContextWriter
{
public:
    DraftWriter(EditWriter &writer, TurnNotifier &turns);

    void willInsert(ObjectID) override {}
    void didAddEdits() override;
    Result<void> writeEdits() override;
    Result<IdentityMap::ObjectList> save() override;
    Result<void> transact(const std::function<Result<void>(Transaction &)> &work) override;

private:
    Result<IdentityMap::ObjectList> write(Transaction::Durability durability);

    EditWriter &m_writer;
    TurnNotifier &m_turns;
    QTimer m_timer;
    bool m_isFailing = false; ///< The log says so already.
};

} // namespace tembra
