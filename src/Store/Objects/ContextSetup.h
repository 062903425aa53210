#pragma once

#include <memory>

namespace tembra {

class Connection;
class IdAllocator;

/// What a container hands to a context that it makes.
struct ContextSetup
{
    std::shared_ptr<Connection> connection;
    IdAllocator *ids = nullptr; ///< Must outlive the context.
    /// A background context owns its connection alone, keeps no undo, tells nothing per turn, and
    /// writes everything in one transaction.
    bool isBackground = false;
};

} // namespace tembra
