// Which tool calls have standard input and which have none: every controller's every call.

#include "ContainerStore/ContainerStore.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "SetupController/SetupController.h"
#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace
{

/// While it lives, this process reads a pipe, so that a tool that is given nothing does not happen to read the null
/// device because the tests do.
class OwnInput
{
public:
    OwnInput() : m_former(::dup(STDIN_FILENO))
    {
        EXPECT_EQ(::pipe(m_pipe), 0);
        EXPECT_EQ(::dup2(m_pipe[0], STDIN_FILENO), STDIN_FILENO);
    }

    ~OwnInput()
    {
        ::dup2(m_former, STDIN_FILENO);
        for (const int number : {m_former, m_pipe[0], m_pipe[1]})
            ::close(number);
    }

    OwnInput(const OwnInput &) = delete;
    OwnInput &operator=(const OwnInput &) = delete;

private:
    const int m_former;
    int m_pipe[2] = {-1, -1};
};

class NoInput : public testing::Test
{
protected:
    /// A tool that notes the kind of its input beside its arguments, and then does this.
    void addTool(const QString &name, const QString &body)
    {
        tools.addTool(name, u"echo \"%1 $*: $('%2' report | head -n 1)\" >> '%3'\n%4"_s.arg(
                                name, QStringLiteral(RUNNER_PROBE), tools.path(u"inputs"_s), body));
    }

    QStringList inputs() const
    {
        QFile file(tools.path(u"inputs"_s));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                              : QStringList();
    }

    void expectNullDevice(const QStringList &calls)
    {
        QStringList expected;
        for (const QString &call : calls)
            expected << call + u": input: null device"_s;
        EXPECT_EQ(inputs(), expected);
    }

    TestTools tools;
    const OwnInput ownInput;
};

} // namespace

TEST_F(NoInput, HasSetup)
{
    SetupController setup(SetupTimeLimits{.pollInterval = 0.01});
    addTool(u"orb"_s, u"echo Running"_s);
    addTool(u"brew"_s, {});
    setup.install();
    EXPECT_TRUE(waitUntil([&] { return !setup.busy(); }));
    EXPECT_TRUE(waitFor(setup.stop()));
    expectNullDevice(
        {u"brew install --cask orbstack"_s, u"orb start"_s, u"orb status"_s, u"orb stop"_s, u"orb status"_s});
}

TEST_F(NoInput, HaveTheMachinesButForTheAnswerToASecondDeletion)
{
    MachineStore machines;
    addTool(u"orb"_s, u"[ \"$1\" != list ]"_s);
    EXPECT_TRUE(waitFor(machines.create(Distro::debian, u"box"_s)));
    EXPECT_TRUE(waitFor(machines.simple({u"start"_s, u"box"_s})));
    EXPECT_TRUE(waitFor(machines.simple({u"stop"_s, u"box"_s})));
    EXPECT_TRUE(waitFor(machines.remove(u"box"_s)));
    const QStringList lists{u"orb list -f json"_s, u"orb list"_s};
    expectNullDevice(QStringList{u"orb create debian box"_s} + lists + QStringList{u"orb start box"_s} + lists +
                     QStringList{u"orb stop box"_s} + lists + QStringList{u"orb delete -f box"_s} + lists);
    addTool(u"orb"_s, u"[ \"$2\" != -f ]"_s);
    EXPECT_TRUE(waitFor(machines.remove(u"box"_s)));
    EXPECT_TRUE(inputs().contains(u"orb delete box: input: pipe"_s));
}

TEST_F(NoInput, HaveTheContainers)
{
    ContainerStore containers;
    addTool(u"docker"_s, {});
    ContainerInfo web;
    web.name = u"web"_s;
    for (const QString &verb : {u"start"_s, u"stop"_s, u"rm"_s})
        EXPECT_TRUE(waitFor(containers.action(verb, web)));
    EXPECT_TRUE(waitFor(containers.logs(web)));
    EXPECT_TRUE(waitFor(containers.runContainer(u"nginx"_s, QString(), QString())));
    const QString list = u"docker ps -a --format {{json .}}"_s;
    expectNullDevice({u"docker start web"_s, list, u"docker stop web"_s, list, u"docker rm -f web"_s, list,
                      u"docker logs --tail 300 web"_s, u"docker run -d nginx"_s, list});
}

TEST_F(NoInput, HasARunButForItsScript)
{
    RunController run;
    addTool(u"orb"_s, {});
    RunJob job;
    job.distro = u"debian"_s;
    job.disposable = true;
    run.start(job, nullptr);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    ASSERT_EQ(inputs().size(), 3);
    EXPECT_TRUE(inputs()[0].endsWith(u": input: null device"_s)) << "orb create";
    EXPECT_TRUE(inputs()[1].endsWith(u" bash -s: input: pipe"_s));
    EXPECT_TRUE(inputs()[2].endsWith(u": input: null device"_s)) << "orb delete -f";
}

TEST_F(NoInput, HasTheDeletionThatAnAbandonedRunLeavesBehind)
{
    RunController run;
    addTool(u"orb"_s, u"[ \"$1\" != -m ] || { "_s + tools.waitForFile(u"go"_s) + u"}"_s);
    RunJob job;
    job.distro = u"debian"_s;
    job.disposable = true;
    run.start(job, nullptr);
    ASSERT_TRUE(waitUntil([&] { return inputs().size() == 2; }));
    run.abandon();
    ASSERT_TRUE(waitUntil([&] { return inputs().size() >= 3; }));
    EXPECT_TRUE(inputs()[2].startsWith(u"orb delete -f sbx-"_s));
    EXPECT_TRUE(inputs()[2].endsWith(u": input: null device"_s)) << inputs()[2].toStdString();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
}
