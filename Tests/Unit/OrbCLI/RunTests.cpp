#include "OrbCLI/OrbCLI.h"
#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

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
