#include "SetupControllerTest.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

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

TEST_F(SetupControllerTest, CapsTheLogOfATalkativeStartThatFails)
{
    addOrb(stopped, u"head -c 10000000 /dev/zero | tr '\\0' x; echo no room >&2; exit 3"_s);
    qsizetype longest = 0;
    QObject::connect(&setup, &SetupController::logChanged, &setup,
                     [&] { longest = std::max(longest, setup.log().size()); });
    setup.start();
    EXPECT_TRUE(waitUntil([this] { return calls().contains(u"<status>"_s); })) << "the start has ended";
    EXPECT_LE(longest, 200'000);
    EXPECT_LE(setup.log().size(), 200'000);
    EXPECT_GE(setup.log().size(), 150'000);
    EXPECT_TRUE(setup.log().contains(u"no room\n"_s)) << "its end is kept";
    setup.cancel();
    EXPECT_TRUE(waitUntilFree());
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
    SetupController hasty(SetupTimeLimits{.start = 1.5, .pollInterval = 0.05});
    addOrb(stopped);
    hasty.start();
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.state(), OrbState::stopped);
    EXPECT_EQ(hasty.note(), lateNote);
    EXPECT_GE(calls().count(u"<status>"_s), 2);
}

TEST_F(SetupControllerTest, DoesNotPollWhenTheStartCommandUsedAllTheTime)
{
    SetupController hasty(SetupTimeLimits{.start = 1});
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

TEST_F(SetupControllerTest, DropsAnAnswerAskedForBeforeAnOperationThatHasEndedSince)
{
    addOrb(tools.waitForFile(u"go"_s) + running);
    auto refresh = setup.refresh();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 1; }));
    addOrb(stopped);
    setup.stop();
    EXPECT_TRUE(waitUntil([&] { return setup.state() == OrbState::stopped; }));
    EXPECT_FALSE(setup.busy());
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitFor(std::move(refresh)));
    EXPECT_EQ(setup.state(), OrbState::stopped);
}

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
    addOrb(running, u"exec sleep 600"_s);
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
