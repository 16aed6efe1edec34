// Tools that ignore their termination: what is polled leaves them behind, so that polling goes on; what the user asked
// for waits for them.

#include "Support/Waiting.h"
#include "Unit/AllControllers/Operations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{

constexpr double limit = 2; // seconds, by which every tool has come to ignore the signal

/// Operations that have begun, each on controllers of its own.
class Begun
{
public:
    void begin(const Operation &operation)
    {
        m_controllers.push_back(std::make_unique<AllControllers>(limit, limit));
        m_isOver.push_back(operation.begin(*m_controllers.back()));
        m_names.push_back(operation.name);
    }

    /// The names of those that have, or have not, come to their end.
    std::vector<std::string> names(bool areOver) const
    {
        std::vector<std::string> names;
        for (std::size_t index = 0; index < m_names.size(); ++index) {
            if (m_isOver[index]() == areOver)
                names.push_back(m_names[index]);
        }
        return names;
    }

private:
    std::vector<std::unique_ptr<AllControllers>> m_controllers;
    std::vector<std::function<bool()>> m_isOver;
    std::vector<std::string> m_names;
};

} // namespace

TEST(StubbornTools, AreLeftBehindByPollingAndAwaitedByAnOperation)
{
    const std::vector<std::string> none;
    TestTools tools;
    const QString stubborn = u"trap '' TERM\n"_s + tools.waitForFile(u"go"_s);
    Begun polled;
    Begun asked;
    // A list hangs in one of its forms; the tool that hangs in the second is found as long as there is no other.
    tools.addTool(u"orb"_s, u"[ \"$*\" = list ] || exit 1\n"_s + stubborn, 2);
    for (const Operation &operation : allOperations()) {
        if (operation.isPolled && !operation.before.isEmpty())
            polled.begin(operation);
    }
    ASSERT_TRUE(waitUntil([&] { return tools.calls(u"orb"_s).contains(u"<list>"_s); }));
    tools.addTool(u"orb"_s, u"[ \"$*\" != list ] || exit 1\n"_s + stubborn);
    tools.addTool(u"docker"_s, stubborn);
    tools.addTool(u"brew"_s, stubborn);
    for (const Operation &operation : allOperations()) {
        if (!operation.isPolled)
            asked.begin(operation);
    }
    for (const Operation &operation : allOperations()) {
        if (operation.isPolled && operation.before.isEmpty())
            polled.begin(operation);
    }

    EXPECT_TRUE(waitUntil([&] { return polled.names(false).empty(); }));
    EXPECT_EQ(polled.names(false), none);
    EXPECT_EQ(polled.names(true).size(), 4U);
    EXPECT_EQ(asked.names(true), none) << "though they were asked to terminate before the last of the others";
    const std::size_t pollingCalls = 6; // two for each of the lists in two forms
    qsizetype calls = 0;
    for (const QString &tool : {u"orb"_s, u"docker"_s, u"brew"_s})
        calls += tools.calls(tool).size();
    EXPECT_EQ(static_cast<std::size_t>(calls), asked.names(false).size() + pollingCalls) << "none went on to its next";
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return asked.names(false).empty(); }));
    EXPECT_EQ(asked.names(false), none);
}
