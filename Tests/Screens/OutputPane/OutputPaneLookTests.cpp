#include "OutputPaneTest.h"

#include "Look/Colours.h"
#include "Look/Typography.h"

#include <QFontMetrics>

using namespace Qt::StringLiterals;

TEST_F(OutputPaneTest, EndsWithAMarkerOfOnePointAndItsEightPointsBelowTheLastLine)
{
    run.append(u"line\n"_s.repeated(100) + u"the last line"_s, OutputKind::out);
    ASSERT_TRUE(showsEnd());
    const QRect last = pane.characterRect(run.transcript().end() - 1);
    const int below = pane.height() - 1 - pane.viewport()->mapTo(&pane, last.bottomLeft()).y();
    EXPECT_EQ(below, 8 + 1);
}

TEST_F(OutputPaneTest, HasEightPointsAroundWhatItScrolls)
{
    run.append(u"line\n"_s.repeated(99) + u"the last line"_s, OutputKind::out);
    ASSERT_TRUE(waitUntil([this] { return pane.verticalScrollBar()->maximum() > 0; }));
    const int rowHeight = pane.characterRect(run.transcript().end() - 1).height();
    const int around = 8 + 8 + 1 - 2 * pane.viewport()->y();
    EXPECT_EQ(pane.verticalScrollBar()->maximum(), 100 * rowHeight + around - pane.viewport()->height());
}

TEST_F(OutputPaneTest, SaysWhereOutputAppearsWhereItsFirstLineWillBe)
{
    const QImage picture = pane.grab().toImage();
    const auto inked = [&](const QRect &area) {
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                if (picture.pixelColor(x, y) != picture.pixelColor(320, 200))
                    return true;
            }
        }
        return false;
    };
    const QFontMetrics metrics(Typography::monospaced(12));
    const int width = metrics.horizontalAdvance(u"Output appears here."_s);
    EXPECT_TRUE(inked({8, 8, width, metrics.height()}));
    EXPECT_FALSE(inked({4, 8, 4, metrics.height()})) << "left of it";
    EXPECT_FALSE(inked({8 + width + 1, 8, 100, metrics.height()})) << "right of it";
    EXPECT_FALSE(inked({8, 8 + metrics.height() + 2, width, 40})) << "below it";
}

TEST_F(OutputPaneTest, IsNeverLowerThanAHundredAndSixtyPoints)
{
    EXPECT_EQ(pane.minimumHeight(), 160);
    EXPECT_EQ(pane.sizeHint(), QSize(400, 160));
    EXPECT_EQ(pane.viewport()->cursor().shape(), Qt::IBeamCursor);
    EXPECT_EQ(pane.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

TEST_F(OutputPaneTest, ShowsItsCaretWhileItHasTheFocusAndNothingIsSelected)
{
    run.append(u"      "_s, OutputKind::out);
    ASSERT_TRUE(showsEnd());
    const auto showsCaret = [this] {
        const QRect rect = pane.characterRect(3);
        return draws(Colours::primary(palette), {rect.left() - 1, rect.top(), 3, rect.height()});
    };
    pane.setFocus();
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, before(3));
    EXPECT_TRUE(showsCaret());
    pane.clearFocus();
    EXPECT_FALSE(showsCaret());
    pane.setFocus();
    EXPECT_TRUE(showsCaret());
    pane.select(0, 3);
    EXPECT_FALSE(showsCaret());
}

TEST_F(OutputPaneTest, NeverWidensForWhatItShows)
{
    const int least = pane.minimumSizeHint().width();
    run.append(QString(1'000'000, u'W'), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    EXPECT_EQ(pane.minimumSizeHint().width(), least);
    EXPECT_EQ(pane.width(), 640);
    EXPECT_LE(pane.horizontalScrollBar()->maximum(), 0);
}
