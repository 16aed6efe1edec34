// What is asked again and again gives its tool a grace time, so that a tool which will not end cannot stop the asking.

#include "OrbCLI/OrbCLI.h"
#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// A second is enough for a tool to begin.
std::optional<CLIResult> ask(const QString &tool, const QStringList &arguments, double limit = 1)
{
    return waitFor(OrbCLI::run(tool, arguments, std::nullopt, limit, OrbCLI::wholeList, 0.2));
}

} // namespace

TEST(Polling, StartsNoFifthToolWhileFourHangOfTheSameQuestion)
{
    TestTools tools;
    const QString tool = tools.addTool(u"stubborn"_s, u"trap '' TERM\n[ $1 = other ] && exit 3\n"_s +
                                                          tools.waitForFile(u"go"_s) + u"exit 7"_s);
    const qsizetype most = 4;
    for (int count = 0; count < most + 2; ++count) {
        const auto result = ask(tool, {u"list"_s});
        ASSERT_TRUE(result);
        EXPECT_TRUE(result->timedOut);
        EXPECT_EQ(result->status, -1);
    }
    EXPECT_EQ(tools.calls(u"stubborn"_s).size(), most);
    EXPECT_EQ(ask(tool, {u"other"_s}, farLimit)->status, 3) << "another question is still asked";

    tools.addFile(u"go"_s);
    std::optional<CLIResult> again;
    ASSERT_TRUE(waitUntil([&] {
        again = ask(tool, {u"list"_s});
        return again && !again->timedOut;
    })) << "asked again once they are gone";
    EXPECT_EQ(again->status, 7);
}

TEST(Polling, GivesAToolTenSecondsOfGrace)
{
    EXPECT_EQ(OrbCLI::pollingGraceTime, 10);
}

TEST(Polling, WaitsForWhoeverHoldsThePipesOfAToolThatExitedInTime)
{
    TestTools tools;
    const QString parent =
        tools.addTool(u"parent"_s, u"{ "_s + tools.waitForFile(u"go"_s) + u"echo late; } & echo early; exit 5"_s);
    std::optional<CLIResult> result;
    OrbCLI::run(parent, {}, std::nullopt, 2, OrbCLI::wholeList, 100).then([&](const CLIResult &ended) {
        result = ended;
    });
    const QString stubborn = tools.addTool(u"stubborn"_s, u"trap '' TERM\n"_s + tools.waitForFile(u"go"_s));
    const auto later = waitFor(OrbCLI::run(stubborn, {}, std::nullopt, 2.5, OrbCLI::wholeList, 0.2));
    ASSERT_TRUE(later && later->timedOut);
    EXPECT_FALSE(result) << "although its time is over";
    tools.addFile(u"go"_s);
    ASSERT_TRUE(waitUntil([&] { return result.has_value(); }));
    EXPECT_EQ(result->status, 5);
    EXPECT_EQ(result->stdout, u"early\nlate\n"_s);
    EXPECT_FALSE(result->timedOut);
}

TEST(Polling, GoesOnWhenSomebodyHoldsThePipesOfAToolForGood)
{
    TestTools tools;
    const QString parent =
        tools.addTool(u"parent"_s, u"{ "_s + tools.waitForFile(u"go"_s) + u"} & echo early; exit 5"_s);
    const auto result = waitFor(OrbCLI::run(parent, {}, std::nullopt, 3, OrbCLI::wholeList, 0.2));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 5);
    EXPECT_EQ(result->stdout, u"early\n"_s);
    EXPECT_FALSE(result->timedOut) << "it has ended in time";
    tools.addFile(u"go"_s);
}
