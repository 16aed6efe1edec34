#include "Process/ProcessEngine.h"
#include "Support/TestTools.h"
#include "Unit/OrbCLI/StreamRecording.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <string>

using namespace Qt::StringLiterals;

namespace
{

/// As `record`, with a limit and a grace time of the test's own.
std::shared_ptr<StreamRecording> recordHasty(const QString &tool, double timeLimit, std::optional<double> graceTime,
                                             const std::optional<QString> &input = std::nullopt)
{
    const auto recording = std::make_shared<StreamRecording>();
    Launch launch;
    launch.tool = tool;
    launch.environment = {{"PATH", "/usr/bin:/bin"}};
    launch.input = input;
    launch.timeLimit = timeLimit;
    launch.graceTime = graceTime;
    launch.onOutput = [recording](QUtf8StringView text, bool) { recording->output += text.toString(); };
    launch.onExit = [recording](int status, const ProcessHandlePointer &) {
        ++recording->exits;
        recording->status = status;
    };
    recording->handle = ProcessEngine::instance().launch(std::move(launch));
    return recording;
}

/// True while the system knows the child, as one that runs or as one that nobody has reaped.
bool isKnown(pid_t pid)
{
    return ::kill(pid, 0) == 0;
}

qsizetype openDescriptors()
{
    return QDir(u"/dev/fd"_s).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

TEST(LeftBehind, IsAChildThatIgnoresItsTimeLimitAndIsReapedWheneverItEnds)
{
    TestTools tools;
    const auto first = record(tools.addTool(u"quick"_s, u"exit 0"_s));
    ASSERT_TRUE(first->waitForEnd()); // the engine's own descriptors are open from now on
    const qsizetype before = openDescriptors();

    const QString body = u"trap '' TERM PIPE; echo $$; "_s + tools.waitForFile(u"go"_s);
    const auto recording = recordHasty(tools.addTool(u"stubborn"_s, body), 1, 0.3, QString(5'000'000, u'x'));
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, -1);
    EXPECT_TRUE(recording->handle->timedOut());
    EXPECT_EQ(recording->handle->launchError(), std::nullopt);
    const pid_t pid = recording->output.trimmed().toInt();
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(isKnown(pid)) << "it is never killed";
    EXPECT_LE(openDescriptors(), before + 1) << "its pipes are closed; the notice of its exit is not";

    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !isKnown(pid); })) << "reaped";
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() <= before; }));
    EXPECT_EQ(recording->exits, 1) << "told once";
}

TEST(LeftBehind, IsNoChildThatEndsInItsGraceTime)
{
    TestTools tools;
    const auto recording = recordHasty(
        tools.addTool(u"slow"_s, u"trap 'sleep 0.3; echo bye; exit 7' TERM; while :; do sleep 0.01; done"_s), 1,
        farLimit);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, 7);
    EXPECT_EQ(recording->output, u"bye\n"_s);
}

TEST(LeftBehind, IsAGrandchildThatHoldsThePipesBeyondTheTimeLimit)
{
    TestTools tools;
    const auto recording = recordHasty(tools.addTool(u"parent"_s, u"sleep 600 & echo $!; exec sleep 600"_s), 3, 0.3);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, SIGTERM) << "the child itself has ended";
    EXPECT_TRUE(recording->handle->timedOut());
    const pid_t grandchild = recording->output.trimmed().toInt();
    ASSERT_GT(grandchild, 0) << "else the signal would be for this process, too";
    EXPECT_EQ(::kill(grandchild, SIGKILL), 0);
}

TEST(LeftBehind, IsNoChildWithoutATimeLimit)
{
    TestTools tools;
    const QString body = u"trap 'echo asked' TERM; echo up; "_s + tools.waitForFile(u"go"_s) + u"exit 3"_s;
    const auto recording = recordHasty(tools.addTool(u"stubborn"_s, body), 1e9, 0);
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    recording->handle->cancel();
    ASSERT_TRUE(waitUntil([&] { return recording->output == u"up\nasked\n"_s; }));
    EXPECT_FALSE(recording->hasEnded());
    tools.addFile(u"go"_s);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, 3);
}

TEST(LeftBehind, IsNoChildWithoutAGraceTime)
{
    EXPECT_EQ(Launch().graceTime, std::nullopt) << "unless its caller asks for one";
    TestTools tools;
    const QString body = u"trap 'echo asked' TERM; "_s + tools.waitForFile(u"go"_s) + u"exit 3"_s;
    const QString tool = tools.addTool(u"stubborn"_s, body);
    const auto awaited = recordHasty(tool, 1, std::nullopt);
    const auto leftBehind = recordHasty(tool, 1, 0.3);
    ASSERT_TRUE(leftBehind->waitForEnd());
    EXPECT_FALSE(awaited->hasEnded()) << "although it was asked before the other";
    tools.addFile(u"go"_s);
    ASSERT_TRUE(awaited->waitForEnd());
    EXPECT_EQ(awaited->status, 3);
    EXPECT_EQ(awaited->output, u"asked\n"_s);
    EXPECT_TRUE(awaited->handle->timedOut());
}
