#include "Process/OutputQueue.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

struct Delivered {
    std::string text;
    bool isError;
    bool operator==(const Delivered &) const = default;
};

class OutputQueueTest : public testing::Test
{
protected:
    std::shared_ptr<OutputQueue> makeQueue(OutputQueue::Delivery delivery)
    {
        const OutputQueue::Listener listener{
            .onReady = [this](const std::shared_ptr<OutputQueue> &notifier) { ready.push_back(notifier.get()); },
            .onRoom = [this] { ++roomNotices; }};
        return std::make_shared<OutputQueue>(nullptr, onOutput, onExit, listener, delivery);
    }

    static void deliverAll(OutputQueue &queue)
    {
        while (queue.deliverNext()) {
        }
    }

    std::vector<Delivered> delivered;
    std::vector<int> ends;
    std::vector<const OutputQueue *> ready; // one entry for each time that the listener was notified
    int roomNotices = 0;
    const OutputHandler onOutput = [this](QUtf8StringView text, bool isError) {
        delivered.push_back({std::string(text.data(), static_cast<std::size_t>(text.size())), isError});
    };
    const ExitHandler onExit = [this](int status, const ProcessHandlePointer &) { ends.push_back(status); };
    const std::shared_ptr<OutputQueue> owner = makeQueue(OutputQueue::Delivery::asItComes);
    OutputQueue &queue = *owner;
};

} // namespace

TEST_F(OutputQueueTest, NotifiesOnlyWhenItHadNothingToDeliver)
{
    queue.append("a", OutputStream::standard);
    EXPECT_EQ(ready, std::vector<const OutputQueue *>{&queue});
    queue.append("b", OutputStream::error);
    queue.end(0);
    EXPECT_EQ(ready.size(), 1U);
    deliverAll(queue);
    EXPECT_EQ(ends, std::vector<int>{0});
}

TEST_F(OutputQueueTest, NotifiesAgainOnceAllHasBeenDelivered)
{
    queue.append("a", OutputStream::standard);
    deliverAll(queue);
    EXPECT_EQ(ready.size(), 1U);
    queue.adopt("b", 1, OutputStream::standard);
    EXPECT_EQ(ready.size(), 2U);
    deliverAll(queue);
    queue.end(0);
    EXPECT_EQ(ready.size(), 3U);
}

TEST_F(OutputQueueTest, NotifiesWithTheEndWhenItCollects)
{
    const auto collecting = makeQueue(OutputQueue::Delivery::atTheEnd);
    collecting->append("a", OutputStream::standard);
    collecting->append("b", OutputStream::error);
    EXPECT_TRUE(ready.empty());
    collecting->end(3);
    EXPECT_EQ(ready, std::vector<const OutputQueue *>{collecting.get()});
    deliverAll(*collecting);
    EXPECT_EQ(delivered, (std::vector<Delivered>{{"a", false}, {"b", true}}));
    EXPECT_EQ(ends, std::vector<int>{3});
}

TEST_F(OutputQueueTest, NotifiesBeforeTheEndWhenItCollectsAndIsFull)
{
    const auto collecting = makeQueue(OutputQueue::Delivery::atTheEnd);
    const QByteArray block(qsizetype{1024} * 1024, 'x');
    for (std::size_t times = 1; times <= 2; ++times) {
        while (collecting->hasRoom()) {
            EXPECT_EQ(ready.size(), times - 1);
            collecting->adopt(block, block.size(), OutputStream::standard);
        }
        EXPECT_EQ(ready.size(), times);
        deliverAll(*collecting);
        EXPECT_EQ(roomNotices, static_cast<int>(times));
    }
}

TEST_F(OutputQueueTest, JoinsShortNeighboursOfOneStreamAndKeepsTheOrder)
{
    queue.append("a", OutputStream::standard);
    queue.append("b", OutputStream::standard);
    queue.append("c", OutputStream::error);
    queue.append("d", OutputStream::standard);
    deliverAll(queue);
    EXPECT_EQ(delivered, (std::vector<Delivered>{{"ab", false}, {"c", true}, {"d", false}}));
}

TEST_F(OutputQueueTest, JoinsNoMoreThanAChunkHolds)
{
    const std::string almost(64 * 1024 - 1, 'x');
    queue.append(QByteArrayView(almost.data(), static_cast<qsizetype>(almost.size())), OutputStream::standard);
    queue.append("y", OutputStream::standard);
    queue.append("z", OutputStream::standard);
    deliverAll(queue);
    EXPECT_EQ(delivered, (std::vector<Delivered>{{almost + "y", false}, {"z", false}}));
}

TEST_F(OutputQueueTest, CutsALongBlockBetweenCharactersOnly)
{
    for (const QByteArray &character : {QByteArray("\u20ac"), QByteArray("\u00e9"), QByteArray("\U0001f44d")}) {
        for (qsizetype before = 0; before < character.size(); ++before) {
            const QByteArray block = QByteArray(before, 'x') + character.repeated(300'000 / character.size());
            queue.adopt(block, block.size(), OutputStream::standard);
            delivered.clear();
            deliverAll(queue);
            std::string joined;
            for (const Delivered &chunk : delivered) {
                EXPECT_LE(chunk.text.size(), 64U * 1024U);
                EXPECT_GE(chunk.text.size() + (&chunk == &delivered.back() ? 64U * 1024U : 3U), 64U * 1024U);
                EXPECT_TRUE(QByteArrayView(chunk.text.data(), static_cast<qsizetype>(chunk.text.size())).isValidUtf8());
                joined += chunk.text;
            }
            EXPECT_EQ(joined, block.toStdString());
        }
    }
}

TEST_F(OutputQueueTest, CutsALongCopiedTextBetweenCharactersOnly)
{
    const QByteArray text = "x" + QByteArray("\xE2\x82\xAC").repeated(80'000);
    queue.append(text, OutputStream::error);
    deliverAll(queue);
    std::string joined;
    for (const Delivered &chunk : delivered) {
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
    queue.adopt(block, 4, OutputStream::error);
    queue.append("more", OutputStream::error); // must not be joined to what the block holds behind its text
    deliverAll(queue);
    EXPECT_EQ(delivered, (std::vector<Delivered>{{"text", true}, {"more", true}}));
}

TEST_F(OutputQueueTest, BoundsWhatWaitsAndNotifiesWhenThereIsRoomAgain)
{
    const QByteArray block(qsizetype{1024} * 1024, 'x');
    int blocks = 0;
    while (queue.hasRoom() && blocks < 1000) {
        queue.adopt(block, block.size(), OutputStream::standard);
        ++blocks;
    }
    EXPECT_EQ(blocks, 4);
    int chunks = 0;
    for (; roomNotices == 0; ++chunks)
        ASSERT_TRUE(queue.deliverNext());
    EXPECT_EQ(chunks, 32) << "as soon as half of it is delivered";
    EXPECT_TRUE(queue.hasRoom());
    deliverAll(queue);
    EXPECT_EQ(roomNotices, 1); // nobody has asked since
}

TEST_F(OutputQueueTest, GivesALongBlockBackOnceAllOfItIsDelivered)
{
    const qsizetype size = qsizetype{1024} * 1024;
    QByteArray block(size, 'x');
    const char *const memory = block.constData();
    queue.adopt(std::move(block), size / 2, OutputStream::standard);
    ASSERT_TRUE(queue.deliverNext());
    EXPECT_TRUE(queue.takeDelivered().isEmpty());
    deliverAll(queue);
    const QByteArray back = queue.takeDelivered();
    EXPECT_EQ(back.constData(), memory);
    EXPECT_EQ(back.size(), size);
    EXPECT_TRUE(queue.takeDelivered().isEmpty());
}

TEST_F(OutputQueueTest, GivesNoBlockBackThatIsNoLongerThanAChunk)
{
    for (const qsizetype size : {65'536, 65'537}) {
        queue.adopt(QByteArray(size, 'x'), 1, OutputStream::standard);
        deliverAll(queue);
        EXPECT_EQ(queue.takeDelivered().size(), size > 65'536 ? size : 0);
    }
}

TEST_F(OutputQueueTest, GivesNoBlockBackThatTheHandlersShare)
{
    QByteArray block(qsizetype{128} * 1024, 'x');
    queue.adopt(block, block.size(), OutputStream::standard);
    deliverAll(queue);
    EXPECT_TRUE(queue.takeDelivered().isEmpty());
}

TEST_F(OutputQueueTest, KeepsFewBlocksToBeFilledAgain)
{
    for (int count = 0; count < 20; ++count) {
        queue.adopt(QByteArray(qsizetype{128} * 1024, 'x'), 1, OutputStream::standard);
        deliverAll(queue);
    }
    int kept = 0;
    while (!queue.takeDelivered().isEmpty())
        ++kept;
    EXPECT_EQ(kept, 4);
}
