#include "OutputPane/Throttle.h"

#include "Support/Waiting.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(Throttle, ActsAtOnceWhenNobodyAskedLately)
{
    int actions = 0;
    Throttle throttle(1h, [&actions] { ++actions; });
    throttle.request();
    EXPECT_EQ(actions, 1);
}

TEST(Throttle, ActsOnceForAllThatIsAskedForTooEarly)
{
    int actions = 0;
    Throttle throttle(50ms, [&actions] { ++actions; });
    for (int request = 0; request < 100; ++request)
        throttle.request();
    EXPECT_EQ(actions, 1);
    EXPECT_TRUE(waitUntil([&actions] { return actions == 2; }));
}

TEST(Throttle, ActsNoMoreOftenThanOnceInItsInterval)
{
    int actions = 0;
    Throttle throttle(50ms, [&actions] { ++actions; });
    QElapsedTimer time;
    time.start();
    waitUntil([&] {
        throttle.request();
        return actions == 5;
    });
    EXPECT_EQ(actions, 5);
    EXPECT_GE(time.elapsed(), 190) << "four whole intervals, by a timer that may be a twentieth early";
}
