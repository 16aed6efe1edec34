#include "ContentView/Screens/Run/RunView.h"
#include "ContentView/SetupHeader.h"
#include "Look/Colours.h"
#include "Screens/Look/DarkPalette.h"
#include "Screens/TestWindow.h"

#include <QImage>
#include <QLayout>
#include <QScrollArea>
#include <QTabBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

TEST(ContentView, CannotBecomeSmallerThan820By640)
{
    TestWindow window;
    ContentView &content = window.show();
    content.resize(100, 100);
    EXPECT_EQ(content.size(), QSize(820, 640));
    content.resize(1600, 1000);
    EXPECT_EQ(content.size(), QSize(1600, 1000));
}

TEST(ContentView, PadsHeaderTabsAndScreen)
{
    TestWindow window;
    ContentView &content = window.show();
    const auto *header = content.findChild<SetupHeader *>();
    EXPECT_EQ(header->layout()->contentsMargins(), QMargins(12, 12, 12, 12));
    EXPECT_EQ(header->y(), 0);
    const int divider = 1;
    const QRect selector = content.findChild<QTabBar *>()->geometry();
    EXPECT_EQ(selector.y(), header->height() + divider + 8);
    EXPECT_LE(std::abs(selector.center().x() - content.rect().center().x()), 1);
    const QRect screen = content.findChild<QScrollArea *>()->geometry();
    EXPECT_EQ(screen.y(), selector.bottom() + 1);
    EXPECT_EQ(screen.width(), content.width());
    EXPECT_EQ(screen.bottom(), content.rect().bottom());
    for (const AppTab tab : allAppTabs) {
        content.setTab(tab);
        const QWidget *shown = content.findChild<QScrollArea *>()->widget();
        // These two have the toolkit's own padding, beside the window's.
        QMargins padding(12, 12, 12, 12);
        if (tab == AppTab::machines || tab == AppTab::history) {
            QWidget *within = new QWidget(content.findChild<QScrollArea *>()->viewport());
            padding += (new QVBoxLayout(within))->contentsMargins();
            EXPECT_GT(padding.top(), 12);
        }
        EXPECT_EQ(shown->layout()->contentsMargins(), padding);
    }
}

TEST(ContentView, PartsTheHeaderFromTheTabsByALineThatIsSeenInLightAndDark)
{
    TestWindow window;
    ContentView &content = window.show();
    const int header = content.findChild<SetupHeader *>()->height();
    for (const QPalette &palette : {content.palette(), darkPalette()}) {
        content.setPalette(palette);
        const QImage picture = content.grab().toImage();
        const QRgb ground = palette.color(QPalette::Window).rgb();
        const QRgb line = Colours::line(palette, 0.4F).rgb();
        EXPECT_GT(Colours::contrast(line, ground), 1.3);
        for (const int x : {0, content.width() / 2, content.width() - 1}) {
            EXPECT_EQ(picture.pixel(x, header - 1), ground);
            EXPECT_EQ(picture.pixel(x, header), line);
            EXPECT_EQ(picture.pixel(x, header + 1), ground) << "it is one point high";
        }
    }
}

TEST(ContentView, FitsItsSmallestSizeByScrollingTheScreen)
{
    TestWindow window;
    TestTools &tools = window.orbStack.tools();
    tools.addTool(u"orb"_s, u"[ $1 = start ] && seq 500 && exec sleep 600; echo Stopped"_s);
    ContentView &content = window.show();
    content.resize(820, 640);
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    ByName::press(content, u"Start"_s, u"Start OrbStack"_s);
    ASSERT_TRUE(waitUntil([&] { return ByName::shows(content, u"Setup log"_s); }));
    EXPECT_EQ(content.size(), QSize(820, 640));
    EXPECT_LE(content.findChild<RunView *>()->width(), 820);
    EXPECT_GE(ByName::find<QWidget>(content, u"Output"_s)->height(), 1);
    // Nothing overlaps: the header and the screen share the height.
    EXPECT_GE(content.findChild<QScrollArea *>()->y(),
              ByName::find<QWidget>(content, u"Setup log"_s)->geometry().bottom());
}

TEST(ContentView, SetsItsTabsInTheMiddleAndItsScreenFromEdgeToEdge)
{
    TestWindow window;
    ContentView &content = window.show();
    const auto *selector = content.findChild<QTabBar *>();
    const auto *screen = content.findChild<QScrollArea *>();
    for (const int width : {1000, 1001}) {
        content.resize(width, 800);
        QCoreApplication::processEvents();
        EXPECT_EQ(selector->x(), (width - selector->width()) / 2);
        EXPECT_EQ(screen->viewport()->geometry(), screen->rect()) << "without a frame";
    }
    EXPECT_EQ(screen->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}
