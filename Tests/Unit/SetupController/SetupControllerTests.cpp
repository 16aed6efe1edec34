#include "SetupController/SetupController.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

const QString notFoundNote =
    u"orb was not found after installing. OrbStack may need to be opened once from Applications to "
    "finish its setup."_s;
const QString lateNote = u"OrbStack did not report running within 90 seconds. It may need to be opened once from "
                         "Applications to finish its setup."_s;

/// A controller over fake tools, with far-away limits and short pauses between two polls.
class SetupControllerTest : public testing::Test
{
protected:
    SetupControllerTest()
    {
        QObject::connect(&setup, &SetupController::stateChanged, &setup, [this] { order << name(setup.state()); });
        QObject::connect(&setup, &SetupController::busyChanged, &setup,
                         [this] { order << (setup.busy() ? u"busy"_s : u"free"_s); });
        QObject::connect(&setup, &SetupController::noteChanged, &setup, [this] { order << setup.note(); });
    }

    static QString name(OrbState state)
    {
        return QStringList{u"checking"_s, u"notInstalled"_s, u"stopped"_s, u"starting"_s, u"running"_s}.at(
            static_cast<int>(state));
    }

    /// An `orb` with these answers to status, start and stop.
    void addOrb(const QString &status, const QString &start = u":"_s, const QString &stop = u":"_s)
    {
        tools.addTool(u"orb"_s, u"case $1 in\nstatus) "_s + status + u";;\nstart) "_s + start + u";;\nstop) "_s + stop +
                                    u";;\nesac"_s);
    }

    bool waitUntilFree()
    {
        return waitUntil([this] { return !setup.busy(); });
    }

    QStringList calls() const { return tools.calls(u"orb"_s); }

    TestTools tools;
    const SetupTimeLimits limits{.status = 20, .start = 20, .stop = 20, .install = 20, .pollInterval = 0.01};
    SetupController setup{limits};
    QStringList order;
};

const QString running = u"echo Running"_s;
const QString stopped = u"echo Stopped"_s;

} // namespace

// ---- Refresh

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

// ---- Start

TEST_F(SetupControllerTest, StartsAndPollsUntilOrbStackRuns)
{
    addOrb(u"[ -e '%1' ] && echo Running || { echo Stopped; : > '%1'; }"_s.arg(tools.path(u"asked"_s)),
           u"echo starting; echo hm >&2; exit 9"_s);
    setup.start();
    EXPECT_TRUE(setup.busy());
    EXPECT_EQ(setup.state(), OrbState::starting);
    EXPECT_EQ(setup.note(), u"Starting OrbStack…"_s);
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::running);
    EXPECT_EQ(setup.note(), QString());
    EXPECT_EQ(calls(), QStringList({u"<start>"_s, u"<status>"_s, u"<status>"_s}));
    EXPECT_TRUE(setup.log().startsWith(u"$ orb start\n"_s));
    EXPECT_TRUE(setup.log().contains(u"starting\n"_s) && setup.log().contains(u"hm\n"_s));
    EXPECT_EQ(order,
              QStringList({u"busy"_s, u"starting"_s, u"Starting OrbStack…"_s, u"free"_s, u"running"_s, QString()}));
}

TEST_F(SetupControllerTest, KeepsTheLogOfEarlierStarts)
{
    addOrb(running, u"echo one"_s);
    setup.start();
    EXPECT_TRUE(waitUntilFree());
    setup.start();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.log(), u"$ orb start\none\n$ orb start\none\n"_s);
}

TEST_F(SetupControllerTest, SaysSoWhenOrbIsMissingAtTheStart)
{
    setup.start();
    EXPECT_FALSE(setup.busy());
    EXPECT_EQ(setup.state(), OrbState::notInstalled);
    EXPECT_EQ(setup.note(), notFoundNote);
    EXPECT_EQ(setup.log(), QString());
    EXPECT_EQ(order, QStringList({u"busy"_s, u"starting"_s, u"free"_s, u"notInstalled"_s, notFoundNote}));
}

TEST_F(SetupControllerTest, GivesUpWhenTheTimeIsOver)
{
    SetupController hasty(SetupTimeLimits{.start = 0.3, .pollInterval = 0.05});
    addOrb(stopped);
    hasty.start();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.state(), OrbState::stopped);
    EXPECT_EQ(hasty.note(), lateNote);
    EXPECT_GE(calls().count(u"<status>"_s), 2);
}

TEST_F(SetupControllerTest, DoesNotPollWhenTheStartCommandUsedAllTheTime)
{
    SetupController hasty(SetupTimeLimits{.start = 0.2});
    addOrb(running, TestTools::untilTerminated(0));
    hasty.start();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(calls(), QStringList{u"<start>"_s});
    EXPECT_EQ(hasty.state(), OrbState::stopped);
    EXPECT_EQ(hasty.note(), lateNote);
}

TEST_F(SetupControllerTest, WaitsTheWholePauseBetweenTwoPolls)
{
    SetupController patient(SetupTimeLimits{.pollInterval = 0.3});
    addOrb(u"[ -e '%1' ] && echo Running; : > '%1'"_s.arg(tools.path(u"asked"_s)));
    QElapsedTimer timer;
    timer.start();
    patient.start();
    EXPECT_TRUE(waitUntil([&] { return !patient.busy(); }));
    EXPECT_EQ(patient.state(), OrbState::running);
    EXPECT_GE(timer.elapsed(), 300);
}

TEST_F(SetupControllerTest, GoesOnToPollWhenTheStartCommandCannotStart)
{
    addOrb(stopped);
    SetupController hasty(SetupTimeLimits{.start = 0.2, .pollInterval = 0.05});
    tools.setInterpreter(u"orb"_s, u"/nonexistent/shell"_s);
    hasty.start();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_TRUE(hasty.log().startsWith(u"$ orb start\nCould not start orb: "_s));
    EXPECT_EQ(hasty.note(), lateNote);
}

TEST_F(SetupControllerTest, LeavesTheStateAloneInARefreshDuringAStart)
{
    addOrb(stopped, tools.waitForFile(u"go"_s));
    setup.start();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 1; }));
    tools.addTool(u"docker"_s, {});
    EXPECT_TRUE(waitFor(setup.refresh()));
    EXPECT_EQ(setup.state(), OrbState::starting);
    EXPECT_TRUE(setup.hasDocker()) << "the tools are looked for all the same";
    EXPECT_EQ(calls().size(), 1);
    addOrb(running);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::running);
}

TEST_F(SetupControllerTest, LeavesTheStateAloneInARefreshThatAStartOvertook)
{
    addOrb(tools.waitForFile(u"go"_s) + stopped, tools.waitForFile(u"end"_s));
    auto refresh = setup.refresh();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 1; }));
    setup.start();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitFor(std::move(refresh)));
    EXPECT_EQ(setup.state(), OrbState::starting);
    EXPECT_TRUE(setup.busy());
    addOrb(running);
    tools.addFile(u"end"_s);
    EXPECT_TRUE(waitUntilFree());
}

// ---- Cancel

TEST_F(SetupControllerTest, CancelsDuringTheStartCommand)
{
    addOrb(running, TestTools::untilTerminated(0));
    setup.start();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 1; }));
    setup.cancel();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::stopped);
    EXPECT_EQ(setup.note(), u"Cancelled."_s);
    EXPECT_EQ(calls(), QStringList{u"<start>"_s});
    EXPECT_EQ(order.mid(3), QStringList({u"free"_s, u"stopped"_s, u"Cancelled."_s}));
}

TEST_F(SetupControllerTest, CancelsAtOnceAfterTheRequestToStart)
{
    addOrb(running, u"exec sleep 60"_s);
    setup.start();
    setup.cancel();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.note(), u"Cancelled."_s);
}

TEST_F(SetupControllerTest, CancelsBetweenTwoPolls)
{
    SetupController slow(SetupTimeLimits{.pollInterval = 0.3});
    addOrb(stopped);
    slow.start();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 2; }));
    slow.cancel();
    EXPECT_TRUE(waitUntil([&] { return !slow.busy(); }));
    EXPECT_EQ(slow.state(), OrbState::stopped);
    EXPECT_EQ(slow.note(), u"Cancelled."_s);
    EXPECT_EQ(calls().size(), 2) << "no further poll";
}

TEST_F(SetupControllerTest, BelievesAPollThatAnswersRunningAfterTheCancel)
{
    addOrb(tools.waitForFile(u"go"_s) + running);
    setup.start();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 2; }));
    setup.cancel();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::running);
    EXPECT_EQ(setup.note(), QString());
}

TEST_F(SetupControllerTest, ForgetsACancelWhenTheNextOperationBegins)
{
    addOrb(running);
    setup.cancel();
    setup.start();
    EXPECT_TRUE(waitUntilFree());
    EXPECT_EQ(setup.state(), OrbState::running);
}

// ---- Install

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
    SetupController hasty(SetupTimeLimits{.install = 0.2});
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

// ---- Stop

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
    SetupController hasty(SetupTimeLimits{.stop = 0.2});
    addOrb(running, u":"_s, u"echo slow\n"_s + TestTools::untilTerminated(0));
    hasty.stop();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.note(), u"Stop failed: slow"_s);
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

// ---- One operation at a time

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
