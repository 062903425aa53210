#pragma once

#include "Foundation/Time/Clock.h"

namespace tembra {

/// A clock that stands still until a test moves it.
class FixedClock final : public Clock
{
public:
    explicit FixedClock(Date now) : m_now(now) {}

    Date now() const override { return m_now; }
    void setNow(Date now) { m_now = now; }
    void advance(double seconds) { m_now = m_now.adding(seconds); }

private:
    Date m_now;
};

} // namespace tembra
