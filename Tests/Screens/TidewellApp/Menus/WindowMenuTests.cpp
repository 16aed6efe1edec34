#include "Look/Alert.h"
#include "Screens/EventCount.h"
#include "Screens/TestWindow.h"
#include "Screens/TidewellApp/Menus/MenuActions.h"
#include "TidewellApp/HelpWindow.h"
#include "TidewellApp/MainWindow.h"

#include <QDialog>
#include <QTextBrowser>

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
    const EventCount raised(window, QEvent::ZOrderChange);
    action(window, u"Window"_s, u"Tidewell"_s)->trigger();
    EXPECT_GT(raised.count(), 0);
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
}

TEST(Menus, MinimizeAndZoomWhateverWindowIsInFront)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    HelpWindow::show(window);
    auto *help = window.findChild<QTextBrowser *>();
    ASSERT_NE(help, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(help));
    action(window, u"Window"_s, u"Zoom"_s)->trigger();
    EXPECT_TRUE(help->isMaximized());
    EXPECT_FALSE(window.isMaximized());
    action(window, u"Window"_s, u"Minimize"_s)->trigger();
    EXPECT_TRUE(help->isMinimized());
    EXPECT_FALSE(window.isMinimized());
}

TEST(Menus, MinimizeTheWindowThatASheetBelongsTo)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    Alert::tell(&window, u"Told."_s, u"And why."_s);
    auto *sheet = window.findChild<QDialog *>();
    ASSERT_NE(sheet, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(sheet));
    action(window, u"Window"_s, u"Minimize"_s)->trigger();
    EXPECT_FALSE(sheet->isMinimized());
    EXPECT_TRUE(window.isMinimized());
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
        Q_EMIT menu->aboutToHide();
    }
}

TEST(Menus, AnswerToTheirShortcutsByWhatIsShownThenNotWhenTheMenuWasLastOpen)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    QAction *minimize = action(window, u"Window"_s, u"Minimize"_s);
    QAction *zoom = action(window, u"Window"_s, u"Zoom"_s);
    auto *menu = qobject_cast<QMenu *>(minimize->associatedObjects().first());
    ASSERT_NE(menu, nullptr);
    window.hide();
    minimize->trigger();
    zoom->trigger();
    EXPECT_FALSE(window.isMinimized());
    EXPECT_FALSE(window.isMaximized());
    EXPECT_FALSE(window.isVisible());
    Q_EMIT menu->aboutToShow();
    Q_EMIT menu->aboutToHide();
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    zoom->trigger();
    EXPECT_TRUE(window.isMaximized());
    minimize->trigger();
    EXPECT_TRUE(window.isMinimized());
}
