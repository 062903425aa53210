#pragma once

#include "Foundation/Result.h"
#include "Store/Objects/IdentityMap.h"

#include <functional>

namespace tembra {

class Transaction;

/// How a context writes: decides when its edits are written, and in which transactions.
class ContextWriter
{
public:
    virtual ~ContextWriter() = default;

    /// To be called before a record is inserted.
    virtual void willInsert(ObjectID id) = 0;
    /// To be called when edits were added to what is pending.
    virtual void didAddEdits() = 0;

    /// Writes what is pending, so that queries see it.
    virtual Result<void> writeEdits() = 0;
    /// Writes what is pending and waits until the disk has it. Returns the objects of records that
    /// turned out to be deleted elsewhere, for IdentityMap::notifyDeleted().
    virtual Result<IdentityMap::ObjectList> save() = 0;
    /// Runs @p work, all of it or nothing. What is pending is to be written before.
    virtual Result<void> transact(const std::function<Result<void>(Transaction &)> &work) = 0;
};

} // namespace tembra
