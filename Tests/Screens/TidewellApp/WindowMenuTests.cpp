#include "Screens/TestWindow.h"
#include "Screens/TidewellApp/MenuActions.h"
#include "TidewellApp/MainWindow.h"

using namespace Qt::StringLiterals;
using MenuActions::action;

TEST(Menus, MinimizeZoomAndBringForwardTheWindow)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    action(window, u"Window"_s, u"Zoom"_s)->trigger();
    EXPECT_TRUE(window.isMaximized());
    action(window, u"Window"_s, u"Zoom"_s)->trigger();
    EXPECT_FALSE(window.isMaximized());
    action(window, u"Window"_s, u"Minimize"_s)->trigger();
    EXPECT_TRUE(window.isMinimized());
    window.hide();
    window.setWindowState(Qt::WindowNoState);
    action(window, u"Window"_s, u"Tidewell"_s)->trigger();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
}

TEST(Menus, DoNotMinimizeOrZoomAHiddenWindow)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    const QAction *minimize = action(window, u"Window"_s, u"Minimize"_s);
    const QAction *zoom = action(window, u"Window"_s, u"Zoom"_s);
    auto *menu = qobject_cast<QMenu *>(minimize->associatedObjects().first());
    ASSERT_NE(menu, nullptr);
    for (const bool isShown : {true, false, true}) {
        window.setVisible(isShown);
        Q_EMIT menu->aboutToShow();
        EXPECT_EQ(minimize->isEnabled(), isShown);
        EXPECT_EQ(zoom->isEnabled(), isShown);
    }
}
