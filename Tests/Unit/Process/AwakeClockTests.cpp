#include "Process/AwakeClock.h"

#include <gtest/gtest.h>

#include <poll.h>

TEST(AwakeClock, AdvancesByNoLessThanPollHasWaited)
{
    const auto before = AwakeClock::now();
    ::poll(nullptr, 0, 50);
    const auto waited = AwakeClock::now() - before;
    EXPECT_GE(waited, std::chrono::milliseconds(50));
    EXPECT_LT(waited, std::chrono::seconds(30));
}
