#include "ContentView/TabSelector.h"

#include "Look/Colours.h"
#include "Look/RoundedFrame.h"
#include "Screens/Look/DarkPalette.h"
#include "Support/Waiting.h"

#include <QAccessible>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

class TabSelectorTest : public testing::Test
{
protected:
    TabSelectorTest()
    {
        for (const QString &label : {u"Run"_s, u"Machines"_s, u"History"_s})
            tabs.addTab(label);
        tabs.resize(tabs.sizeHint());
    }

    /// The colour of a segment, so many points from its left edge.
    QColor colourOf(int index, int fromLeft = 8)
    {
        const QRect segment = tabs.tabRect(index);
        return tabs.grab().toImage().pixelColor(segment.left() + fromLeft, segment.center().y());
    }

    TabSelector tabs;
};

} // namespace

TEST_F(TabSelectorTest, RaisesTheSelectedSegmentFromItsStripInLightAndDark)
{
    for (const QPalette &palette : {tabs.palette(), darkPalette()}) {
        tabs.setPalette(palette);
        for (int selected = 0; selected < tabs.count(); ++selected) {
            tabs.setCurrentIndex(selected);
            const QColor strip = colourOf((selected + 1) % 3);
            EXPECT_EQ(colourOf((selected + 2) % 3), strip);
            EXPECT_NE(strip, palette.color(QPalette::Window)) << "the strip itself is seen";
            EXPECT_GT(colourOf(selected).lightnessF(), strip.lightnessF() + 0.05F);
        }
    }
}

TEST_F(TabSelectorTest, WritesEachLabelInTheMiddleOfItsSegment)
{
    const QImage picture = tabs.grab().toImage();
    for (int index = 0; index < tabs.count(); ++index) {
        const QRect segment = tabs.tabRect(index);
        const QRgb ground = picture.pixel(segment.left() + 8, segment.center().y());
        QRect inked;
        for (int y = segment.top() + 4; y <= segment.bottom() - 4; ++y) {
            for (int x = segment.left() + 8; x <= segment.right() - 8; ++x) {
                if (picture.pixel(x, y) != ground)
                    inked |= QRect(x, y, 1, 1);
            }
        }
        EXPECT_NEAR(inked.width(), tabs.fontMetrics().horizontalAdvance(tabs.tabText(index)), 4);
        EXPECT_NEAR(inked.center().x(), segment.center().x(), 2);
    }
}

TEST_F(TabSelectorTest, RoundsTheEndsOfItsStrip)
{
    const QImage picture = tabs.grab().toImage();
    const QColor window = tabs.palette().color(QPalette::Window);
    EXPECT_EQ(picture.pixelColor(0, 0), window);
    EXPECT_EQ(picture.pixelColor(picture.width() - 1, picture.height() - 1), window);
    EXPECT_NE(picture.pixelColor(picture.width() - 1, picture.height() / 2), window);
}

TEST_F(TabSelectorTest, ShowsTheKeyboardByARingOfTwoPointsWithinTheSelectedSegment)
{
    QPalette palette = tabs.palette();
    palette.setColor(QPalette::Highlight, Qt::magenta);
    tabs.setPalette(palette);
    tabs.show();
    tabs.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&tabs));
    tabs.setFocus();
    const auto isRing = [this](int fromLeft) { return colourOf(0, fromLeft) == QColor(Qt::magenta); };
    EXPECT_FALSE(isRing(0));
    EXPECT_TRUE(isRing(1));
    EXPECT_TRUE(isRing(2));
    EXPECT_FALSE(isRing(3));
    EXPECT_NE(colourOf(1, 1), QColor(Qt::magenta));
}

TEST_F(TabSelectorTest, GivesEachLabelRoomAndTakesNoMore)
{
    int width = 0;
    for (int index = 0; index < tabs.count(); ++index) {
        const QSize segment = tabs.tabRect(index).size();
        EXPECT_EQ(segment.width(), tabs.fontMetrics().horizontalAdvance(tabs.tabText(index)) + 36);
        EXPECT_EQ(segment.height(), std::max(26, tabs.fontMetrics().height() + 8));
        width += segment.width();
    }
    EXPECT_EQ(tabs.width(), width);
    EXPECT_EQ(tabs.sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
}

TEST_F(TabSelectorTest, RoundsItsStripBySevenPointsAndTheSelectedSegmentWithinBySix)
{
    TabSelector blank;
    for (int index = 0; index < 2; ++index)
        blank.addTab(QString());
    blank.resize(blank.sizeHint());
    for (const QPalette &palette : {blank.palette(), darkPalette()}) {
        blank.setPalette(palette);
        const bool isDark = Colours::isDark(palette);
        const QColor strip = Colours::mixed(isDark ? Qt::white : Qt::black, palette.color(QPalette::Window), 0.08F);
        QImage expected(blank.size(), QImage::Format_RGB32);
        expected.fill(palette.color(QPalette::Window));
        QPainter painter(&expected);
        RoundedFrame::draw(painter, blank.rect(), 7, {}, strip);
        RoundedFrame::draw(painter, QRectF(blank.tabRect(0)).adjusted(1, 1, -1, -1), 6,
                           Colours::mixed(Qt::black, strip, 0.14F),
                           Colours::mixed(Qt::white, strip, isDark ? 0.22F : 1.0F));
        painter.end();
        EXPECT_EQ(blank.grab().toImage().convertToFormat(QImage::Format_RGB32), expected);
    }
}

TEST_F(TabSelectorTest, WritesItsLabelsInTheColourOfTheWindowsText)
{
    tabs.setPalette(darkPalette());
    const QImage picture = tabs.grab().toImage();
    double brightest = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = tabs.tabRect(1).left(); x <= tabs.tabRect(1).right(); ++x)
            brightest = std::max<double>(brightest, picture.pixelColor(x, y).lightnessF());
    }
    EXPECT_GT(brightest, 0.7);
}

TEST_F(TabSelectorTest, IsAListOfItsTabsAndOfNothingElse)
{
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&tabs);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->childCount(), 3);
    EXPECT_EQ(list->indexOfChild(nullptr), -1);
    EXPECT_EQ(list->indexOfChild(list), -1);
    EXPECT_EQ(list->child(3), nullptr);
    QAccessibleInterface *tab = list->child(1);
    ASSERT_NE(tab, nullptr);
    EXPECT_EQ(tab->text(QAccessible::Name), u"Machines"_s);
    EXPECT_EQ(tab->text(QAccessible::Description), QString());
    EXPECT_TRUE(tab->state().selectable);
    EXPECT_EQ(tab->actionInterface()->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});
    tab->actionInterface()->doAction(u"another"_s);
    EXPECT_EQ(tabs.currentIndex(), 0);
    tab->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(tabs.currentIndex(), 1);
}
