#include "OrbCLI/OrbCLI.h"
#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;

TEST(Run, ReturnsNothingButStatusZeroForASilentTool)
{
    TestTools tools;
    const auto result = waitFor(OrbCLI::run(tools.addTool(u"quiet"_s, u"exit 0"_s), {}, std::nullopt, 10));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 0);
    EXPECT_EQ(result->stdout, QString());
    EXPECT_EQ(result->stderr, QString());
    EXPECT_EQ(result->combined(), QString());
    EXPECT_FALSE(result->timedOut);
    EXPECT_EQ(result->launchError, std::nullopt);
}

TEST(Run, CollectsBothStreamsAndTheStatus)
{
    TestTools tools;
    const QString tool = tools.addTool(u"talker"_s, u"cat; echo err >&2; echo \"$1\"; exit 3"_s);
    const auto result = waitFor(OrbCLI::run(tool, {u"argument"_s}, u"\uFEFFinput\n"_s, 10));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 3);
    EXPECT_EQ(result->stdout, u"\uFEFFinput\nargument\n"_s);
    EXPECT_EQ(result->stderr, u"err\n"_s);
}

TEST(Run, ReturnsWhatWasPrintedBeforeTheTimeLimit)
{
    TestTools tools;
    const QString tool = tools.addTool(u"slow"_s, u"echo begun; exec sleep 600"_s);
    const auto result = waitFor(OrbCLI::run(tool, {}, std::nullopt, 1));
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->timedOut);
    EXPECT_EQ(result->status, SIGTERM);
    EXPECT_EQ(result->stdout, u"begun\n"_s);
    EXPECT_EQ(result->launchError, std::nullopt);
}

TEST(Run, CollectsFarMoreThanPipeAndQueueHold)
{
    TestTools tools;
    const QString tool = tools.addTool(u"flood"_s, u"head -c 12000000 /dev/zero | tr '\\0' x; echo end >&2"_s);
    const auto result = waitFor(OrbCLI::run(tool, {}, std::nullopt, farLimit));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 0);
    EXPECT_EQ(result->stdout.size(), 12'000'000);
    EXPECT_EQ(result->stdout.count(u'x'), 12'000'000);
    EXPECT_EQ(result->stderr, u"end\n"_s);
}

TEST(Run, MayRunManyTimesAtOnce)
{
    TestTools tools;
    const QString tool = tools.addTool(u"echoes"_s, u"echo \"$1\""_s);
    std::vector<QCoro::Task<CLIResult>> tasks;
    tasks.reserve(10);
    for (int number = 0; number < 10; ++number)
        tasks.push_back(OrbCLI::run(tool, {QString::number(number)}, std::nullopt, farLimit));
    for (int number = 0; number < 10; ++number) {
        const auto result = waitFor(std::move(tasks[static_cast<std::size_t>(number)]));
        ASSERT_TRUE(result);
        EXPECT_EQ(result->stdout, u"%1\n"_s.arg(number));
    }
}

TEST(StreamAsync, HandsOverTheHandleBeforeAnyOutputAndReturnsTheEnd)
{
    TestTools tools;
    QStringList events;
    ProcessHandlePointer handle;
    auto task = OrbCLI::streamAsync(
        tools.addTool(u"talker"_s, u"echo out; exit 4"_s), {}, std::nullopt, 10.0,
        [&](const ProcessHandlePointer &started) {
            handle = started;
            events << u"started"_s;
        },
        [&](QUtf8StringView, bool) { events << u"output"_s; });
    EXPECT_EQ(events, QStringList{u"started"_s});
    EXPECT_TRUE(handle);
    const auto result = waitFor(std::move(task));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 4);
    EXPECT_FALSE(result->timedOut);
    EXPECT_EQ(events, (QStringList{u"started"_s, u"output"_s}));
}

TEST(StreamAsync, TellsATimeoutFromACancel)
{
    TestTools tools;
    const QString tool = tools.addTool(u"sleeper"_s, u"exec sleep 600"_s);
    const auto timedOut = waitFor(OrbCLI::streamAsync(tool, {}, std::nullopt, 0.2, nullptr, nullptr));
    ASSERT_TRUE(timedOut);
    EXPECT_TRUE(timedOut->timedOut);
    EXPECT_EQ(timedOut->status, SIGTERM);
    const auto cancelled = waitFor(OrbCLI::streamAsync(
        tool, {}, std::nullopt, std::nullopt, [](const ProcessHandlePointer &handle) { handle->cancel(); }, nullptr));
    ASSERT_TRUE(cancelled);
    EXPECT_FALSE(cancelled->timedOut);
    EXPECT_EQ(cancelled->status, SIGTERM);
}

TEST(StreamAsync, ReturnsMinusOneForAToolThatCannotBeStarted)
{
    TestTools tools;
    QString heard;
    int starts = 0;
    const auto result = waitFor(OrbCLI::streamAsync(
        tools.path(u"missing"_s), {}, std::nullopt, std::nullopt, [&](const ProcessHandlePointer &) { ++starts; },
        [&](QUtf8StringView text, bool) { heard += text.toString(); }));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, -1);
    EXPECT_FALSE(result->timedOut);
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(heard, u"Could not start missing: No such file or directory\n"_s);
}

TEST(Run, StopsAToolThatPrintsMoreThanItsCallerCanUse)
{
    TestTools tools;
    // The flood comes from a child of the tool, which nobody asks to terminate: its pipe goes.
    const QString tool = tools.addTool(u"flood"_s, u"yes; touch '%1'"_s.arg(tools.path(u"survived"_s)));
    constexpr OrbCLI::OutputNeed need{1024 * 1024, OrbCLI::OutputNeed::Beyond::stopTool};
    const auto result = waitFor(OrbCLI::run(tool, {}, std::nullopt, farLimit, need));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->stoppedAfter, need.most);
    EXPECT_FALSE(result->succeeded());
    EXPECT_FALSE(result->timedOut);
    EXPECT_EQ(result->combined(), QString()) << "a part of it is of no use";
    EXPECT_EQ(result->failure(u"orb list"_s), u"orb list printed more than 1 MiB and was stopped."_s);
}

TEST(Run, KeepsAllThatIsJustNotTooMuch)
{
    TestTools tools;
    const QString tool = tools.addTool(u"full"_s, u"head -c 1048576 /dev/zero | tr '\\0' x; echo error >&2"_s);
    constexpr OrbCLI::OutputNeed need{1024 * 1024, OrbCLI::OutputNeed::Beyond::stopTool};
    const auto result = waitFor(OrbCLI::run(tool, {}, std::nullopt, farLimit, need));
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->succeeded());
    EXPECT_EQ(result->stdout.size(), 1024 * 1024);
    EXPECT_EQ(result->stderr, u"error\n"_s);
}

TEST(Run, KeepsOfTheErrorsTheEndAndLetsTheToolGoOn)
{
    TestTools tools;
    const QString tool = tools.addTool(u"chatty"_s, u"head -c 10000000 /dev/zero | tr '\\0' x >&2; echo list"_s);
    constexpr OrbCLI::OutputNeed need{1024 * 1024, OrbCLI::OutputNeed::Beyond::stopTool};
    const auto result = waitFor(OrbCLI::run(tool, {}, std::nullopt, farLimit, need));
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->succeeded());
    EXPECT_EQ(result->stdout, u"list\n"_s);
    EXPECT_TRUE(result->stderr.startsWith(u"(only the last 4 MiB are kept)\nxxx"_s));
}

TEST(Run, KeepsTheEndOfALongLogAndSaysSo)
{
    TestTools tools;
    const QString tool =
        tools.addTool(u"logs"_s, u"head -c 20000000 /dev/zero | tr '\\0' x; echo the end; echo short >&2; exit 0"_s);
    const auto result = waitFor(OrbCLI::run(tool, {}, std::nullopt, farLimit, OrbCLI::endOfLog));
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->succeeded()) << "it was let go on";
    EXPECT_TRUE(result->stdout.startsWith(u"(only the last 4 MiB are kept)\nxxx"_s));
    EXPECT_TRUE(result->stdout.endsWith(u"xxxthe end\n"_s));
    EXPECT_EQ(result->stdout.size(), 4 * 1024 * 1024 + 31);
    EXPECT_EQ(result->stderr, u"short\n"_s);
}
