#include "OrbCLI/CurrentTool.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QDeadlineTimer>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace
{

const OutputHandler ignored = [](QUtf8StringView, bool) {};

class CurrentToolTest : public testing::Test
{
protected:
    /// Runs a tool with this body.
    QCoro::Task<OrbCLI::StreamResult> step(const QString &body)
    {
        const QString path = tools.addTool(u"orb"_s, body);
        return tool->stream(path, {u"step"_s}, std::nullopt, std::nullopt, ignored);
    }

    bool waitForCalls(qsizetype count)
    {
        return waitUntil([this, count] { return tools.calls(u"orb"_s).size() == count; });
    }

    TestTools tools;
    std::unique_ptr<CurrentTool> tool = std::make_unique<CurrentTool>();
};

} // namespace

TEST_F(CurrentToolTest, HasAHandleWhileAToolRunsAndNoneBetweenTwo)
{
    EXPECT_EQ(tool->handle(), nullptr);
    auto first = step(tools.waitForFile(u"go"_s) + u"exit 3"_s);
    const ProcessHandlePointer handle = tool->handle();
    EXPECT_NE(handle, nullptr);
    tools.addFile(u"go"_s);
    EXPECT_EQ(waitFor(std::move(first))->status, 3);
    EXPECT_EQ(tool->handle(), nullptr);

    auto second = step(u":"_s);
    EXPECT_NE(tool->handle(), handle);
    EXPECT_EQ(waitFor(std::move(second))->status, 0);
    EXPECT_EQ(tool->handle(), nullptr);
}

TEST_F(CurrentToolTest, AsksTheToolThatRunsToTerminate)
{
    auto running = step(u"trap 'exit 5' TERM\n"_s + tools.tellByFile(u"up"_s) + u"while :; do sleep 0.01; done"_s);
    EXPECT_TRUE(waitUntil([this] { return tools.hasFile(u"up"_s); }));
    EXPECT_FALSE(tool->isStopRequested());
    tool->requestStop();
    EXPECT_TRUE(tool->isStopRequested());
    EXPECT_EQ(waitFor(std::move(running))->status, 5);
    EXPECT_TRUE(tool->isStopRequested()) << "the operation asks after its step";
}

TEST_F(CurrentToolTest, EndsAToolThatStartsAfterTheStop)
{
    tool->requestStop();
    EXPECT_EQ(waitFor(step(u"exec sleep 600"_s))->status, 15);
}

TEST_F(CurrentToolTest, ForgetsAStopWhenAnOperationBegins)
{
    tool->requestStop();
    tool->beginOperation();
    EXPECT_FALSE(tool->isStopRequested());
    EXPECT_EQ(waitFor(step(u"exit 4"_s))->status, 4);
}

TEST_F(CurrentToolTest, MayBeDestroyedWhileAToolRuns)
{
    auto running = step(tools.waitForFile(u"go"_s) + u"exit 6"_s);
    EXPECT_TRUE(waitForCalls(1));
    tool.reset();
    tools.addFile(u"go"_s);
    EXPECT_EQ(waitFor(std::move(running))->status, 6);
}

TEST_F(CurrentToolTest, WaitsNoMoreForThePipesOfAToolThatHasEndedWhenAskedToStop)
{
    QByteArray heard;
    const OutputHandler hear = [&](QUtf8StringView text, bool) { heard.append(text.data(), text.size()); };
    const QString path =
        tools.addTool(u"orb"_s, u"{ "_s + tools.waitForFile(u"go"_s) + u"} & head -c 3000000 /dev/zero; exit 3"_s);
    auto running = tool->stream(path, {}, std::nullopt, std::nullopt, hear);
    // Nothing is delivered before the event loop runs, so most of it waits when the stop is requested.
    const ProcessHandlePointer handle = tool->handle();
    const QDeadlineTimer watchdog(watchdogTime);
    while (handle->isRunning() && !watchdog.hasExpired())
        std::this_thread::yield();
    EXPECT_FALSE(running.isReady()) << "somebody holds its pipes";
    tool->requestStop();
    EXPECT_EQ(waitFor(std::move(running))->status, 3);
    EXPECT_EQ(heard.size(), 3'000'000) << "nothing is lost of what it had printed";
    tools.addFile(u"go"_s);
}
