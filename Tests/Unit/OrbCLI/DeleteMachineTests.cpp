#include "OrbCLI/DeleteMachine.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(DeleteMachine, IsDoneWhenTheForcedAttemptSucceeds)
{
    TestTools tools;
    const QString orb = tools.addTool(u"orb"_s, u"echo gone; wc -c"_s);
    const std::optional<CLIResult> result = waitFor(OrbCLI::deleteMachine(orb, u"box"_s, farLimit));
    ASSERT_TRUE(result.has_value());
    EXPECT_TRUE(result->succeeded());
    EXPECT_EQ(result->combined(), u"gone\n0"_s) << "nothing on standard input";
    EXPECT_EQ(tools.calls(u"orb"_s), QStringList{u"<delete><-f><box>"_s});
}

TEST(DeleteMachine, AnswersTheQuestionInASecondAttempt)
{
    TestTools tools;
    const QString orb = tools.addTool(u"orb"_s, u"[ \"$2\" = -f ] && { echo first; exit 1; }; od -c -An"_s);
    const std::optional<CLIResult> result = waitFor(OrbCLI::deleteMachine(orb, u"box"_s, farLimit));
    ASSERT_TRUE(result.has_value());
    EXPECT_TRUE(result->succeeded());
    EXPECT_EQ(result->combined().simplified(), u"y \\n"_s);
    EXPECT_EQ(tools.calls(u"orb"_s), QStringList({u"<delete><-f><box>"_s, u"<delete><box>"_s}));
}

TEST(DeleteMachine, ReturnsTheSecondResultWhateverItIs)
{
    TestTools tools;
    const QString orb = tools.addTool(u"orb"_s, u"[ \"$2\" = -f ] && { echo first; exit 1; }; echo second; exit 7"_s);
    const std::optional<CLIResult> result = waitFor(OrbCLI::deleteMachine(orb, u"box"_s, farLimit));
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->status, 7);
    EXPECT_EQ(result->combined(), u"second"_s);
    EXPECT_EQ(tools.calls(u"orb"_s).size(), 2) << "no third attempt";
}

TEST(DeleteMachine, TriesAgainAfterATimeOutEvenOneWithStatusZero)
{
    TestTools tools;
    const QString orb = tools.addTool(u"orb"_s, u"[ \"$2\" = -f ] || exit 0\n"_s + TestTools::untilTerminated(0));
    const std::optional<CLIResult> result = waitFor(OrbCLI::deleteMachine(orb, u"box"_s, 2));
    ASSERT_TRUE(result.has_value());
    EXPECT_TRUE(result->succeeded());
    EXPECT_EQ(tools.calls(u"orb"_s).size(), 2);
}

TEST(DeleteMachine, GivesEachAttemptItsOwnTimeLimit)
{
    TestTools tools;
    const QString orb = tools.addTool(u"orb"_s, TestTools::untilTerminated(0));
    const std::optional<CLIResult> result = waitFor(OrbCLI::deleteMachine(orb, u"box"_s, 1));
    ASSERT_TRUE(result.has_value());
    EXPECT_TRUE(result->timedOut);
    EXPECT_EQ(tools.calls(u"orb"_s).size(), 2);
}

TEST(DeleteMachine, TellsWhenTheToolCannotStart)
{
    TestTools tools;
    const QString orb = tools.path(u"missing"_s);
    const std::optional<CLIResult> result = waitFor(OrbCLI::deleteMachine(orb, u"box"_s, farLimit));
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->status, -1);
    EXPECT_TRUE(result->launchError.has_value());
}

TEST(DeleteMachine, PassesAHostileNameAsOneArgument)
{
    TestTools tools;
    const QString orb = tools.addTool(u"orb"_s, {});
    EXPECT_TRUE(waitFor(OrbCLI::deleteMachine(orb, u"$(touch x); * 'q'"_s, farLimit)).has_value());
    EXPECT_EQ(tools.calls(u"orb"_s), QStringList{u"<delete><-f><$(touch x); * 'q'>"_s});
}
