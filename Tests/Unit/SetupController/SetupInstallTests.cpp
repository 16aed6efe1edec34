#include "SetupControllerTest.h"

using namespace Qt::StringLiterals;

TEST_F(SetupControllerTest, InstallsAndThenStarts)
{
    tools.addTool(u"brew"_s, u"echo fetching; cat; sleep 0.05; echo warned >&2"_s);
    addOrb(running, u"echo up"_s);
    setup.install();
    EXPECT_TRUE(setup.busy());
    EXPECT_EQ(setup.note(), u"Installing OrbStack with Homebrew…"_s);
    EXPECT_EQ(setup.log(), u"$ brew install --cask orbstack\n"_s);
    EXPECT_EQ(setup.state(), OrbState::checking) << "an install leaves the state alone";
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::running);
    EXPECT_EQ(setup.note(), QString());
    EXPECT_EQ(setup.log(),
              u"$ brew install --cask orbstack\nfetching\nwarned\n\nInstall finished.\n$ orb start\nup\n"_s);
    EXPECT_EQ(tools.calls(u"brew"_s), QStringList{u"<install><--cask><orbstack>"_s});
    EXPECT_EQ(order, QStringList({u"busy"_s, u"Installing OrbStack with Homebrew…"_s, u"starting"_s,
                                  u"Starting OrbStack…"_s, u"free"_s, u"running"_s, QString()}));
}

TEST_F(SetupControllerTest, ClearsTheLogForAnInstall)
{
    addOrb(running, u"echo old"_s);
    setup.start();
    EXPECT_TRUE(waitUntilFree());
    tools.addTool(u"brew"_s, u"exit 1"_s);
    setup.install();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.log(), u"$ brew install --cask orbstack\n"_s);
}

TEST_F(SetupControllerTest, DoesNothingWithoutHomebrew)
{
    setup.install();
    EXPECT_FALSE(setup.busy());
    EXPECT_EQ(setup.note(), QString());
    EXPECT_EQ(setup.log(), QString());
    EXPECT_TRUE(order.isEmpty());
}

TEST_F(SetupControllerTest, SaysSoWhenOrbIsMissingAfterTheInstall)
{
    tools.addTool(u"brew"_s, {});
    setup.install();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::notInstalled);
    EXPECT_EQ(setup.note(), notFoundNote);
}

TEST_F(SetupControllerTest, ReportsAFailedInstallAndLooksAgain)
{
    tools.addTool(u"brew"_s, u"echo 'Error: no' >&2; exit 3"_s);
    addOrb(running);
    setup.install();
    EXPECT_TRUE(waitUntil([&] { return setup.state() == OrbState::running; }));
    EXPECT_FALSE(setup.busy());
    EXPECT_EQ(setup.note(), u"Install failed (exit 3). See the log."_s);
    EXPECT_TRUE(setup.hasBrew());
    EXPECT_EQ(calls(), QStringList{u"<status>"_s});
    EXPECT_EQ(order.mid(2), QStringList({u"free"_s, setup.note(), u"running"_s}));
}

TEST_F(SetupControllerTest, ReportsAnInstallThatCannotStart)
{
    tools.addTool(u"brew"_s, {});
    tools.setInterpreter(u"brew"_s, u"/nonexistent/shell"_s);
    setup.install();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.note(), u"Install failed (exit -1). See the log."_s);
    EXPECT_TRUE(setup.log().startsWith(u"$ brew install --cask orbstack\nCould not start brew: "_s));
    EXPECT_EQ(setup.state(), OrbState::notInstalled);
}

TEST_F(SetupControllerTest, ReportsAnInstallThatTimesOut)
{
    SetupController hasty(SetupTimeLimits{.install = 0.2});
    tools.addTool(u"brew"_s, TestTools::untilTerminated(4));
    hasty.install();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.note(), u"Install timed out."_s);
    EXPECT_EQ(hasty.state(), OrbState::notInstalled);
}

TEST_F(SetupControllerTest, TakesAnInstallThatEndsWellAtItsTimeLimitAsFinished)
{
    SetupController hasty(SetupTimeLimits{.install = 1});
    tools.addTool(u"brew"_s, TestTools::untilTerminated(0));
    addOrb(running);
    hasty.install();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.state(), OrbState::running);
}

TEST_F(SetupControllerTest, ReportsACancelledInstallWhateverBrewExitsWith)
{
    for (const int status : {0, 1}) {
        tools.addTool(u"brew"_s, TestTools::untilTerminated(status));
        addOrb(stopped);
        const qsizetype before = tools.calls(u"brew"_s).size();
        setup.install();
        EXPECT_TRUE(waitUntil([&] { return tools.calls(u"brew"_s).size() > before; }));
        setup.cancel();
        EXPECT_TRUE(waitUntilFree());
        EXPECT_EQ(setup.note(), u"Install cancelled."_s);
        EXPECT_TRUE(waitUntil([&] { return setup.state() == OrbState::stopped; }));
        EXPECT_FALSE(calls().contains(u"<start>"_s));
    }
}

TEST_F(SetupControllerTest, CancelsTheStartThatFollowsAnInstall)
{
    tools.addTool(u"brew"_s, {});
    addOrb(running, TestTools::untilTerminated(0));
    setup.install();
    EXPECT_TRUE(waitUntil([&] { return calls().contains(u"<start>"_s); }));
    setup.cancel();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::stopped);
    EXPECT_EQ(setup.note(), u"Cancelled."_s);
    EXPECT_EQ(setup.log(), u"$ brew install --cask orbstack\n\nInstall finished.\n$ orb start\n"_s);
    EXPECT_EQ(calls(), QStringList{u"<start>"_s}) << "no poll";
}

TEST_F(SetupControllerTest, GoesOnPollingPastAStatusThatHangsAndIgnoresItsTimeLimit)
{
    SetupController hasty(SetupTimeLimits{.status = 2});
    addOrb(u"trap '' TERM\n"_s + tools.waitForFile(u"go"_s) + running);
    EXPECT_TRUE(waitFor(hasty.refresh()));
    EXPECT_EQ(hasty.state(), OrbState::stopped);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitFor(hasty.refresh()));
    EXPECT_EQ(hasty.state(), OrbState::running);
}
