#include "Screens/KeyboardWalk.h"

#include "Look/NoteText.h"
#include "Screens/ContentView/Screens/ContainersViewTest.h"
#include "Screens/ContentView/Screens/HistoryViewTest.h"
#include "Screens/ContentView/Screens/Run/RunViewSteps.h"

using KeyboardWalk::expectGoodFor;

TEST(KeyboardWalk, VisitsTheRunScreenWithOrbStackStopped)
{
    TestWindow window;
    ContentView &content = window.show();
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    expectGoodFor(content);
}

TEST(KeyboardWalk, VisitsTheNoteAndTheLogOfOrbStackInTheirPlaces)
{
    TestWindow window;
    window.orbStack.tools().addTool(u"orb"_s, u"[ \"$1\" = start ] && { seq 50; exec sleep 600; }; echo Stopped"_s);
    ContentView &content = window.show();
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    press(content, u"Start"_s, u"Start OrbStack"_s);
    EXPECT_TRUE(waitUntil([&] { return shows(content, u"Setup log"_s); }));
    auto *note = content.findChild<NoteText *>();
    auto *log = find<QWidget>(content, u"Setup log"_s);
    ASSERT_TRUE(note != nullptr && note->isVisible());
    note->setText(u"a note that scrolls\n"_s.repeated(20));
    EXPECT_TRUE(waitUntil([&] { return log->y() > note->geometry().bottom(); }));
    expectGoodFor(content);
    EXPECT_LT(note->parentWidget()->children().indexOf(note), log->parentWidget()->children().indexOf(log));
}

TEST(KeyboardWalk, VisitsTheRunScreenWithEverythingFilledIn)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    expectGoodFor(content);
    window.run.setScript(u"exec sleep 1000"_s);
    find<QLineEdit>(content, packagesField)->setText(u"git"_s);
    shareFolder(content, window.orbStack.tools().directory(0));
    EXPECT_TRUE(isOffered(content, u"Install packages"_s));
    expectGoodFor(content);
    press(content, u"Run"_s);
    EXPECT_TRUE(isOffered(content, u"Stop"_s, u"Stop the run"_s));
    expectGoodFor(content);
}

TEST(KeyboardWalk, VisitsTheRunScreenInDisposableModeAndItsQuestion)
{
    TestWindow window;
    ContentView &content = window.showRunning({});
    press(content, u"Disposable mode"_s);
    ASSERT_NE(alert(), nullptr);
    expectGoodFor(*alert());
    press(*alert(), u"Turn on"_s);
    EXPECT_TRUE(waitUntil([&] { return find<QComboBox>(content, u"Distribution"_s) != nullptr; }));
    expectGoodFor(content);
}

TEST(KeyboardWalk, VisitsTheMachinesAndTheQuestionBeforeDeletion)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s, u"other"_s});
    content.setTab(AppTab::machines);
    find<QLineEdit>(content, u"Name (e.g. scratch)"_s)->setText(u"Box"_s);
    press(content, u"Create"_s);
    EXPECT_TRUE(waitUntil([&] { return shows(content, u"Machine log"_s); }));
    expectGoodFor(content);
    press(content, u"Delete"_s, u"Delete other"_s);
    ASSERT_NE(alert(), nullptr);
    expectGoodFor(*alert());
    QTest::keyClick(alert(), Qt::Key_Escape);
}

TEST(KeyboardWalk, VisitsTheHistory)
{
    TestWindow window;
    ContentView &content = window.show();
    content.setTab(AppTab::history);
    expectGoodFor(content);
    window.history.add(entryOf(u"uptime"_s));
    window.history.add(entryOf(u"hostname"_s));
    EXPECT_TRUE(isOffered(content, u"Load"_s, u"Load uptime"_s));
    expectGoodFor(content);
}

TEST_F(ContainersViewTest, IsWalkedThroughByTabWithItsLogSheet)
{
    show();
    image().setText(u"nginx"_s);
    expectGoodFor(window.content());
    press(window.content(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr && sheet()->isVisible(); }));
    ASSERT_TRUE(QTest::qWaitForWindowActive(sheet()));
    expectGoodFor(*sheet());
}
