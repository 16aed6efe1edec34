#include "Screens/ContentView/Screens/Run/RunViewSteps.h"

#include "Look/Typography.h"
#include "OutputPane/OutputPane.h"

namespace
{

/// A run that has printed "first" and goes on to print "second" once it is told to.
class RunViewOutput : public testing::Test
{
protected:
    RunViewOutput()
    {
        window.showRunning({u"box"_s});
        window.run.setScript(u"echo first\n"_s + window.orbStack.tools().waitForFile(u"go"_s) + u"\necho second"_s);
        press(window.content(), u"Run"_s);
        EXPECT_TRUE(waitUntil([this] { return window.run.plainText().endsWith(u"first\n"_s); }));
    }

    void letItEnd()
    {
        EXPECT_TRUE(window.run.isRunning());
        window.orbStack.tools().addFile(u"go"_s);
        EXPECT_TRUE(waitUntil([this] { return !window.run.isRunning(); }));
    }

    TestWindow window;
};

} // namespace

TEST_F(RunViewOutput, IsCopiedWhileTheRunGoesOn)
{
    press(window.content(), u"Copy output"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"$ orb -m box bash -s\nfirst\n"_s);
    letItEnd();
    EXPECT_TRUE(window.run.plainText().startsWith(u"$ orb -m box bash -s\nfirst\nsecond\n\nexit status 0"_s));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"$ orb -m box bash -s\nfirst\n"_s) << "what there was then";
}

TEST_F(RunViewOutput, IsClearedWhileTheRunGoesOnWhichPrintsOn)
{
    auto &pane = *window.content().findChild<OutputPane *>();
    EXPECT_FALSE(pane.isBlank());
    press(window.content(), u"Clear"_s, u"Clear the output"_s);
    EXPECT_EQ(window.run.plainText(), QString());
    EXPECT_TRUE(pane.isBlank());
    letItEnd();
    EXPECT_TRUE(window.run.plainText().startsWith(u"second\n\nexit status 0"_s));
    ASSERT_EQ(window.history.entries().size(), 1);
    EXPECT_EQ(window.history.entries()[0].exitCode, 0);
}
