#include "RunController/OutputPace.h"

#include <algorithm>

std::chrono::nanoseconds OutputPace::pauseAfter(std::int64_t before, std::int64_t now) const
{
    if (now <= std::max(before, freely))
        return {};
    constexpr std::int64_t leastRoom = std::int64_t{64} * 1024;
    const std::int64_t room = std::max(most - now, leastRoom);
    const double share = static_cast<double>(now - std::max(before, freely)) / static_cast<double>(room);
    return std::chrono::duration_cast<std::chrono::nanoseconds>(share * std::chrono::duration<double>(time));
}
