#include "Process/Pipe.h"
#include "Support/TestTools.h"
#include "Unit/OrbCLI/StreamRecording.h"

#include <QDeadlineTimer>
#include <QFile>

#include <chrono>
#include <cstddef>

using namespace Qt::StringLiterals;

TEST(PausedOutput, HoldsBackTheOutputOfAPausedChildAlone)
{
    TestTools tools;
    const QString talks = u"echo ready; "_s + tools.waitForFile(u"go"_s) + u"echo more; exec sleep 60"_s;
    const auto paused = record(tools.addTool(u"paused"_s, talks));
    const auto other = record(tools.addTool(u"other"_s, talks));
    ASSERT_TRUE(waitUntil([&] { return !paused->output.isEmpty() && !other->output.isEmpty(); }));
    paused->handle->pauseOutput(std::chrono::hours(1));
    tools.addFile(u"go"_s);
    ASSERT_TRUE(waitUntil([&] { return other->output == u"ready\nmore\n"_s; }));
    const QDeadlineTimer later(200, Qt::PreciseTimer);
    ASSERT_TRUE(waitUntil([&] { return later.hasExpired(); }));
    EXPECT_EQ(paused->output, u"ready\n"_s);
    paused->handle->resumeOutput();
    EXPECT_TRUE(waitUntil([&] { return paused->output == u"ready\nmore\n"_s; }));
    paused->handle->cancel();
    other->handle->cancel();
    EXPECT_TRUE(paused->waitForEnd());
    EXPECT_TRUE(other->waitForEnd());
}

TEST(PausedOutput, GoesOnByItselfWhenAPauseIsOver)
{
    TestTools tools;
    const auto recording = record(
        tools.addTool(u"talker"_s, u"echo ready; "_s + tools.waitForFile(u"go"_s) + u"echo more; exec sleep 60"_s));
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    const QDeadlineTimer pause(300, Qt::PreciseTimer);
    recording->handle->pauseOutput(std::chrono::milliseconds(150));
    recording->handle->pauseOutput(std::chrono::milliseconds(150)); // one after the other
    tools.addFile(u"go"_s);
    ASSERT_TRUE(waitUntil([&] { return recording->output != u"ready\n"_s; }));
    EXPECT_TRUE(pause.hasExpired());
    recording->handle->cancel();
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, u"ready\nmore\n"_s);
}

TEST(PausedOutput, HoldsAPausedChildUpOnceItsPipeIsFull)
{
    TestTools tools;
    const QString body =
        u"echo ready; "_s + tools.waitForFile(u"go"_s) + u"head -c 8000000 /dev/zero; : >'%1'; exec sleep 60"_s;
    const auto recording = record(tools.addTool(u"flooder"_s, body.arg(tools.path(u"done"_s))));
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    recording->handle->pauseOutput(std::chrono::hours(1));
    tools.addFile(u"go"_s);
    const QDeadlineTimer later(200, Qt::PreciseTimer);
    ASSERT_TRUE(waitUntil([&] { return later.hasExpired(); }));
    EXPECT_FALSE(QFile::exists(tools.path(u"done"_s)));
    recording->handle->resumeOutput();
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(tools.path(u"done"_s)); }));
    recording->handle->cancel();
    EXPECT_TRUE(recording->waitForEnd());
}

TEST(PausedOutput, EndsAtOnceWhenAPausedChildIsStopped)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"flooder"_s, u"exec yes"_s));
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    recording->handle->pauseOutput(std::chrono::hours(1));
    const QDeadlineTimer later(100, Qt::PreciseTimer); // for what was on its way
    ASSERT_TRUE(waitUntil([&] { return later.hasExpired(); }));
    recording->handle->cancel();
    EXPECT_TRUE(recording->waitForEnd());
}

TEST(PausedOutput, DeliversAllThatAPausedChildHadPrintedBeforeItsEnd)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"talker"_s, u"echo ready; "_s + tools.waitForFile(u"go"_s) +
                                                                 u"seq 1 5000; seq 1 5000 >&2; exit 6"_s));
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    recording->handle->pauseOutput(std::chrono::hours(1));
    tools.addFile(u"go"_s);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, 6);
    EXPECT_TRUE(recording->output.endsWith(u"\n5000\n"_s));
    EXPECT_TRUE(recording->errors.endsWith(u"\n5000\n"_s));
}

TEST(PausedOutput, EndsAtOnceWhenTheTimeLimitStopsAPausedChild)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"flooder"_s, u"exec yes"_s), {}, std::nullopt, 0.5);
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    recording->handle->pauseOutput(std::chrono::hours(1));
    EXPECT_TRUE(recording->waitForEnd());
    EXPECT_TRUE(recording->handle->timedOut());
}

TEST(PausedOutput, NoticesInAPauseThatNobodyIsLeftWhoCouldPrint)
{
    TestTools tools;
    // More than is read in a pause after the end of the child, but not more than then fits into the pipe.
    const bool hasLargePipes = enlargePipe(openPipe().value().readEnd, std::size_t{1024} * 1024);
    const qint64 size = qint64{64} * 1024 * 1024 + qint64{hasLargePipes ? 512 : 16} * 1024;
    const QString tool = tools.addTool(u"parent"_s, u"echo; "_s + tools.waitForFile(u"go"_s) +
                                                        u"head -c %1 /dev/zero & exit 5"_s.arg(size - 1));
    const auto heard = std::make_shared<qint64>(0);
    const auto status = std::make_shared<std::optional<int>>();
    const ProcessHandlePointer handle = OrbCLI::stream(
        tool, {}, std::nullopt, std::nullopt, [heard](QUtf8StringView text, bool) { *heard += text.size(); },
        [status](int exitStatus, const ProcessHandlePointer &) { *status = exitStatus; });
    ASSERT_TRUE(waitUntil([&] { return *heard > 0; }));
    handle->pauseOutput(std::chrono::hours(1));
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return status->has_value(); }));
    EXPECT_EQ(*status, 5);
    EXPECT_EQ(*heard, size);
}
