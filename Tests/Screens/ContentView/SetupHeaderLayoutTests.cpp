#include "ContentView/SetupHeader.h"
#include "Look/Colours.h"
#include "Look/LogBox.h"
#include "Look/NoteText.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/StatusDot.h"
#include "Look/Typography.h"
#include "Screens/Places.h"
#include "Screens/TestWindow.h"

#include <QProgressBar>
#include <QPushButton>

using namespace Qt::StringLiterals;
using ByName::descriptionOf;
using ByName::find;

namespace
{

/// The label that begins so.
const PlainLabel *labelOf(const QWidget &header, const QString &beginning)
{
    for (const PlainLabel *label : header.findChildren<PlainLabel *>()) {
        if (label->isVisible() && label->text().startsWith(beginning))
            return label;
    }
    ADD_FAILURE() << "nothing begins with " << beginning.toStdString();
    return nullptr;
}

QColor colourOf(const PlainLabel *label)
{
    return label != nullptr ? label->palette().color(QPalette::WindowText) : QColor();
}

} // namespace

TEST(SetupHeader, LeavesEightPointsBetweenItsElements)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's buttons keep distances of their own";
#endif
    TestWindow window;
    TestTools &tools = window.orbStack.tools();
    tools.removeTool(u"orb"_s);
    tools.addTool(u"brew"_s, u"echo first; exec sleep 600"_s);
    const ContentView &content = window.show();
    const SetupHeader &header = *content.findChild<SetupHeader *>();
    ASSERT_TRUE(waitUntil([&] { return ByName::isOffered(header, u"Install OrbStack"_s); }));
    ByName::press(header, u"Install OrbStack"_s);
    ASSERT_TRUE(waitUntil([&] { return ByName::shows(header, u"Setup log"_s); }));
    const auto *bar = find<QProgressBar>(header, u"In progress"_s);
    const auto *cancel = find<QPushButton>(header, u"Cancel"_s);
    const auto *note = header.findChild<NoteText *>();
    const auto *log = header.findChild<LogBox *>();
    const auto *install = find<QPushButton>(header, u"Install OrbStack"_s);
    const PlainLabel *explanation = labelOf(header, u"OrbStack runs"_s);
    const auto gaps = [&] {
        return Places::gapsBelow(header, {{find<StatusDot>(header, u"OrbStack not installed"_s), install},
                                          {explanation},
                                          {bar, cancel},
                                          {note},
                                          {log}});
    };
    Places::expectSoon(gaps, QList<int>({8, 8, 8, 8}));
    for (const QWidget *each : std::initializer_list<const QWidget *>{explanation, bar, note, log})
        EXPECT_EQ(Places::in(header, each).left(), 12);
    EXPECT_EQ(Places::in(header, cancel).right(), header.width() - 12 - 1);
    EXPECT_LT(Places::in(header, bar).right(), Places::in(header, cancel).left());
    EXPECT_GT(bar->width(), header.width() - cancel->width() - 60) << "it takes the width that there is";
}

TEST(SetupHeader, PutsStartBeforeStopAtItsTrailingEdge)
{
    TestWindow window;
    const ContentView &content = window.show();
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    const SetupHeader &header = *content.findChild<SetupHeader *>();
    const auto *start = find<QPushButton>(header, u"Start"_s);
    const auto *stop = find<QPushButton>(header, u"Stop"_s);
    Places::expectSoon([&] { return Places::in(header, stop).right(); }, header.width() - 12 - 1);
    EXPECT_EQ(Places::gapsBeside(header, {start, stop}), QList<int>{10});
    EXPECT_EQ(descriptionOf(start), u"Start OrbStack"_s);
    EXPECT_EQ(descriptionOf(stop), u"Stop OrbStack"_s);
}

TEST(SetupHeader, SetsItsWordsInTheColourAndTypeOfTheirRank)
{
    TestWindow window;
    const ContentView &content = window.show();
    const SetupHeader &header = *content.findChild<SetupHeader *>();
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    EXPECT_EQ(colourOf(labelOf(header, u"OrbStack stopped"_s)), Colours::primary(header.palette()));
    window.orbStack.tools().removeTool(u"orb"_s);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    const PlainLabel *withoutBrew = labelOf(header, u"Homebrew was not found"_s);
    EXPECT_EQ(colourOf(withoutBrew), Colours::secondary(header.palette()));
    EXPECT_EQ(withoutBrew->font(), Typography::callout());
    EXPECT_EQ(descriptionOf(find<QPushButton>(header, u"Get OrbStack"_s)), u"Open orbstack.dev in the browser"_s);
    window.orbStack.tools().addTool(u"brew"_s, u"exec sleep 600"_s);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    const PlainLabel *withBrew = labelOf(header, u"OrbStack runs"_s);
    EXPECT_EQ(colourOf(withBrew), Colours::secondary(header.palette()));
    EXPECT_EQ(withBrew->font(), Typography::callout());
    EXPECT_EQ(descriptionOf(find<QPushButton>(header, u"Install OrbStack"_s)), u"Install OrbStack with Homebrew"_s);
    ByName::press(header, u"Install OrbStack"_s);
    EXPECT_EQ(descriptionOf(find<QPushButton>(header, u"Cancel"_s)), u"Cancel the OrbStack operation"_s);
}

TEST(SetupHeader, WarnsOfAnOldSystemInRunningText)
{
    TestWindow window(false);
    const ContentView &content = window.show();
    const PlainLabel *warning = labelOf(*content.findChild<SetupHeader *>(), u"OrbStack needs macOS 14"_s);
    EXPECT_EQ(warning->font(), Typography::body());
    EXPECT_EQ(colourOf(warning), Colours::red(content.palette()));
}
