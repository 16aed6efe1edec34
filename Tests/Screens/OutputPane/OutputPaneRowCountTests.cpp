#include "OutputPane/OutputPaneRowCount.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

/// Some hundred blocks, part of them with lines that wrap.
class OutputPaneRowCountTest : public testing::Test
{
protected:
    OutputPaneRowCountTest() { add(100); }

    int below(qint64 bound) { return std::uniform_int_distribution<int>(0, static_cast<int>(bound) - 1)(m_engine); }

    void add(int mebibytes)
    {
        for (int added = 0; added < mebibytes; ++added) {
            const int length = below(3) == 0 ? 200 : 40 + below(40);
            const QByteArray line = QByteArray(length, 'x') + '\n';
            text.append(line.repeated(1024 * 1024 / line.size()));
        }
    }

    TextStore::BlockNumber anyBlock() { return text.firstBlock() + below(text.endBlock() - text.firstBlock()); }

    /// What is counted is the sum of the blocks, from any place to any other.
    void expectSums()
    {
        qint64 rows = 0;
        for (TextStore::BlockNumber number = text.firstBlock(); number < text.endBlock(); ++number) {
            ASSERT_EQ(count.before(number), rows) << number;
            const qint64 here = count.rowsIn(number);
            for (const qint64 inside : {qint64{0}, here / 2, here - 1}) {
                const OutputPaneRowCount::Place place = count.at(rows + inside);
                ASSERT_EQ(place.block, number);
                ASSERT_EQ(place.rows, inside);
            }
            rows += here;
        }
        EXPECT_EQ(count.all(), rows);
        EXPECT_EQ(count.at(rows).block, text.endBlock());
    }

    TextStore text{4};
    OutputPaneRowCount count{text};

private:
    std::mt19937 m_engine{41};
};

} // namespace

TEST_F(OutputPaneRowCountTest, CountsLinesThatDoNotWrapExactly)
{
    count.setColumns(200);
    qint64 lines = 1; // the empty one behind the last line feed
    for (TextStore::BlockNumber number = text.firstBlock(); number < text.endBlock(); ++number)
        lines += text.block(number).lineFeeds;
    EXPECT_EQ(count.all(), lines);
    expectSums();
}

TEST_F(OutputPaneRowCountTest, TakesWhatWasFoundInPlaceOfItsEstimate)
{
    for (int round = 0; round < 40; ++round) {
        const TextStore::BlockNumber number = anyBlock();
        const qint64 before = count.all();
        const qint64 change = below(100) - 50;
        const qint64 rows = count.rowsIn(number) + change;
        count.found(number, rows);
        EXPECT_EQ(count.rowsIn(number), rows);
        EXPECT_EQ(count.all(), before + change);
    }
    expectSums();
}

TEST_F(OutputPaneRowCountTest, FollowsTheTextAsItGrowsAndLosesItsFront)
{
    for (int round = 0; round < 6; ++round) {
        for (int found = 0; found < 20; ++found) {
            const TextStore::BlockNumber number = anyBlock();
            count.found(number, count.rowsIn(number) + below(9));
        }
        expectSums();
        add(10 + below(30));
        expectSums();
        text.dropFront(text.begin() + below(40'000'000));
        expectSums();
    }
    text.clear();
    EXPECT_EQ(count.all(), 0);
    add(70);
    expectSums();
}

TEST_F(OutputPaneRowCountTest, StartsAnewForAnotherWidth)
{
    const qint64 narrow = count.all();
    count.found(anyBlock(), 1'000'000);
    count.setColumns(40);
    expectSums();
    EXPECT_GT(count.all(), narrow);
    count.setColumns(80);
    EXPECT_EQ(count.all(), narrow);
}
