#include "Screens/TestWindow.h"
#include "TidewellApp/MainWindow.h"

#include <QIcon>
#include <QImage>

#ifdef Q_OS_MACOS

TEST(WindowIcon, IsLeftToTheBundle)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    EXPECT_TRUE(window.windowIcon().isNull());
}

#else

TEST(WindowIcon, ComesInTheSizesOfATitleBarATaskBarAndASwitcher)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    const QIcon icon = window.windowIcon();
    EXPECT_EQ(icon.availableSizes(), (QList<QSize>{{16, 16}, {32, 32}, {64, 64}}));

    // Clear at the corner, the evening above, the water below.
    const QImage picture = icon.pixmap(64, 64).toImage();
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
    EXPECT_GT(picture.pixelColor(50, 14).blue(), picture.pixelColor(50, 14).red() + 30);
    EXPECT_GT(picture.pixelColor(16, 41).green(), picture.pixelColor(50, 14).green() + 30);
}

#endif
