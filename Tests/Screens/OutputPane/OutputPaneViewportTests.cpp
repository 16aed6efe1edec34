#include "OutputPane/OutputPaneViewport.h"

#include "OutputPane/OutputPaneRow.h"
#include "Text/Utf8.h"
#include "Unit/Transcript/RandomText.h"
#include "Unit/Transcript/ViewedText.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;

namespace
{

using Position = TextStore::Position;

/// A view of a text that grows, loses its front and is wrapped anew, beside the slow and plain way to find its rows.
class OutputPaneViewportTest : public testing::Test
{
protected:
    static constexpr int rowHeight = 15;

    OutputPaneViewportTest() { view.setHeights(height, rowHeight); }

    int below(qint64 bound) { return m_random.below(static_cast<int>(bound)); }

    void append()
    {
        QByteArray added;
        const int kind = below(8);
        if (kind < 4)
            added = (QByteArray(below(200), 'x') + '\n').repeated(1 + below(400));
        else if (kind < 6)
            added = m_random.text(1 + below(3000)).toUtf8();
        else if (kind == 6)
            added = QByteArray(below(300'000), 'y');
        else
            added = QString(below(20'000), u'\u4e2d').toUtf8() + '\n';
        text.append(added);
    }

    void dropFront()
    {
        if (text.isEmpty())
            return;
        const TextStore::BlockNumber number =
            text.blockAt(text.begin() + below(std::min<qint64>(1'000'000, text.end() - text.begin())));
        const QByteArrayView bytes = text.bytes(number);
        qsizetype at = below(bytes.size());
        while (at < bytes.size() && Utf8::isContinuation(bytes[at]))
            ++at;
        text.dropFront(text.block(number).begin() + at);
    }

    /// Where each row begins, found from the start.
    std::vector<Position> allRows() const
    {
        std::vector<Position> starts;
        for (TextStore::BlockNumber number = text.firstBlock(); number < text.endBlock(); ++number) {
            const QByteArrayView bytes = text.bytes(number);
            for (qsizetype at = 0; at < bytes.size(); at = OutputPaneRow::endOf(bytes, at, rows.columns()))
                starts.push_back(text.block(number).begin() + at);
            if (number + 1 == text.endBlock() && bytes.endsWith('\n'))
                starts.push_back(text.end());
        }
        return starts;
    }

    /// Every row is found by its place.
    void expectRows()
    {
        const std::vector<Position> all = allRows();
        if (all.empty())
            return;
        for (int sample = 0; sample < 50; ++sample) {
            const Position start = all[static_cast<std::size_t>(below(static_cast<qint64>(all.size())))];
            const OutputPaneRows::Row row = rows.at(start);
            ASSERT_EQ(rows.begin(row), start);
        }
    }

    /// What is in view follows upon each other and fills the view, with nothing blank beyond its ends.
    void expectView()
    {
        const std::vector<OutputPaneViewport::VisibleRow> visible = view.visibleRows();
        ASSERT_EQ(visible.empty(), rows.isEmpty());
        if (visible.empty())
            return;
        for (std::size_t index = 1; index < visible.size(); ++index) {
            ASSERT_EQ(rows.begin(visible[index].row), rows.end(visible[index - 1].row));
            ASSERT_EQ(visible[index].y, visible[index - 1].y + rowHeight);
        }
        const bool fromStart = visible.front().row == rows.first();
        const bool toEnd = visible.back().row == rows.last();
        const int bottom = visible.back().y + rowHeight;
        constexpr int space = OutputPaneViewport::padding + 1;
        // In a view that is lower than the space below the last row, that row may stand above the view.
        const int aboveView = std::max(0, space + 1 - height);
        ASSERT_GT(visible.front().y, -rowHeight - aboveView);
        ASSERT_LE(visible.front().y, fromStart ? OutputPaneViewport::padding : 0);
        ASSERT_GE(bottom, toEnd ? -aboveView : height);
        const bool isShort = fromStart && visible.front().y == OutputPaneViewport::padding;
        ASSERT_TRUE(isShort || !toEnd || bottom + space >= height) << bottom;
        if (view.isAtEnd()) {
            ASSERT_TRUE(toEnd && (isShort || bottom + space == height)) << bottom;
        }
        ASSERT_GE(view.contentAbove(), 0);
        ASSERT_LE(view.contentAbove(), view.mostAbove());
        const bool isAtStart = fromStart && visible.front().y == OutputPaneViewport::padding;
        ASSERT_EQ(view.contentAbove() == 0, isAtStart);
    }

    /// The text at the view's top edge, and how much of its row is above that.
    std::pair<Position, int> top()
    {
        const OutputPaneViewport::VisibleRow first = view.visibleRows().front();
        return {rows.begin(first.row), first.y};
    }

    ViewedText text{2};
    OutputPaneRows rows{text};
    OutputPaneViewport view{rows};
    int height = 300;

private:
    RandomText m_random{11};
};

} // namespace

TEST_F(OutputPaneViewportTest, ShowsRowsAsTheyAreWhateverHappensToTextAndWidth)
{
    for (int round = 0; round < 400; ++round) {
        switch (below(9)) {
        case 0:
        case 1:
            append();
            break;
        case 2:
            if (below(4) == 0)
                dropFront();
            break;
        case 3:
            rows.setColumns(1 + below(150));
            break;
        case 4:
            view.scrollBy(below(20'000) - 10'000);
            break;
        case 5:
            view.scrollTo(below(view.mostAbove() + 1));
            break;
        case 6:
            height = 1 + below(900);
            view.setHeights(height, rowHeight);
            break;
        case 7:
            view.scrollToEnd();
            break;
        default:
            view.hold();
        }
        expectView();
        if (round % 20 == 0)
            expectRows();
        if (HasFatalFailure())
            FAIL() << "round " << round;
    }
}

TEST_F(OutputPaneViewportTest, KeepsWhatIsReadWhileTextComesAndGoesElsewhere)
{
    for (int filling = 0; filling < 60; ++filling)
        append();
    for (int round = 0; round < 200; ++round) {
        const qint64 length = view.mostAbove();
        view.scrollTo(length / 4 + below(length / 2));
        const auto before = top();
        append();
        ASSERT_EQ(top(), before);
        const int columns = rows.columns();
        rows.setColumns(1 + below(150));
        view.visibleRows();
        rows.setColumns(columns);
        ASSERT_EQ(top(), before);
        view.scrollBy(40);
        view.scrollBy(-40);
        ASSERT_EQ(top(), before);
        if (round % 10 == 0)
            text.dropFront(text.begin() + below((before.first - text.begin()) / 8 + 1));
        if (before.first > text.begin()) {
            ASSERT_EQ(top().second, before.second);
        }
        view.scrollToEnd();
        const auto end = top();
        view.hold();
        append();
        ASSERT_EQ(top(), end);
        view.letGo();
        ASSERT_EQ(top(), end);
    }
}

TEST_F(OutputPaneViewportTest, ReachesEveryPlaceByDraggingAndBothEndsAlsoByStepsAndPages)
{
    for (int round = 0; round < 40; ++round) {
        append();
        rows.setColumns(1 + below(150));
        if (rows.isEmpty())
            continue;
        view.scrollTo(view.mostAbove());
        ASSERT_TRUE(view.isAtEnd());
        view.scrollTo(0);
        ASSERT_EQ(view.contentAbove(), 0);
        ASSERT_EQ(top(), std::pair(text.begin(), static_cast<int>(OutputPaneViewport::padding)));

        // Further down on the bar is further down in the text, and the bar comes to stand where it was dragged.
        auto last = top();
        const qint64 most = view.mostAbove();
        for (int part = 1; part <= 50; ++part) {
            const qint64 dragged = most * part / 50;
            view.scrollTo(dragged);
            ASSERT_TRUE(top().first > last.first || (top().first == last.first && top().second <= last.second));
            ASSERT_NEAR(static_cast<double>(view.contentAbove()), static_cast<double>(dragged), 2 * rowHeight);
            last = top();
        }

        // By pages up and down again; the bar follows and stands at its ends at the ends alone.
        for (const int step : {-height, height}) {
            qint64 before = view.contentAbove();
            for (int page = 0; page < 2000; ++page) {
                view.scrollBy(step);
                ASSERT_TRUE(step < 0 ? view.contentAbove() <= before : view.contentAbove() >= before);
                before = view.contentAbove();
            }
            view.scrollBy(step < 0 ? -100'000'000 : 100'000'000);
            ASSERT_EQ(view.contentAbove(), step < 0 ? 0 : view.mostAbove());
            ASSERT_TRUE(step < 0 || view.isAtEnd());
        }
    }
}
