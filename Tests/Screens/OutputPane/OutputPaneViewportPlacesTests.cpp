// Where exactly a view stands, over rows of one line each.

#include "OutputPane/OutputPaneViewport.h"

#include "Unit/Transcript/ViewedText.h"

#include <gtest/gtest.h>

namespace
{

class OutputPaneViewportPlacesTest : public testing::Test
{
protected:
    static constexpr int rowHeight = 15;
    static constexpr int height = 300; // of twenty rows
    static constexpr int padding = OutputPaneViewport::padding;

    OutputPaneViewportPlacesTest()
    {
        text.append(QByteArray("x\n").repeated(100)); // and a row behind the last line end
        view.setHeights(height, rowHeight);
    }

    OutputPaneViewport::Row row(int number) { return rows.at(qint64{2} * number); }
    int number(const OutputPaneViewport::Row &row) { return static_cast<int>(rows.begin(row) / 2); }

    /// Where the row is in the view; far above when it is not there.
    int yOf(int number)
    {
        for (const OutputPaneViewport::VisibleRow &each : view.visibleRows()) {
            if (each.row == row(number))
                return each.y;
        }
        return -1000;
    }

    /// That row's top edge is that of the view, but for so many pixels.
    void scrollTo(int number, int pixels = 0) { view.scrollTo(padding + number * rowHeight + pixels); }

    ViewedText text;
    OutputPaneRows rows{text};
    OutputPaneViewport view{rows};
};

} // namespace

TEST_F(OutputPaneViewportPlacesTest, IsAsHighAsItsRowsWithAPaddingAroundAndAPixelMore)
{
    EXPECT_EQ(view.mostAbove(), 101 * rowHeight + 2 * padding + 1 - height);
    EXPECT_TRUE(view.isAtEnd()) << "from the first";
    EXPECT_EQ(view.contentAbove(), view.mostAbove());
    for (int place = 0; place < 100; ++place) {
        view.scrollTo(place);
        EXPECT_EQ(view.contentAbove(), place);
        EXPECT_FALSE(view.showsEnd());
    }
    view.scrollTo(view.mostAbove() - 1);
    EXPECT_FALSE(view.isAtEnd());
    EXPECT_FALSE(view.showsEnd());
    EXPECT_EQ(view.contentAbove(), view.mostAbove() - 1);
    view.scrollBy(1);
    EXPECT_TRUE(view.isAtEnd());
    view.hold();
    EXPECT_FALSE(view.isAtEnd());
    EXPECT_TRUE(view.showsEnd()) << "as long as nothing comes";
    text.append("y\n");
    EXPECT_FALSE(view.showsEnd());
    view.scrollTo(view.mostAbove());
    EXPECT_TRUE(view.isAtEnd());
}

TEST_F(OutputPaneViewportPlacesTest, ShowsTheRowsOfWhichAnyPixelIsInView)
{
    scrollTo(10);
    EXPECT_EQ(view.visibleRows().size(), 20U);
    EXPECT_EQ(yOf(10), 0);
    scrollTo(10, 1);
    EXPECT_EQ(view.visibleRows().size(), 21U);
    EXPECT_EQ(yOf(10), -1);
    EXPECT_EQ(yOf(30), 299);
    view.scrollTo(0);
    EXPECT_EQ(yOf(0), padding);
}

TEST_F(OutputPaneViewportPlacesTest, FindsTheRowAtEveryHeightAndTheNearestBeyondItsEdges)
{
    scrollTo(10);
    EXPECT_EQ(number(view.rowAt(-1)), 10);
    EXPECT_EQ(number(view.rowAt(0)), 10);
    EXPECT_EQ(number(view.rowAt(14)), 10);
    EXPECT_EQ(number(view.rowAt(15)), 11);
    EXPECT_EQ(number(view.rowAt(299)), 29);
    EXPECT_EQ(number(view.rowAt(1000)), 29);
    view.scrollToEnd();
    EXPECT_EQ(number(view.rowAt(299)), 100) << "below the last row";
}

TEST_F(OutputPaneViewportPlacesTest, ScrollsNoFurtherThanToShowARowWhole)
{
    scrollTo(10);
    for (const int inView : {10, 20, 29}) {
        view.show(row(inView));
        EXPECT_EQ(yOf(10), 0) << inView;
    }
    view.show(row(30));
    EXPECT_EQ(yOf(30), height - rowHeight);
    view.show(row(5));
    EXPECT_EQ(yOf(5), 0);
    scrollTo(10, 7);
    view.show(row(10));
    EXPECT_EQ(yOf(10), 0) << "it was in view in part";
    scrollTo(10, 7);
    view.show(row(30));
    EXPECT_EQ(yOf(30), height - rowHeight);
    view.show(row(0));
    EXPECT_EQ(yOf(0), padding) << "with the padding above the first";
    EXPECT_EQ(view.contentAbove(), 0);
    view.show(row(100));
    EXPECT_EQ(yOf(100), height - rowHeight - padding - 1) << "and all that is below the last";
    EXPECT_TRUE(view.isAtEnd());
}

TEST_F(OutputPaneViewportPlacesTest, StandsAtItsStartWhereEverythingHasRoom)
{
    ViewedText few;
    few.append("a\nb\n");
    OutputPaneRows fewRows(few);
    OutputPaneViewport all(fewRows);
    all.setHeights(height, rowHeight);
    EXPECT_EQ(all.mostAbove(), 0);
    EXPECT_TRUE(all.showsEnd());
    EXPECT_EQ(all.visibleRows().size(), 3U);
    EXPECT_EQ(all.visibleRows().front().y, padding);
    all.scrollBy(100);
    all.scrollBy(-100);
    EXPECT_EQ(all.visibleRows().front().y, padding);
    EXPECT_TRUE(all.showsEnd());
}
