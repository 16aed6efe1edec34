#pragma once

// How fast a child may print once the transcript is large. Nothing that was shown is lost and all of it is held in
// memory, so what hardly compresses must not come at any speed: like a terminal, Tidewell lets the child wait.
//
// Up to `freely` bytes of memory nothing is held up. From there on the transcript may grow, per `time`, by about two
// thirds of what is left below `most`: slower and slower, never to a standstill, and hardly past `most` within days.

#include <chrono>
#include <cstdint>

struct OutputPace {
    std::int64_t freely = std::int64_t{1024} * 1024 * 1024;
    /// The rest of the application fits between this and one and a half GiB.
    std::int64_t most = std::int64_t{1344} * 1024 * 1024;
    /// As long as a run with a time limit takes at most.
    std::chrono::seconds time{600};

    /// How long the child's output is to be left alone after the transcript's memory has grown from one size to
    /// another.
    std::chrono::nanoseconds pauseAfter(std::int64_t before, std::int64_t now) const;
};
