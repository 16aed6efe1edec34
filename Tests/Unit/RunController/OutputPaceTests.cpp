#include "RunController/OutputPace.h"

#include <gtest/gtest.h>

namespace
{

constexpr std::int64_t mebibyte = 1024 * 1024;
constexpr std::int64_t gibibyte = 1024 * mebibyte;

/// What a transcript holds when a child that prints without end grows it by `piece` whenever it may.
std::int64_t heldAfter(std::chrono::seconds time, std::int64_t piece)
{
    const OutputPace pace;
    std::int64_t held = 0;
    std::chrono::nanoseconds elapsed{};
    while (elapsed < time && held < 4 * gibibyte) {
        elapsed += pace.pauseAfter(held, held + piece);
        held += piece;
    }
    return held;
}

} // namespace

TEST(OutputPace, HoldsNothingUpBelowAGibibyte)
{
    const OutputPace pace;
    EXPECT_EQ(pace.pauseAfter(0, gibibyte).count(), 0);
    EXPECT_EQ(pace.pauseAfter(gibibyte - 1, gibibyte).count(), 0);
    EXPECT_GT(pace.pauseAfter(gibibyte, gibibyte + 1).count(), 0);
}

TEST(OutputPace, HoldsNothingUpWhenTheTranscriptDidNotGrow)
{
    const OutputPace pace;
    EXPECT_EQ(pace.pauseAfter(gibibyte + mebibyte, gibibyte + mebibyte).count(), 0);
    EXPECT_EQ(pace.pauseAfter(2 * gibibyte, gibibyte + mebibyte).count(), 0);
}

TEST(OutputPace, LeavesRoomAfterTenMinutesOfAFlood)
{
    const std::int64_t held = heldAfter(std::chrono::minutes(10), 100'000);
    EXPECT_GT(held, gibibyte + 150 * mebibyte);
    EXPECT_LT(held, gibibyte + 230 * mebibyte);
}

TEST(OutputPace, LetsAFloodHardlyPastTheMostInAWholeDay)
{
    const std::int64_t most = OutputPace().most;
    EXPECT_LT(heldAfter(std::chrono::hours(24), 100'000), most + 12 * mebibyte);
    // In pieces as large as all that can be on its way when a pause begins.
    EXPECT_LT(heldAfter(std::chrono::hours(24), 8 * mebibyte), most + 16 * mebibyte);
}

TEST(OutputPace, NeverStandsStill)
{
    const OutputPace pace;
    EXPECT_LT(pace.pauseAfter(pace.most, pace.most + 1000), std::chrono::seconds(10));
}
