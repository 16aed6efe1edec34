#include "Support/Waiting.h"
#include "Unit/Transcript/ViewedText.h"

#include <gtest/gtest.h>

namespace
{

constexpr std::int64_t capacity = std::int64_t{128} * 1024;

/// So many blocks, and of those that are packed next to nothing remains.
void appendBlocks(ViewedText &text, int count)
{
    const QByteArray block = QByteArray("y\n").repeated(capacity / 2);
    for (int number = 0; number < count; ++number)
        text.append(block);
    EXPECT_EQ(text.endBlock(), count);
}

} // namespace

TEST(TextStoreLimits, AreThoseOfTheApplication)
{
    const TextStorage storage;
    EXPECT_EQ(storage.plainBlocks, 1024U);
    EXPECT_EQ(storage.packedBytes, 201'326'592);
    EXPECT_EQ(storage.waitingBytes, 134'217'728);
    EXPECT_EQ(storage.diskReserve, 5'368'709'120);
    EXPECT_EQ(storage.diskReserveShare, 0.1);
#ifdef __linux__
    EXPECT_EQ(storage.folder, "/var/tmp");
#endif
    EXPECT_EQ(TextStore::blockCapacity, capacity);
    EXPECT_EQ(TextStore::longestMovedLine, 16'384);
}

TEST(TextStoreLimits, LeaveSoManyBlocksAtTheEndAsTheyAre)
{
    for (const std::size_t plainBlocks : {std::size_t{0}, std::size_t{1}, std::size_t{4}}) {
        ViewedText text(plainBlocks);
        appendBlocks(text, 20);
        const auto kept = static_cast<std::int64_t>(std::max<std::size_t>(1, plainBlocks));
        EXPECT_TRUE(waitUntil([&] { return text.memory() < (kept + 1) * capacity; })) << plainBlocks;
        EXPECT_FALSE(waitUntil([&] { return text.memory() < kept * capacity; }, std::chrono::milliseconds(200)))
            << plainBlocks;
    }
}

TEST(TextStoreLimits, HoldEightBlocksThatWereReadLast)
{
    ViewedText text(std::size_t{2});
    appendBlocks(text, 20);
    EXPECT_TRUE(waitUntil([&] { return text.memory() < 3 * capacity; }));
    const std::int64_t before = text.memory();
    for (int number = 0; number < 12; ++number) {
        text.bytes(number);
        EXPECT_EQ(text.memory(), before + std::min(number + 1, 8) * capacity) << number;
    }
    text.bytes(11);
    text.bytes(4);
    EXPECT_EQ(text.memory(), before + 8 * capacity) << "they were there";
    text.dropFront(text.block(10).begin());
    EXPECT_EQ(text.memory(), before + 2 * capacity) << "two of them are left";
}

TEST(TextStoreLimits, EndABlockWithTwoThousandFortyEightMarks)
{
    ViewedText text;
    for (int number = 0; number < 5000; ++number)
        text.append("x", number % 2 == 0 ? OutputKind::out : OutputKind::err);
    ASSERT_EQ(text.endBlock(), 3);
    EXPECT_EQ(text.block(0).size.bytes, 2047);
    EXPECT_EQ(text.block(1).size.bytes, 2047);
    for (TextView::Position at = 0; at < text.end(); ++at) {
        const TextView::Run run = text.runAt(at);
        ASSERT_EQ(run.kind, at % 2 == 0 ? OutputKind::out : OutputKind::err) << at;
        ASSERT_EQ(run.begin, at);
        ASSERT_EQ(run.end, at + 1);
    }
}
