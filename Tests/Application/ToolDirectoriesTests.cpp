// The places that the application itself is linked with; all other tests are linked with places of their own.

#include "OrbCLI/ToolDirectories.h"

#include "OrbCLI/ToolLocation.h"

#include <QString>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ToolDirectories, AreThreeInTheirOrder)
{
    const std::vector<std::string> &directories = OrbCLI::toolDirectories();
    ASSERT_EQ(directories.size(), 3U);
    EXPECT_EQ(directories[0], "/opt/homebrew/bin");
    EXPECT_EQ(directories[1], "/usr/local/bin");
    EXPECT_EQ(directories[2], "/Applications/OrbStack.app/Contents/MacOS/xbin");
}

TEST(ToolDirectories, HoldBrewInOneOfTwoPlacesInTheirOrder)
{
    const std::vector<std::string> &candidates = OrbCLI::brewCandidates();
    ASSERT_EQ(candidates.size(), 2U);
    EXPECT_EQ(candidates[0], "/opt/homebrew/bin/brew");
    EXPECT_EQ(candidates[1], "/usr/local/bin/brew");
}

TEST(ToolDirectories, LeadEveryChildsPath)
{
    qputenv("PATH", "/usr/bin:/bin");
    EXPECT_EQ(OrbCLI::environment().at("PATH"),
              "/opt/homebrew/bin:/usr/local/bin:/Applications/OrbStack.app/Contents/MacOS/xbin:/usr/bin:/bin");
    qunsetenv("PATH");
    EXPECT_EQ(OrbCLI::environment().at("PATH"), "/opt/homebrew/bin:/usr/local/bin:/Applications/OrbStack.app/Contents/"
                                                "MacOS/xbin:/usr/bin:/bin:/usr/sbin:/sbin");
}
