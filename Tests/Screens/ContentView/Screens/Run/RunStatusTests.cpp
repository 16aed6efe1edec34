#include "Screens/ContentView/Screens/Run/RunViewSteps.h"

#include "Screens/TimerWatch.h"

TEST(RunStatus, CountsTheSecondsExactlyAndOnlyWhileARunGoes)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    const TimerWatch seconds(std::chrono::seconds(1));
    window.run.setScript(u"exec sleep 600"_s);
    press(content, u"Run"_s);
    EXPECT_TRUE(shows(content, u"0s"_s));
    ASSERT_TRUE(waitUntil([&] { return seconds.timer() != nullptr; }));
    EXPECT_EQ(seconds.timer()->timerType(), Qt::PreciseTimer);
    EXPECT_TRUE(seconds.timer()->isActive());
    window.run.stop();
    ASSERT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
    EXPECT_FALSE(seconds.timer()->isActive());
    find<QPushButton>(content, u"Run"_s)->click(); // by the keyboard, as it were: two quick clicks are one wish
    EXPECT_TRUE(shows(content, u"0s"_s)) << "from the start again";
}
