#include "Screens/ContentView/Screens/ContainersViewTest.h"
#include "Screens/ThreadTimer.h"

#include <QElapsedTimer>
#include <QTimer>

TEST_F(ContainersViewTest, ShowsTheLogInASheet)
{
    write(u"log"_s, "<b>one</b>\ntwo\n");
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->size(), QSize(640, 420));
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(shows(*sheet(), u"Logs: web"_s));
    auto *log = find<LogBox>(*sheet(), u"Container log"_s);
    ASSERT_NE(log, nullptr);
    EXPECT_EQ(log->shownText(), u"<b>one</b>\ntwo"_s);
    EXPECT_EQ(log->font().pixelSize(), 11);
    log->selectAll();
    EXPECT_EQ(log->textCursor().selectedText(), u"<b>one</b>\u2029two"_s);
    press(*sheet(), u"Close"_s);
    EXPECT_FALSE(window.containers.showLogs());
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    EXPECT_EQ(calls(u"<logs><--tail><300><web>"_s), 1);
}

TEST_F(ContainersViewTest, ClosesTheSheetByAnyMeans)
{
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_FALSE(window.containers.showLogs());
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    sheet()->close();
    EXPECT_FALSE(window.containers.showLogs());
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    window.containers.setShowLogs(false);
    EXPECT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
}

TEST_F(ContainersViewTest, ShowsALogThatArrivedWhileAnotherTabWasOpen)
{
    show();
    press(view(), u"Logs"_s, u"Logs db"_s);
    window.content().setTab(AppTab::history);
    ASSERT_TRUE(waitUntil([this] { return window.containers.showLogs(); }));
    EXPECT_EQ(sheet(), nullptr);
    window.content().setTab(AppTab::containers);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_TRUE(shows(*sheet(), u"Logs: db"_s));
    // It is a sheet of this window, which takes nothing else meanwhile.
    EXPECT_EQ(sheet()->windowHandle()->transientParent(), window.content().windowHandle());
    EXPECT_TRUE(sheet()->isModal());
}

TEST_F(ContainersViewTest, ClosesTheSheetForGoodWhenItsScreenGoes)
{
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    window.content().setTab(AppTab::machines);
    EXPECT_FALSE(window.containers.showLogs());
    window.content().setTab(AppTab::containers);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<ContainersView *>().size() == 1; }));
    EXPECT_EQ(sheet(), nullptr);
    press(view(), u"Logs"_s, u"Logs db"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    window.close();
    EXPECT_FALSE(window.containers.showLogs());
}

TEST_F(ContainersViewTest, KeepsTheSheetWhenItsContainerDisappears)
{
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    const ContainerLogSheet *before = sheet();
    setContainers(lineOf(u"db"_s, u"exited"_s));
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    ASSERT_EQ(list().count(), 1);
    ASSERT_EQ(sheet(), before);
    EXPECT_TRUE(sheet()->isVisible());
    EXPECT_EQ(find<LogBox>(*sheet(), u"Container log"_s)->shownText(), u"a line"_s);
    press(*sheet(), u"Close"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    EXPECT_EQ(ByName::descriptionOf(window.content().window()->focusWidget()), u"Logs db"_s);
}

TEST_F(ContainersViewTest, ShowsTheLaterOfTwoLogsInTheSameSheet)
{
    // The first reading ends after the second.
    tools().addTool(u"docker"_s, u"cd '%1' || exit 1\ncase \"$1\" in\nps) cat containers ;;\n"
                                 "logs) [ \"$4\" = web ] && while [ -e hold ]; do sleep 0.02; done\n"
                                 "echo \"log of $4\" ;;\nesac"_s.arg(tools().path(u"."_s)));
    show();
    hold();
    press(view(), u"Logs"_s, u"Logs web"_s);
    press(view(), u"Logs"_s, u"Logs db"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    const ContainerLogSheet *only = sheet();
    EXPECT_TRUE(shows(*sheet(), u"Logs: db"_s));
    release();
    ASSERT_TRUE(waitUntil([this] { return shows(*sheet(), u"Logs: web"_s); }));
    const auto *log = find<LogBox>(*sheet(), u"Container log"_s);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"log of web"_s; }));
    EXPECT_EQ(window.content().findChildren<ContainerLogSheet *>(), QList<ContainerLogSheet *>{sheet()});
    EXPECT_EQ(sheet(), only);
}

TEST_F(ContainersViewTest, ShowsALogOfThreeHundredLinesOfAHundredKilobytes)
{
    write(u"log"_s, (QByteArray(qsizetype{100} * 1024, 'x') + '\n').repeated(300));
    show();
    QElapsedTimer timer;
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this, &timer] {
        if (window.containers.showLogs())
            return true;
        timer.start();
        return false;
    }));
    ASSERT_NE(sheet(), nullptr);
    sheet()->grab();
    RecordProperty("openingMilliseconds", static_cast<int>(timer.elapsed()));
    EXPECT_LT(timer.elapsed(), 20000); // far above what it takes, so that a sanitizer passes
    EXPECT_EQ(sheet()->size(), QSize(640, 420));
}

TEST_F(ContainersViewTest, AnswersWhileALogOfLongLinesComes)
{
    write(u"log"_s, (QByteArray(qsizetype{1024} * 1024, 'x') + '\n').repeated(50));
    show();
    ThreadTimer computing;
    QElapsedTimer turn; // in which the thread may wait for another, too
    qint64 longestComputing = 0;
    qint64 longestTurn = 0;
    QTimer heartbeat;
    heartbeat.callOnTimeout([&] {
        longestComputing = std::max(longestComputing, computing.restart());
        longestTurn = std::max(longestTurn, turn.restart());
    });
    computing.start();
    turn.start();
    heartbeat.start(1);
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    sheet()->grab();
    QTest::qWait(50);
    RecordProperty("longestTurnMilliseconds", static_cast<int>(longestTurn));
    // Both far above what it takes, so that a sanitizer passes, and a computer that is halted for a while.
    EXPECT_LT(longestComputing, 1000);
    EXPECT_LT(longestTurn, 20000);
}
