// Which list is read when: in the rounds, when OrbStack comes up, and when a run ends.

#include "Screens/TestWindow.h"
#include "Screens/TimerWatch.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace
{

class RefreshOrder : public testing::Test
{
protected:
    TestTools &tools() { return window.orbStack.tools(); }
    qsizetype calls(const QString &arguments) { return window.orbStack.calls(arguments); }
    qsizetype containerLists() { return tools().calls(u"docker"_s).size(); }

    /// From now on `orb list` waits for the file "listed".
    void holdLists()
    {
        tools().addTool(u"orb"_s,
                        u"[ $1 != list ] || { %1 echo '[]'; exit; }\n"_s.arg(tools().waitForFile(u"listed"_s)) +
                            u"cat '%1'"_s.arg(tools().path(u"state"_s)));
    }

    /// Whoever wanted to list containers has done so: a later call has come back.
    void expectNoContainerListButThisOne()
    {
        EXPECT_TRUE(waitFor(window.containers.refresh()));
        EXPECT_EQ(containerLists(), 1);
    }

    TestWindow window;
};

} // namespace

TEST_F(RefreshOrder, ARoundListsTheContainersOnceTheMachinesAreListed)
{
    holdLists();
    window.orbStack.setRunning(true);
    EXPECT_TRUE(waitFor(window.setup.refresh())) << "so that OrbStack does not come up while the window is there";
    window.show();
    EXPECT_TRUE(waitUntil([&] { return calls(FakeOrbStack::listCall) == 1; }));
    expectNoContainerListButThisOne();
    tools().addFile(u"listed"_s);
    EXPECT_TRUE(waitUntil([&] { return containerLists() == 2; }));
    EXPECT_EQ(calls(FakeOrbStack::listCall), 1);
}

TEST_F(RefreshOrder, WhenOrbStackComesUpTheContainersAreListedOnceTheMachinesAre)
{
    holdLists();
    window.show();
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    window.orbStack.setRunning(true);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_TRUE(waitUntil([&] { return calls(FakeOrbStack::listCall) == 1; }));
    expectNoContainerListButThisOne();
    tools().addFile(u"listed"_s);
    EXPECT_TRUE(waitUntil([&] { return containerLists() == 2; }));
    EXPECT_EQ(calls(FakeOrbStack::listCall), 1);

    window.orbStack.setRunning(false);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_EQ(window.setup.state(), OrbState::stopped);
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(calls(FakeOrbStack::listCall), 2) << "nothing is listed when it goes down";
}

TEST_F(RefreshOrder, TheMachinesAloneAreListedWhenARunEndsAndNothingWhenItBegins)
{
    window.showRunning({u"box"_s});
    const qsizetype lists = calls(FakeOrbStack::listCall);
    const qsizetype containers = containerLists();
    window.run.setScript(tools().waitForFile(u"go"_s));
    ByName::press(window.content(), u"Run"_s);
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(calls(FakeOrbStack::listCall), lists + 2) << "none but these two";
    EXPECT_TRUE(window.run.isRunning());
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
    EXPECT_TRUE(waitUntil([&] { return calls(FakeOrbStack::listCall) == lists + 3; }));
    EXPECT_TRUE(waitFor(window.containers.refresh()));
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(calls(FakeOrbStack::listCall), lists + 4);
    EXPECT_EQ(containerLists(), containers + 1);
}

TEST_F(RefreshOrder, ARoundBeginsItsSleepAfterTheLastList)
{
    const QString slow = u"sleep 0.2; "_s;
    // The moment of a call is that of the file that it makes.
    tools().addTool(u"orb"_s, u"[ $1 != status ] || : > '%1'.$$\n"_s.arg(tools().path(u"asked"_s)) + slow +
                                  u"[ $1 != list ] || { echo '[]'; exit; }\necho Running"_s);
    tools().addTool(u"docker"_s, slow);
    window.show(300ms);
    EXPECT_TRUE(waitUntil([&] { return calls(FakeOrbStack::statusCall) >= 4; }));
    window.close();
    QList<QDateTime> moments;
    for (const QFileInfo &file : QDir(tools().path(u"."_s)).entryInfoList({u"asked.*"_s}, QDir::Files))
        moments.append(file.lastModified());
    std::sort(moments.begin(), moments.end());
    ASSERT_GE(moments.size(), 3);
    // Three tools and the sleep, less what the clock of the files is behind.
    for (qsizetype round = 1; round < moments.size(); ++round)
        EXPECT_GE(moments[round - 1].msecsTo(moments[round]), 3 * 200 + 300 - 20) << round;
}

TEST_F(RefreshOrder, ARoundWaitsForItsToolHoweverShortTheSleep)
{
    tools().addTool(u"orb"_s, u"[ $1 != list ] || { echo '[]'; exit; }\n"_s + tools().waitForFile(u"go"_s));
    window.show(1ms);
    EXPECT_TRUE(waitUntil([&] { return calls(FakeOrbStack::statusCall) == 1; }));
    for (int marker = 0; marker < 5; ++marker)
        EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(calls(FakeOrbStack::statusCall), 1);
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return calls(FakeOrbStack::statusCall) >= 2; }));
}

TEST_F(RefreshOrder, NobodySleepsDuringARoundOrInAHiddenWindow)
{
    constexpr auto sleep = 37ms;
    const TimerWatch watch(sleep);
    ContentView &content = window.show(sleep);
    ASSERT_TRUE(waitUntil([&] { return watch.timer() != nullptr; }));
    EXPECT_EQ(watch.timer()->timerType(), Qt::PreciseTimer);
    tools().addTool(u"orb"_s, tools().waitForFile(u"go"_s) + u"\necho Stopped"_s);
    const qsizetype before = calls(FakeOrbStack::statusCall);
    EXPECT_TRUE(waitUntil([&] { return calls(FakeOrbStack::statusCall) > before && !watch.timer()->isActive(); }));
    tools().addFile(u"go"_s);
    ASSERT_TRUE(waitUntil([&] { return watch.timer()->isActive(); }));
    content.hide();
    EXPECT_FALSE(watch.timer()->isActive());
}
