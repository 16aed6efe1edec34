#include "OrbCLI/CLIResult.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

CLIResult withTexts(const QString &output, const QString &errors)
{
    CLIResult result;
    result.status = 0;
    result.stdout = output;
    result.stderr = errors;
    return result;
}

} // namespace

TEST(CLIResult, CombinesBothTrimmedStreamsWithOneLineFeed)
{
    EXPECT_EQ(withTexts(u"  out\n"_s, u"\nerr  "_s).combined(), u"out\nerr"_s);
}

TEST(CLIResult, CombinesToTheOnlyStreamThatIsNotEmpty)
{
    EXPECT_EQ(withTexts(QString(), u" x "_s).combined(), u"x"_s);
    EXPECT_EQ(withTexts(u"\r\nx\t"_s, u" \n"_s).combined(), u"x"_s);
    EXPECT_EQ(withTexts(u"  "_s, u"\n"_s).combined(), QString());
    EXPECT_EQ(CLIResult().combined(), QString());
}

TEST(CLIResult, TrimsUnicodeSpacesAndLineBreaksAtTheEdgesOnly)
{
    EXPECT_EQ(withTexts(u"\u2003\u00a0a \n b\u2028\u0085"_s, QString()).combined(), u"a \n b"_s);
}

TEST(CLIResult, SucceedsOnlyWhenStartedInTimeWithStatusZero)
{
    CLIResult result = withTexts(QString(), QString());
    EXPECT_TRUE(result.succeeded());
    result.timedOut = true;
    EXPECT_FALSE(result.succeeded());
    result = withTexts(QString(), QString());
    result.launchError = u"refused"_s;
    EXPECT_FALSE(result.succeeded());
    result = withTexts(QString(), QString());
    result.status = 1;
    EXPECT_FALSE(result.succeeded());
    EXPECT_FALSE(CLIResult().succeeded());
    EXPECT_EQ(CLIResult().status, -1) << "before it is known";
    result = withTexts(QString(), QString());
    result.stoppedAfter = 1;
    EXPECT_FALSE(result.succeeded());
}

TEST(CLIResult, TellsWhyItFailedInTheOrderOfItsJudgement)
{
    CLIResult result = withTexts(u"out"_s, u" err\n"_s);
    EXPECT_EQ(result.failure(u"orb list"_s), std::nullopt);
    result.status = 3;
    EXPECT_EQ(result.failure(u"orb list"_s), u"out\nerr"_s);
    result.timedOut = true;
    EXPECT_EQ(result.failure(u"orb list"_s), u"orb list timed out. Is OrbStack running?"_s);
    result.status = 0;
    EXPECT_EQ(result.failure(u"docker ps"_s), u"docker ps timed out. Is OrbStack running?"_s);
    result.stoppedAfter = qsizetype{1024} * 1024;
    EXPECT_EQ(result.failure(u"docker ps"_s), u"docker ps printed more than 1 MiB and was stopped."_s)
        << "although it did not end in time";
    result.launchError = u"refused"_s;
    EXPECT_EQ(result.failure(u"orb list"_s), u"refused"_s);
}

TEST(CLIResult, TellsAFailureWithoutAWordAsAnEmptyOne)
{
    CLIResult result = withTexts(QString(), u" \n"_s);
    result.status = 1;
    EXPECT_EQ(result.failure(u"orb list"_s), QString());
}

TEST(CLIResult, TellsInMebibytesAfterHowMuchItWasStopped)
{
    CLIResult result = withTexts(QString(), QString());
    result.stoppedAfter = qsizetype{3} * 1024 * 1024;
    EXPECT_EQ(result.failure(u"orb list"_s), u"orb list printed more than 3 MiB and was stopped."_s);
    result.stoppedAfter = qsizetype{3} * 1024 * 1024 - 1;
    EXPECT_EQ(result.failure(u"docker ps"_s), u"docker ps printed more than 2 MiB and was stopped."_s);
}
