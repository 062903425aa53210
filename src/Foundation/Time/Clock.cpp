#include "Foundation/Time/Clock.h"

#include <chrono>

namespace tembra {

Date SystemClock::now() const
{
    using namespace std::chrono;
    const duration<double, std::milli> sinceEpoch = system_clock::now().time_since_epoch();
    return Date::fromUnixMilliseconds(sinceEpoch.count());
}

} // namespace tembra
