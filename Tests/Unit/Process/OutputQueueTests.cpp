#include "Process/OutputQueue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

struct Heard {
    std::string text;
    bool isError;
    bool operator==(const Heard &) const = default;
};

class OutputQueueTest : public testing::Test
{
protected:
    OutputQueue::Delivered deliverAll()
    {
        OutputQueue::Delivered delivered;
        do {
            delivered = queue.deliverNext();
        } while (delivered.more);
        return delivered;
    }

    std::vector<Heard> heard;
    std::vector<int> ends;
    const OutputHandler hear = [this](QUtf8StringView text, bool isError) {
        heard.push_back({std::string(text.data(), static_cast<std::size_t>(text.size())), isError});
    };
    const ExitHandler hearTheEnd = [this](int status, const ProcessHandlePointer &) { ends.push_back(status); };
    OutputQueue queue{nullptr, hear, hearTheEnd};
};

} // namespace

TEST_F(OutputQueueTest, AsksToBeAnnouncedOnlyWhenItHadNothingToDeliver)
{
    EXPECT_TRUE(queue.append("a", false));
    EXPECT_FALSE(queue.append("b", true));
    EXPECT_FALSE(queue.end(0));
    deliverAll();
    EXPECT_EQ(ends, std::vector<int>{0});
}

TEST_F(OutputQueueTest, AsksToBeAnnouncedWithTheEndWhenOnlyAllOfItIsOfUse)
{
    OutputQueue patient(nullptr, hear, hearTheEnd, OutputQueue::Announcing::atTheEnd);
    EXPECT_FALSE(patient.append("a", false));
    EXPECT_FALSE(patient.append("b", true));
    EXPECT_TRUE(patient.end(3));
    while (patient.deliverNext().more) {
    }
    EXPECT_EQ(heard, (std::vector<Heard>{{"a", false}, {"b", true}}));
    EXPECT_EQ(ends, std::vector<int>{3});
}

TEST_F(OutputQueueTest, AsksToBeAnnouncedBeforeTheEndWhenItIsFull)
{
    OutputQueue patient(nullptr, hear, hearTheEnd, OutputQueue::Announcing::atTheEnd);
    const QByteArray block(qsizetype{1024} * 1024, 'x');
    bool mustAnnounce = false;
    for (int times = 0; times < 2; ++times) {
        while (patient.hasRoom()) {
            EXPECT_FALSE(mustAnnounce);
            mustAnnounce = patient.adopt(block, block.size(), false);
        }
        EXPECT_TRUE(mustAnnounce);
        bool madeRoom = false;
        for (bool more = true; more;) {
            const OutputQueue::Delivered delivered = patient.deliverNext();
            madeRoom = madeRoom || delivered.madeRoom;
            more = delivered.more;
        }
        EXPECT_TRUE(madeRoom);
        mustAnnounce = false;
    }
}

TEST_F(OutputQueueTest, JoinsShortNeighboursOfOneStreamAndKeepsTheOrder)
{
    EXPECT_TRUE(queue.append("a", false));
    EXPECT_FALSE(queue.append("b", false));
    EXPECT_FALSE(queue.append("c", true));
    EXPECT_FALSE(queue.append("d", false));
    deliverAll();
    EXPECT_EQ(heard, (std::vector<Heard>{{"ab", false}, {"c", true}, {"d", false}}));
    EXPECT_TRUE(queue.append("e", false));
}

TEST_F(OutputQueueTest, CutsALongBlockBetweenCharactersOnly)
{
    QByteArray block("x");
    while (block.size() < 300'000)
        block += "\xE2\x82\xAC";
    EXPECT_TRUE(queue.adopt(block, block.size(), false));
    deliverAll();
    std::string joined;
    for (const Heard &chunk : heard) {
        EXPECT_LE(chunk.text.size(), 64U * 1024U);
        EXPECT_TRUE(QByteArrayView(chunk.text.data(), static_cast<qsizetype>(chunk.text.size())).isValidUtf8());
        joined += chunk.text;
    }
    EXPECT_EQ(joined, block.toStdString());
}

TEST_F(OutputQueueTest, CutsALongCopiedTextBetweenCharactersOnly)
{
    const QByteArray text = "x" + QByteArray("\xE2\x82\xAC").repeated(80'000);
    EXPECT_TRUE(queue.append(text, true));
    deliverAll();
    std::string joined;
    for (const Heard &chunk : heard) {
        EXPECT_LE(chunk.text.size(), 64U * 1024U);
        EXPECT_TRUE(QByteArrayView(chunk.text.data(), static_cast<qsizetype>(chunk.text.size())).isValidUtf8());
        EXPECT_TRUE(chunk.isError);
        joined += chunk.text;
    }
    EXPECT_EQ(joined, text.toStdString());
}

TEST_F(OutputQueueTest, TakesOnlyTheFilledPartOfABlock)
{
    QByteArray block("textrest");
    EXPECT_TRUE(queue.adopt(block, 4, true));
    EXPECT_FALSE(queue.append("more", true)); // must not be joined to what the block holds behind its text
    deliverAll();
    EXPECT_EQ(heard, (std::vector<Heard>{{"text", true}, {"more", true}}));
}

TEST_F(OutputQueueTest, BoundsWhatWaitsAndSaysWhenThereIsRoomAgain)
{
    const QByteArray block(qsizetype{1024} * 1024, 'x');
    int blocks = 0;
    while (queue.hasRoom() && blocks < 1000) {
        static_cast<void>(queue.adopt(block, block.size(), false));
        ++blocks;
    }
    EXPECT_EQ(blocks, 4);
    int deliveries = 0;
    while (!queue.deliverNext().madeRoom && deliveries < 1000)
        ++deliveries;
    EXPECT_LT(deliveries, 1000);
    EXPECT_TRUE(queue.hasRoom());
    EXPECT_FALSE(deliverAll().madeRoom); // nobody has asked since
}
