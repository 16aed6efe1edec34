#include "SetupControllerTest.h"

using namespace Qt::StringLiterals;

TEST_F(SetupControllerTest, StopsAndLooksAgain)
{
    addOrb(running);
    EXPECT_TRUE(waitFor(setup.refresh()));
    order.clear();
    addOrb(stopped);
    setup.stop();
    EXPECT_TRUE(setup.busy());
    EXPECT_EQ(setup.note(), u"Stopping OrbStack…"_s);
    EXPECT_TRUE(waitUntil([&] { return setup.state() == OrbState::stopped; }));
    EXPECT_EQ(setup.note(), QString());
    EXPECT_EQ(setup.log(), QString());
    EXPECT_EQ(calls(), QStringList({u"<status>"_s, u"<stop>"_s, u"<status>"_s}));
    EXPECT_EQ(order, QStringList({u"busy"_s, u"Stopping OrbStack…"_s, u"free"_s, QString(), u"stopped"_s}));
}

TEST_F(SetupControllerTest, ReportsAFailedStop)
{
    addOrb(running, u":"_s, u"echo ' <i>no</i> '; exit 1"_s);
    setup.stop();
    EXPECT_TRUE(waitUntil([&] { return setup.state() == OrbState::running; }));
    EXPECT_EQ(setup.note(), u"Stop failed: <i>no</i>"_s);
    addOrb(running, u":"_s, u"exit 1"_s);
    setup.stop();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.note(), u"Stop failed: "_s);
}

TEST_F(SetupControllerTest, ReportsAStopThatTimesOut)
{
    SetupController hasty(SetupTimeLimits{.stop = 1});
    addOrb(running, u":"_s, u"echo slow\n"_s + TestTools::untilTerminated(0));
    hasty.stop();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.note(), u"Stop failed: slow"_s);
}

TEST_F(SetupControllerTest, ReportsAStopThatCannotStart)
{
    addOrb(running);
    tools.setInterpreter(u"orb"_s, u"/nonexistent/shell"_s);
    setup.stop();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_TRUE(setup.note().startsWith(u"Stop failed: Could not start orb: "_s)) << setup.note().toStdString();
}

TEST_F(SetupControllerTest, DoesNothingOnStopWithoutOrb)
{
    setup.stop();
    EXPECT_FALSE(setup.busy());
    EXPECT_TRUE(order.isEmpty());
}

TEST_F(SetupControllerTest, CannotCancelAStop)
{
    addOrb(stopped, u":"_s, tools.waitForFile(u"go"_s));
    setup.start();
    setup.cancel();
    EXPECT_TRUE(waitUntilFree());
    setup.stop();
    setup.cancel();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.note(), QString());
}
