#include "OrbCLI/ToolLocation.h"

#include "OrbCLI/OrbCLI.h"
#include "OrbCLI/ToolDirectories.h"
#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Qt::StringLiterals;

extern char **environ;

namespace
{

/// Sets or removes a variable for as long as it lives.
class ScopedVariable
{
public:
    ScopedVariable(std::string name, std::optional<std::string> value) : m_name(std::move(name))
    {
        if (const char *before = std::getenv(m_name.c_str()))
            m_before = before;
        set(value);
    }
    ~ScopedVariable() { set(m_before); }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

private:
    void set(const std::optional<std::string> &value)
    {
        if (value)
            ::setenv(m_name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(m_name.c_str());
    }

    std::string m_name;
    std::optional<std::string> m_before;
};

std::string pathOf(const TestTools &tools, const std::string &inherited)
{
    std::string path;
    for (int index = 0; index < 3; ++index)
        path += tools.directory(index).toStdString() + ':';
    return path + inherited;
}

void writeFile(const QString &path, QFile::Permissions permissions)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n");
    file.close();
    ASSERT_TRUE(file.setPermissions(permissions));
}

std::map<std::string, std::string> withoutPath(std::map<std::string, std::string> variables)
{
    variables.erase("PATH");
    return variables;
}

/// The application's own variables, as the system has them.
std::map<std::string, std::string> ownVariables()
{
    std::map<std::string, std::string> variables;
    for (char **entry = ::environ; *entry != nullptr; ++entry) {
        const std::string text(*entry);
        variables.emplace(text.substr(0, text.find('=')), text.substr(text.find('=') + 1));
    }
    return variables;
}

} // namespace

TEST(ToolLocation, FindsAToolInTheFirstDirectoryThatHoldsIt)
{
    TestTools tools;
    const QString second = tools.addTool(u"orb"_s, u"exit 0"_s, 1);
    EXPECT_EQ(OrbCLI::find(u"orb"_s), second);
    const QString first = tools.addTool(u"orb"_s, u"exit 0"_s, 0);
    EXPECT_EQ(OrbCLI::find(u"orb"_s), first);
}

TEST(ToolLocation, SkipsAFileThatIsNotExecutable)
{
    TestTools tools;
    writeFile(tools.directory(0) + u"/docker"_s, QFile::ReadOwner | QFile::WriteOwner);
    const QString last = tools.addTool(u"docker"_s, u"exit 0"_s, 2);
    EXPECT_EQ(OrbCLI::find(u"docker"_s), last);
}

TEST(ToolLocation, SkipsADirectoryAndADanglingLink)
{
    TestTools tools;
    ASSERT_TRUE(QDir().mkpath(tools.directory(0) + u"/orb"_s));
    ASSERT_TRUE(QFile::link(tools.path(u"missing"_s), tools.directory(1) + u"/orb"_s));
    EXPECT_EQ(OrbCLI::find(u"orb"_s), std::nullopt);
    const QString last = tools.addTool(u"orb"_s, u"exit 0"_s, 2);
    EXPECT_EQ(OrbCLI::find(u"orb"_s), last);
}

TEST(ToolLocation, FollowsALinkToAnExecutableFile)
{
    TestTools tools;
    ASSERT_TRUE(QFile::link(u"/bin/sh"_s, tools.directory(1) + u"/orb"_s));
    EXPECT_EQ(OrbCLI::find(u"orb"_s), tools.directory(1) + u"/orb"_s);
}

TEST(ToolLocation, NeverSearchesTheUsersOwnPath)
{
    TestTools tools;
    ASSERT_TRUE(OrbCLI::isExecutableFile("/bin/sh"));
    EXPECT_EQ(OrbCLI::find(u"sh"_s), std::nullopt);
}

TEST(ToolLocation, FindsNothingForAnEmptyName)
{
    TestTools tools;
    EXPECT_EQ(OrbCLI::find(QString()), std::nullopt);
}

TEST(ToolLocation, FindsBrewInItsFirstPlaceThenInItsSecond)
{
    TestTools tools;
    EXPECT_EQ(OrbCLI::findBrew(), std::nullopt);
    tools.addTool(u"brew"_s, u"exit 0"_s, 2);
    EXPECT_EQ(OrbCLI::findBrew(), std::nullopt);
    const QString second = tools.addTool(u"brew"_s, u"exit 0"_s, 1);
    EXPECT_EQ(OrbCLI::findBrew(), second);
    const QString first = tools.addTool(u"brew"_s, u"exit 0"_s, 0);
    EXPECT_EQ(OrbCLI::findBrew(), first);
}

TEST(ToolLocation, LeadsTheChildsPathWithTheToolDirectories)
{
    TestTools tools;
    const ScopedVariable path("PATH", "/usr/bin:/bin");
    EXPECT_EQ(OrbCLI::environment().at("PATH"), pathOf(tools, "/usr/bin:/bin"));
}

TEST(ToolLocation, UsesTheFallbackPathWhenThereIsNone)
{
    TestTools tools;
    const ScopedVariable path("PATH", std::nullopt);
    EXPECT_EQ(OrbCLI::environment().at("PATH"), pathOf(tools, "/usr/bin:/bin:/usr/sbin:/sbin"));
}

TEST(ToolLocation, KeepsAnEmptyPathAndADirectoryThatOccursTwice)
{
    TestTools tools;
    const std::string first = tools.directory(0).toStdString();
    const ScopedVariable path("PATH", first);
    EXPECT_EQ(OrbCLI::environment().at("PATH"), pathOf(tools, first));
    const ScopedVariable empty("PATH", "");
    EXPECT_EQ(OrbCLI::environment().at("PATH"), pathOf(tools, ""));
}

TEST(ToolLocation, PassesEveryOtherVariableOnUnchangedAndAfresh)
{
    TestTools tools;
    const ScopedVariable empty("TIDEWELL_TEST_EMPTY", "");
    const ScopedVariable equals("TIDEWELL_TEST_EQUALS", "a=b=c");
    std::map<std::string, std::string> variables = OrbCLI::environment();
    EXPECT_EQ(variables.at("TIDEWELL_TEST_EMPTY"), "");
    EXPECT_EQ(variables.at("TIDEWELL_TEST_EQUALS"), "a=b=c");
    EXPECT_EQ(variables.count("TIDEWELL_TEST_LATER"), 0U);
    // No valid text, and passed on all the same.
    const ScopedVariable later("TIDEWELL_TEST_LATER", "\xff\n");
    variables = OrbCLI::environment();
    EXPECT_EQ(variables.at("TIDEWELL_TEST_LATER"), "\xff\n");
    EXPECT_EQ(withoutPath(variables), withoutPath(ownVariables()));
    EXPECT_EQ(variables.size(), ownVariables().size()) << "but for the path, which is there once";
}

TEST(ToolLocation, GivesAChildTheseVariablesAndNoOther)
{
    TestTools tools;
    const ScopedVariable lines("TIDEWELL_TEST_LINES", "one\ntwo=2\n");
    const auto result = waitFor(OrbCLI::run(u"/usr/bin/env"_s, {u"-0"_s}, std::nullopt, farLimit));
    ASSERT_TRUE(result.has_value());
    EXPECT_TRUE(result->succeeded()) << result->stderr.toStdString();
    std::map<std::string, std::string> received;
    for (const QString &entry : result->stdout.split(QChar(0), Qt::SkipEmptyParts)) {
        const std::string text = entry.toStdString();
        received.emplace(text.substr(0, text.find('=')), text.substr(text.find('=') + 1));
    }
    EXPECT_EQ(withoutPath(received), withoutPath(ownVariables()));
    EXPECT_EQ(received.at("PATH"), OrbCLI::environment().at("PATH"));
}
