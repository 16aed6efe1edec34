#include "TidewellApp/WindowPlace.h"

#include "Screens/TestWindow.h"
#include "TidewellApp/MainWindow.h"
#include "TidewellApp/OutputWindow.h"

#include <QScreen>
#include <QSettings>
#include <QStyle>

using namespace Qt::StringLiterals;

TEST(WindowPlace, IsOfTheUsualSizeUntilAnotherIsRemembered)
{
    const TestWindow tools; // which has preferences of its own
    const auto key = u"place"_s;
    {
        QWidget window;
        WindowPlace::restore(window, key, {300, 200});
        EXPECT_EQ(window.size(), QSize(300, 200));
        window.resize(350, 250);
        WindowPlace::remember(window, key);
    }
    QWidget window;
    WindowPlace::restore(window, key, {300, 200});
    EXPECT_EQ(window.size(), QSize(350, 250));
    QWidget another;
    WindowPlace::restore(another, u"anotherPlace"_s, {300, 200});
    EXPECT_EQ(another.size(), QSize(300, 200));
}

TEST(WindowPlace, LeavesTheTitleBarRoomOnASmallScreen)
{
    const TestWindow tools;
    QWidget window;
    WindowPlace::restore(window, u"place"_s, {10'000, 10'000});
    const QSize available = window.screen()->availableSize();
    EXPECT_EQ(window.width(), available.width());
    const QStyle &style = *window.style();
    const int frame = style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    EXPECT_EQ(window.height(), available.height() - style.pixelMetric(QStyle::PM_TitleBarHeight) - frame - frame);
    EXPECT_LT(window.height(), available.height());
}

TEST(WindowPlace, SuitsWhatTheWindowsHoldWhenTheyAreFirstShown)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    const QSize available = window.screen()->availableSize();
    EXPECT_EQ(window.width(), std::min(960, available.width()));
    if (available.height() >= 800) {
        EXPECT_NEAR(window.height(), 760, 20);
    }
    const OutputWindow output(tools.run, {});
    EXPECT_EQ(output.width(), std::min(900, available.width()));
    EXPECT_EQ(output.minimumSize(), QSize(560, 300));
    if (available.height() >= 700) {
        EXPECT_EQ(output.height(), 640);
    }
}

TEST(WindowPlace, IsRememberedUnderTheNamesThatItAlwaysHad)
{
    TestWindow tools;
    {
        const MainWindow window(tools.controllers());
        const OutputWindow output(tools.run, {});
    }
    for (const QString &key : {u"windowPlace"_s, u"outputWindowPlace"_s})
        EXPECT_TRUE(QSettings().contains(key)) << key.toStdString();
}
