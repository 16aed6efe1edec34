#pragma once

// A steady clock that stands still while the computer sleeps, as the timeouts of poll() do on every system. A time
// limit by it is over after so much time awake, however often its child prints meanwhile.

#include <chrono>
#include <ctime>

struct AwakeClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<AwakeClock>;
    static constexpr bool is_steady = true;

    static time_point now() noexcept
    {
#ifdef __APPLE__
        // The standard library's steady clock goes on during sleep there.
        return time_point(duration(static_cast<rep>(::clock_gettime_nsec_np(CLOCK_UPTIME_RAW))));
#else
        timespec now{};
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        return time_point(std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec));
#endif
    }
};
