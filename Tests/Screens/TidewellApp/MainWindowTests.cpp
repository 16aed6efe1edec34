#include "Screens/EventCount.h"
#include "Screens/TestWindow.h"
#include "TidewellApp/MainWindow.h"

#include <QScreen>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

TEST(MainWindow, ComesBackAtTheSizeItWasLeftWith)
{
    TestWindow tools;
    {
        MainWindow window(tools.controllers());
        window.resize(900, 700);
    }
    const MainWindow window(tools.controllers());
    EXPECT_EQ(window.size(), QSize(900, 700));
}

TEST(MainWindow, ComesBackOntoAScreenThatIsThere)
{
    TestWindow tools;
    {
        MainWindow window(tools.controllers());
        window.show();
        window.move(30000, 30000);
    }
    MainWindow window(tools.controllers());
    window.show();
    EXPECT_TRUE(window.screen()->geometry().intersects(window.geometry()));
}

TEST(MainWindow, IsNoLargerThanItsScreenWhenFirstShown)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    const QSize available = window.screen()->availableSize();
    EXPECT_LE(window.width(), std::max(available.width(), window.minimumSizeHint().width()));
    EXPECT_LE(window.height(), std::max(available.height(), window.minimumSizeHint().height()));
}

TEST(MainWindow, AsksForAttentionOnceWhenARunEndsWhileTheUserIsElsewhere)
{
    TestWindow tools;
    tools.orbStack.setRunning(true);
    MainWindow window(tools.controllers());
    QSignalSpy attention(&window, &MainWindow::attentionWanted);
    RunJob job;
    job.script = u"echo done"_s;
    job.distro = u"debian"_s;
    job.disposable = true;
    ASSERT_NE(QGuiApplication::applicationState(), Qt::ApplicationActive);
    tools.run.start(job, &tools.history);
    EXPECT_TRUE(waitUntil([&] { return !tools.run.isRunning(); }));
    EXPECT_EQ(attention.count(), 1);

    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    tools.run.start(job, &tools.history);
    EXPECT_TRUE(waitUntil([&] { return !tools.run.isRunning(); }));
    EXPECT_EQ(attention.count(), 1) << "who looks at the window needs no sign";
}

TEST(MainWindow, ComesForwardFromWhereverItIs)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.comeForward();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.showMinimized();
    window.comeForward();
    EXPECT_FALSE(window.isMinimized());
    window.hide();
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    const EventCount raised(window, QEvent::ZOrderChange);
    window.comeForward();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_GT(raised.count(), 0);
}
