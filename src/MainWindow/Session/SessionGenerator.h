#pragma once

#include "Foundation/Time/Date.h"

#include <memory>

namespace tembra {

class Counterpart;
class ManagedObjectContext;

/// Adds @p count made-up meetings to a teammate, a day apart up to @p now, rated and with some notes
/// filled, as one step of undo. A development action uses it to try a long history.
void generateSessions(ManagedObjectContext &context,
                      const std::shared_ptr<Counterpart> &counterpart, int count, Date now);

} // namespace tembra
