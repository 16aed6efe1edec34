#include "SetupControllerTest.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

TEST_F(SetupControllerTest, StartsByNotKnowing)
{
    EXPECT_EQ(setup.state(), OrbState::checking);
    EXPECT_FALSE(setup.busy());
    EXPECT_FALSE(setup.hasBrew());
    EXPECT_FALSE(setup.hasDocker());
    EXPECT_EQ(setup.log(), QString());
    EXPECT_EQ(setup.note(), QString());
}

TEST_F(SetupControllerTest, SupportsEverySystemButAnOlderMac)
{
#ifndef Q_OS_MACOS
    EXPECT_TRUE(setup.macSupported());
#endif
    EXPECT_FALSE(SetupController(limits, false).macSupported());
}

TEST_F(SetupControllerTest, SupportsMacOSFrom14Dot0On)
{
    const auto isSupported = [](int major, int minor, int micro) {
        return SetupController::isSupported(
            QOperatingSystemVersion(QOperatingSystemVersion::MacOS, major, minor, micro));
    };
    EXPECT_FALSE(isSupported(11, 0, 0));
    EXPECT_FALSE(isSupported(13, 7, 8));
    EXPECT_TRUE(isSupported(14, 0, 0));
    EXPECT_TRUE(isSupported(14, 0, 1));
    EXPECT_TRUE(isSupported(14, 1, 0));
    EXPECT_TRUE(isSupported(15, 0, 0));
    EXPECT_TRUE(isSupported(26, 0, 0));
}

TEST_F(SetupControllerTest, GivesEachToolItsTime)
{
    const SetupTimeLimits seconds;
    EXPECT_EQ(seconds.status, 10);
    EXPECT_EQ(seconds.start, 90);
    EXPECT_EQ(seconds.stop, 60);
    EXPECT_EQ(seconds.install, 1800);
    EXPECT_EQ(seconds.pollInterval, 2);
}

TEST_F(SetupControllerTest, NamesTheOperationWhileItGoesOn)
{
    tools.addTool(u"brew"_s, {});
    addOrb(running, tools.waitForFile(u"go"_s));
    EXPECT_EQ(setup.operation(), QString());
    setup.install();
    EXPECT_EQ(setup.operation(), u"OrbStack is being installed."_s);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.operation(), QString());
    setup.start();
    EXPECT_EQ(setup.operation(), u"OrbStack is being started."_s);
    EXPECT_TRUE(waitUntilFree());
    setup.stop();
    EXPECT_EQ(setup.operation(), u"OrbStack is being stopped."_s);
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.operation(), QString());
}

TEST_F(SetupControllerTest, FindsTheTools)
{
    EXPECT_TRUE(waitFor(setup.refresh()));
    EXPECT_EQ(setup.state(), OrbState::notInstalled);
    EXPECT_FALSE(setup.hasBrew());
    EXPECT_FALSE(setup.hasDocker());

    tools.addTool(u"brew"_s, {}, 1);
    tools.addTool(u"docker"_s, {}, 2);
    addOrb(running);
    EXPECT_TRUE(waitFor(setup.refresh()));
    EXPECT_EQ(setup.state(), OrbState::running);
    EXPECT_TRUE(setup.hasBrew());
    EXPECT_TRUE(setup.hasDocker());
    EXPECT_EQ(calls(), QStringList{u"<status>"_s});

    tools.removeTool(u"brew"_s, 1);
    tools.removeTool(u"docker"_s, 2);
    tools.removeTool(u"orb"_s);
    EXPECT_TRUE(waitFor(setup.refresh()));
    EXPECT_EQ(setup.state(), OrbState::notInstalled);
    EXPECT_FALSE(setup.hasBrew());
    EXPECT_FALSE(setup.hasDocker());
}

TEST_F(SetupControllerTest, FindsBrewInItsOwnTwoPlacesOnly)
{
    tools.addTool(u"brew"_s, {}, 2);
    EXPECT_TRUE(waitFor(setup.refresh()));
    EXPECT_FALSE(setup.hasBrew());
}

TEST_F(SetupControllerTest, CountsAsRunningWhatExitsWellAndSaysSo)
{
    for (const QString &status : {running, u"echo RUNNING"_s, u"echo 'it is running now' >&2"_s}) {
        addOrb(status);
        EXPECT_TRUE(waitFor(setup.refresh()));
        EXPECT_EQ(setup.state(), OrbState::running) << status.toStdString();
    }
    for (const QString &status :
         {stopped, u":"_s, u"echo Running; exit 1"_s, u"echo Runnin"_s, u"echo Running; kill -TERM $$"_s}) {
        addOrb(status);
        EXPECT_TRUE(waitFor(setup.refresh()));
        EXPECT_EQ(setup.state(), OrbState::stopped) << status.toStdString();
    }
}

TEST_F(SetupControllerTest, CountsAsStoppedWhenTheStatusTimesOutOrCannotStart)
{
    SetupController hasty(SetupTimeLimits{.status = 0.2});
    addOrb(u"echo Running\n"_s + TestTools::untilTerminated(0));
    EXPECT_TRUE(waitFor(hasty.refresh()));
    EXPECT_EQ(hasty.state(), OrbState::stopped);

    addOrb(running);
    EXPECT_TRUE(waitFor(setup.refresh()));
    tools.setInterpreter(u"orb"_s, u"/nonexistent/running"_s);
    EXPECT_TRUE(waitFor(setup.refresh()));
    EXPECT_EQ(setup.state(), OrbState::stopped);
}

TEST_F(SetupControllerTest, IgnoresEveryRequestWhileBusy)
{
    tools.addTool(u"brew"_s, {});
    addOrb(running, tools.waitForFile(u"go"_s));
    setup.start();
    setup.start();
    setup.install();
    setup.stop();
    EXPECT_EQ(setup.note(), u"Starting OrbStack…"_s);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(calls(), QStringList({u"<start>"_s, u"<status>"_s}));
    EXPECT_EQ(tools.calls(u"brew"_s), QStringList());
}

TEST_F(SetupControllerTest, CapsTheLog)
{
    tools.addTool(u"brew"_s, u"head -c 1000000 /dev/zero | tr '\\0' x; exit 1"_s);
    setup.install();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_LE(setup.log().size(), 200'000);
    EXPECT_GE(setup.log().size(), 150'000);
    EXPECT_EQ(setup.log().count(u'x'), setup.log().size());
}

TEST_F(SetupControllerTest, OpensTheSiteThroughTheApplication)
{
    QString address;
    QObject::connect(&setup, &SetupController::siteRequested, &setup,
                     [&](const QString &requested) { address = requested; });
    setup.openOrbStackSite();
    EXPECT_EQ(address, u"https://orbstack.dev"_s);
}

TEST_F(SetupControllerTest, MayGoAwayWhileItsToolsRun)
{
    addOrb(tools.waitForFile(u"go"_s) + stopped, tools.waitForFile(u"go"_s), tools.waitForFile(u"go"_s));
    tools.addTool(u"brew"_s, tools.waitForFile(u"go"_s));
    int ended = 0;
    for (int operation = 0; operation < 4; ++operation) {
        auto doomed = std::make_unique<SetupController>(limits);
        if (operation == 0)
            doomed->refresh().then([&ended] { ++ended; });
        else if (operation == 1)
            doomed->start();
        else if (operation == 2)
            doomed->stop();
        else
            doomed->install();
    }
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 3 && tools.calls(u"brew"_s).size() == 1; }));
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return ended == 1; }));
    EXPECT_TRUE(waitFor(setup.refresh()));
    EXPECT_TRUE(waitFor(setup.refresh())) << "the loop turned long enough for the others to wake up, too";
    EXPECT_EQ(calls().size(), 5) << "nobody went on to a next step";
}

TEST_F(SetupControllerTest, MayGoAwayBetweenTwoPolls)
{
    auto doomed = std::make_unique<SetupController>(SetupTimeLimits{.pollInterval = 0.2});
    addOrb(stopped);
    doomed->start();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 2; }));
    QElapsedTimer timer;
    timer.start();
    doomed.reset();
    EXPECT_TRUE(waitUntil([&] { return timer.elapsed() > 400; }));
    EXPECT_EQ(calls().size(), 2);
}
