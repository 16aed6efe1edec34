#include "ContentView/Screens/Run/RunView.h"
#include "Screens/TestWindow.h"
#include "Screens/TimerWatch.h"
#include "Support/ProcessLevels.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTabBar>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace
{

qsizetype containerLists(TestWindow &window)
{
    return window.orbStack.tools().calls(u"docker"_s).size();
}

QTabBar *tabs(const ContentView &content)
{
    return content.findChild<QTabBar *>();
}

} // namespace

TEST(AppTab, IsItsLabelAndNothingElse)
{
    QStringList labels;
    for (const AppTab tab : allAppTabs) {
        labels.append(rawValue(tab));
        EXPECT_EQ(appTabFromRawValue(rawValue(tab)), tab);
    }
    EXPECT_EQ(labels, QStringList({u"Run"_s, u"Machines"_s, u"History"_s, u"Containers"_s}));
    EXPECT_EQ(appTabFromRawValue(u"run"_s), std::nullopt);
    EXPECT_EQ(appTabFromRawValue(QString()), std::nullopt);
}

TEST(ContentView, OpensOnTheRunTabWithTheScriptReadyToBeTyped)
{
    TestWindow window;
    ContentView &content = window.show();
    EXPECT_EQ(content.tab(), AppTab::run);
    EXPECT_NE(content.findChild<RunView *>(), nullptr);
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Script"_s);
}

TEST(ContentView, NamesItsTabsForAssistiveTechnology)
{
    TestWindow window;
    ContentView &content = window.show();
    QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(tabs(content));
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->role(), QAccessible::PageTabList);
    QStringList names;
    for (int index = 0; index < bar->childCount(); ++index) {
        if (bar->child(index)->role() == QAccessible::PageTab)
            names.append(bar->child(index)->text(QAccessible::Name));
    }
    EXPECT_EQ(names, QStringList({u"Run"_s, u"Machines"_s, u"History"_s, u"Containers"_s}));
    bar->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(content.tab(), AppTab::history);
}

TEST(ContentView, GivesTheFocusToTheSelectedOneOfFourTabs)
{
    TestWindow window;
    ContentView &content = window.show();
    QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(tabs(content));
    ASSERT_EQ(bar->childCount(), 4);
    tabs(content)->setFocus();
    QTest::keyClick(tabs(content), Qt::Key_Right);
    for (int index = 0; index < 4; ++index) {
        QAccessibleInterface *tab = bar->child(index);
        EXPECT_EQ(tab->parent(), bar);
        EXPECT_EQ(bar->indexOfChild(tab), index);
        EXPECT_EQ(tab->state().selected, index == 1);
        EXPECT_EQ(tab->state().focused, index == 1);
        EXPECT_EQ(tab->rect().size(), tabs(content)->tabRect(index).size());
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(content.focusWidget()), bar->child(1));
}

TEST(ContentView, ChangesTabsByKeyboardAndByMouse)
{
    TestWindow window;
    ContentView &content = window.show();
    tabs(content)->setFocus();
    QTest::keyClick(tabs(content), Qt::Key_Right);
    EXPECT_EQ(content.tab(), AppTab::machines);
    EXPECT_TRUE(tabs(content)->hasFocus());
    QTest::mouseClick(tabs(content), Qt::LeftButton, {}, tabs(content)->tabRect(3).center());
    EXPECT_EQ(content.tab(), AppTab::containers);
    QTest::keyClick(tabs(content), Qt::Key_Left);
    EXPECT_EQ(content.tab(), AppTab::history);
}

TEST(ContentView, PutsTheKeyboardIntoTheScreenWhoseTabIsClicked)
{
    TestWindow window;
    ContentView &content = window.show();
    ASSERT_TRUE(waitUntil([&] { return ByName::isOffered(content, u"Start"_s, u"Start OrbStack"_s); }));
    content.setTab(AppTab::machines);
    ByName::find<QAbstractButton>(content, u"Start"_s, u"Start OrbStack"_s)->setFocus();
    QTest::mouseClick(tabs(content), Qt::LeftButton, {}, tabs(content)->tabRect(0).center());
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Script"_s);
}

TEST(ContentView, KeepsItsScreenWhenTheWheelTurnsOverTheTabs)
{
    TestWindow window;
    ContentView &content = window.show();
    ByName::find<QLineEdit>(content, u"Packages, e.g. git curl"_s)->setText(u"git"_s);
    const QPoint middle = tabs(content)->rect().center();
    QWheelEvent down(middle, tabs(content)->mapToGlobal(middle), {}, QPoint(0, -120), Qt::NoButton, {},
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(tabs(content), &down);
    EXPECT_FALSE(down.isAccepted()) << "it is somebody else's";
    EXPECT_EQ(content.tab(), AppTab::run);
    EXPECT_EQ(ByName::find<QLineEdit>(content, u"Packages, e.g. git curl"_s)->text(), u"git"_s);
}

TEST(ContentView, PutsTheKeyboardIntoTheScreenThatIsAskedForAgain)
{
    TestWindow window;
    ContentView &content = window.show();
    tabs(content)->setFocus();
    content.setTab(AppTab::run);
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Script"_s);
}

TEST(ContentView, BuildsTheSelectedScreenFreshAndNoOther)
{
    TestWindow window;
    ContentView &content = window.show();
    window.run.setScript(u"uptime"_s);
    ByName::find<QLineEdit>(content, u"Packages, e.g. git curl"_s)->setText(u"git"_s);
    content.setTab(AppTab::machines);
    EXPECT_EQ(content.findChild<RunView *>(), nullptr);
    content.setTab(AppTab::run);
    EXPECT_EQ(ByName::find<QLineEdit>(content, u"Packages, e.g. git curl"_s)->text(), QString());
    EXPECT_EQ(ByName::find<QPlainTextEdit>(content, u"Script"_s)->toPlainText(), u"uptime"_s);
}

TEST(ContentView, SurvivesATabChangeThatOneOfTheScreensOwnButtonsMakes)
{
    TestWindow window;
    ContentView &content = window.show();
    auto *clear = ByName::find<QAbstractButton>(content, u"Clear"_s, u"Clear the output"_s);
    clear->setFocus();
    QObject::connect(clear, &QAbstractButton::clicked, &content, [&content] { content.setTab(AppTab::history); });
    ByName::press(content, u"Clear"_s);
    EXPECT_EQ(content.tab(), AppTab::history);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_NE(content.focusWidget(), nullptr);
}

TEST(ContentView, AsksOnlyForTheStateWhileOrbStackIsStopped)
{
    TestWindow window;
    window.show(20ms);
    EXPECT_TRUE(waitUntil([&] { return window.orbStack.calls(FakeOrbStack::statusCall) >= 4; }));
    EXPECT_EQ(window.orbStack.calls(FakeOrbStack::listCall), 0);
    EXPECT_EQ(containerLists(window), 0);
}

TEST(ContentView, AsksForNothingWhenOrbIsMissing)
{
    TestWindow window;
    window.orbStack.tools().removeTool(u"orb"_s);
    window.show(1ms);
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::notInstalled; }));
    window.orbStack.tools().addTool(u"orb"_s, u"echo Stopped"_s);
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    EXPECT_EQ(containerLists(window), 0);
}

TEST(ContentView, RepeatsTheWholeRoundAfterEachSleep)
{
    TestWindow window;
    window.orbStack.setRunning(true);
    window.show(20ms);
    EXPECT_TRUE(waitUntil([&] {
        return window.orbStack.calls(FakeOrbStack::statusCall) >= 3 &&
               window.orbStack.calls(FakeOrbStack::listCall) >= 3 && containerLists(window) >= 3;
    }));
}

TEST(ContentView, SleepsSixSecondsBetweenTwoRounds)
{
    TestWindow window;
    ContentView content(window.controllers());
    const TimerWatch sleep(6s);
    content.show();
    const auto before = std::chrono::steady_clock::now();
    ASSERT_TRUE(waitUntil([&] { return sleep.timer() != nullptr; })) << "and not a little more";
    EXPECT_GE(std::chrono::steady_clock::now() - before, 6s);
    const QSignalSpy sleptAgain(sleep.timer(), &QTimer::timeout);
    EXPECT_TRUE(waitUntil([&] { return window.orbStack.calls(FakeOrbStack::statusCall) == 2; }));
    EXPECT_EQ(sleptAgain.count(), 0) << "once is enough";
}

TEST(ContentView, ListsAtOnceWhenOrbStackComesUp)
{
    TestWindow window;
    ContentView &content = window.show();
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    window.orbStack.setMachines({u"box"_s});
    ByName::press(content, u"Start"_s, u"Start OrbStack"_s);
    EXPECT_TRUE(waitUntil([&] { return window.machines.machines().size() == 1 && containerLists(window) == 1; }));
    ByName::press(content, u"Stop"_s, u"Stop OrbStack"_s);
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped && !window.setup.busy(); }));
    EXPECT_EQ(window.orbStack.calls(FakeOrbStack::listCall), 1);
}

TEST(ContentView, StopsAskingWhileItIsHiddenAndAsksAtOnceWhenShownAgain)
{
    TestWindow window;
    ContentView &content = window.show(1ms);
    ASSERT_TRUE(waitUntil([&] { return window.orbStack.calls(FakeOrbStack::statusCall) >= 2; }));
    content.hide();
    // A round under way ends; a marker run afterwards proves that no other began.
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_TRUE(waitUntil(ProcessLevels::hasNoChild));
    const auto asked = window.orbStack.calls(FakeOrbStack::statusCall);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_EQ(window.orbStack.calls(FakeOrbStack::statusCall), asked + 2);
    content.show();
    EXPECT_TRUE(waitUntil([&] { return window.orbStack.calls(FakeOrbStack::statusCall) >= asked + 4; }));
}

TEST(ContentView, MayBeDestroyedInTheMiddleOfARound)
{
    TestWindow window;
    window.orbStack.tools().addTool(u"orb"_s, window.orbStack.tools().waitForFile(u"go"_s) + u"echo Running"_s);
    window.show(1ms);
    ASSERT_TRUE(waitUntil([&] { return window.orbStack.calls(FakeOrbStack::statusCall) == 1; }));
    window.close();
    window.orbStack.tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::running; }));
    EXPECT_TRUE(waitUntil([&] { return containerLists(window) == 1; }));
}

TEST(ContentView, ReadsFromTopToBottomWithTheTabKey)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    window.run.setScript(u"true"_s);
    ByName::find<QLineEdit>(content, u"Packages, e.g. git curl"_s)->setText(u"git"_s);
    ByName::find<QAbstractButton>(content, u"Stop"_s, u"Stop OrbStack"_s)->setFocus();
    QStringList order;
    for (int step = 0; step < 14; ++step) {
        order.append(ByName::nameOf(content.focusWidget()));
        const bool isScript = order.last() == u"Script"_s;
        QTest::keyClick(content.focusWidget(), Qt::Key_Tab, isScript ? Qt::ControlModifier : Qt::NoModifier);
    }
    EXPECT_EQ(order,
              QStringList({u"Stop"_s, u"Run"_s, u"Script"_s, u"Machine"_s, u"Disposable mode"_s, u"Share a folder…"_s,
                           u"10 minute time limit"_s, u"Packages, e.g. git curl"_s, u"Install packages"_s, u"Run"_s,
                           u"Copy output"_s, u"Clear"_s, u"Output"_s, u"Stop"_s}));
}

TEST(ContentView, AsksOnceHoweverQuicklyItIsHiddenAndShownAgain)
{
    TestWindow window;
    {
        ContentView gone(window.controllers());
        gone.show();
    }
    ContentView content(window.controllers());
    for (int round = 0; round < 5; ++round) {
        content.show();
        content.hide();
    }
    content.show();
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_EQ(window.orbStack.calls(FakeOrbStack::statusCall), 2);
}
