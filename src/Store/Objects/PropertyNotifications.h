#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace tembra {

class ManagedObject;

/// Collects NOTIFY signals, to emit them once the state behind them is complete. Keeps their
/// objects alive.
class PropertyNotifications
{
public:
    /// Nothing happens when @p object is null.
    void add(std::shared_ptr<ManagedObject> object, int property);
    void emitAll() const;

private:
    std::vector<std::pair<std::shared_ptr<ManagedObject>, int>> m_notifications;
};

} // namespace tembra
