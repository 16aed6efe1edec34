#include "StreamRecording.h"
#include "Support/TestTools.h"

#include <QElapsedTimer>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

TEST(TimeLimit, AsksTheChildToTerminateNotBeforeItsMoment)
{
    TestTools tools;
    QElapsedTimer elapsed;
    elapsed.start();
    const auto recording = record(tools.addTool(u"sleeper"_s, u"exec sleep 600"_s), {}, std::nullopt, 0.25);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_GE(elapsed.elapsed(), 250);
    EXPECT_TRUE(recording->handle->timedOut());
    EXPECT_EQ(recording->status, SIGTERM);
    EXPECT_EQ(recording->handle->launchError(), std::nullopt);
}

TEST(TimeLimit, LeavesAToolInPeaceThatEndsInTime)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"quick"_s, u"exit 9"_s), {}, std::nullopt, farLimit);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_FALSE(recording->handle->timedOut());
    EXPECT_EQ(recording->status, 9);
}

TEST(TimeLimit, ReportsTheStatusWithWhichTheChildAnswers)
{
    TestTools tools;
    const QString body = u"trap 'echo bye; exit 21' TERM; echo up; while :; do sleep 0.01; done"_s;
    const auto recording = record(tools.addTool(u"polite"_s, body), {}, std::nullopt, 1);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_TRUE(recording->handle->timedOut());
    EXPECT_EQ(recording->status, 21);
    EXPECT_TRUE(recording->output.endsWith(u"bye\n"_s)) << recording->output.toStdString();
}

TEST(TimeLimit, AsksOnceAndNeverKillsAChildThatIgnoresIt)
{
    TestTools tools;
    const QString go = tools.path(u"go"_s);
    const QString body = u"trap 'echo asked' TERM; echo $$; while [ ! -e '%1' ]; do sleep 0.01; done; kill -KILL $$"_s;
    const auto recording = record(tools.addTool(u"stubborn"_s, body.arg(go)), {}, std::nullopt, 1);
    ASSERT_TRUE(waitUntil([&] { return recording->output.contains(u"asked"_s); }));
    EXPECT_TRUE(recording->handle->timedOut());
    EXPECT_FALSE(recording->hasEnded());
    const pid_t pid = recording->output.section(u'\n', 0, 0).toInt();
    ASSERT_GT(pid, 0);
    // It goes on well past its limit, and nothing more comes.
    const QDeadlineTimer later(500, Qt::PreciseTimer);
    ASSERT_TRUE(waitUntil([&] { return later.hasExpired(); }));
    EXPECT_FALSE(recording->hasEnded());
    EXPECT_EQ(::kill(pid, SIGKILL), 0);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output.count(u"asked"_s), 1);
    EXPECT_EQ(recording->status, SIGKILL);
    EXPECT_TRUE(recording->handle->timedOut());
}

TEST(TimeLimit, WaitsForThePipesAfterTheChildsEnd)
{
    TestTools tools;
    const QString body = u"sleep 600 & echo $!; exec sleep 600"_s;
    const auto recording = record(tools.addTool(u"parent"_s, body), {}, std::nullopt, 1);
    ASSERT_TRUE(waitUntil([&] { return recording->handle->timedOut() && !recording->output.isEmpty(); }));
    const pid_t grandchild = recording->output.trimmed().toInt();
    ASSERT_GT(grandchild, 0);
    EXPECT_FALSE(recording->hasEnded());
    EXPECT_EQ(::kill(grandchild, SIGKILL), 0);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_TRUE(recording->handle->timedOut());
    EXPECT_EQ(recording->status, SIGTERM);
}

TEST(TimeLimit, OfNothingOrLessHasPassedAtOnce)
{
    TestTools tools;
    const QString tool = tools.addTool(u"sleeper"_s, u"exec sleep 600"_s);
    for (const double limit : {0.0, -5.0, -std::numeric_limits<double>::infinity()}) {
        const auto recording = record(tool, {}, std::nullopt, limit);
        ASSERT_TRUE(recording->waitForEnd());
        EXPECT_TRUE(recording->handle->timedOut()) << limit;
        EXPECT_EQ(recording->status, SIGTERM);
    }
}

TEST(TimeLimit, MayBeLongerThanAnyClockCounts)
{
    TestTools tools;
    const QString tool = tools.addTool(u"quick"_s, u"exit 0"_s);
    for (const double limit : {1e6, 1e18, std::numeric_limits<double>::infinity()}) {
        const auto recording = record(tool, {}, std::nullopt, limit);
        ASSERT_TRUE(recording->waitForEnd());
        EXPECT_FALSE(recording->handle->timedOut()) << limit;
    }
}

TEST(Cancel, AsksARunningChildAndIsNoTimeout)
{
    TestTools tools;
    const auto recording =
        record(tools.addTool(u"sleeper"_s, u"echo up; exec sleep 600"_s), {}, std::nullopt, farLimit);
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    recording->handle->cancel();
    recording->handle->cancel();
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, SIGTERM);
    EXPECT_FALSE(recording->handle->timedOut());
    recording->handle->cancel(); // it is over: nothing
    EXPECT_EQ(recording->exits, 1);
}

TEST(Cancel, MayComeAtAnyMomentFromAnyThread)
{
    TestTools tools;
    const QString tool = tools.addTool(u"quick"_s, u"exit 0"_s);
    for (int round = 0; round < 50; ++round) {
        const auto recording = record(tool, {}, std::nullopt, 0.002);
        std::thread canceller([handle = recording->handle] {
            for (int attempt = 0; attempt < 100; ++attempt)
                handle->cancel();
        });
        const bool hasEnded = recording->waitForEnd();
        canceller.join();
        ASSERT_TRUE(hasEnded);
        EXPECT_TRUE(recording->status == 0 || recording->status == SIGTERM) << recording->status;
    }
}
