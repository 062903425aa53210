#pragma once

#include "Foundation/Time/Date.h"

namespace tembra {

/// Where "now" comes from; an input of everything that needs it, so that tests set the time.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual Date now() const = 0;
};

/// The computer's clock.
class SystemClock final : public Clock
{
public:
    Date now() const override;
};

} // namespace tembra
