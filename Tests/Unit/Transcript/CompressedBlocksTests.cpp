#include "Transcript/CompressedBlocks.h"

#include "Support/ProcessMemory.h"
#include "Support/Waiting.h"
#include "Unit/Transcript/RandomText.h"

#include <gtest/gtest.h>

#include <deque>

namespace
{

constexpr int blockSize = 128 * 1024;

QByteArray repeated(char letter)
{
    return QByteArray(blockSize, letter);
}

/// Bytes that do not compress.
QByteArray noise(RandomText &random, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = static_cast<char>(random.below(256));
    return bytes;
}

} // namespace

TEST(CompressedBlocks, GivesBackEveryBlockInWhateverOrderItIsRead)
{
    RandomText random(21);
    CompressedBlocks blocks(blockSize);
    std::deque<QByteArray> model;
    for (int round = 0; round < 600; ++round) {
        QByteArray block = random.below(3) == 0 ? noise(random, 1 + random.below(blockSize))
                                                : random.text(1 + random.below(8000)).toUtf8();
        if (random.below(20) == 0)
            block = block.first(1);
        blocks.append(block);
        model.push_back(block);
        if (random.below(4) == 0) {
            const int dropped = random.below(static_cast<int>(model.size()) / (random.below(10) == 0 ? 1 : 8) + 1);
            blocks.dropFront(dropped);
            model.erase(model.begin(), model.begin() + dropped);
        }
        ASSERT_EQ(blocks.size(), static_cast<CompressedBlocks::Index>(model.size()));
        for (int reads = 0; reads < 4 && !model.empty(); ++reads) {
            const int index = random.below(static_cast<int>(model.size()));
            ASSERT_TRUE(blocks.read(index) == model[static_cast<std::size_t>(index)]) << round;
        }
    }
}

TEST(CompressedBlocks, KeepsTheBlocksReadableThatWereReadLast)
{
    CompressedBlocks blocks(blockSize);
    for (char letter = 'a'; letter <= 'z'; ++letter)
        blocks.append(repeated(letter));
    std::vector<QByteArrayView> views;
    for (std::size_t index = 0; index < CompressedBlocks::mostDecompressed; ++index)
        views.push_back(blocks.read(static_cast<CompressedBlocks::Index>(2 * index)));
    blocks.read(0); // which is decompressed already
    blocks.append(repeated('!'));
    for (std::size_t index = 0; index < views.size(); ++index)
        EXPECT_TRUE(views[index] == repeated(static_cast<char>('a' + 2 * index)));
}

TEST(CompressedBlocks, TakesNextToNothingForRepetitionsAndLittleMoreThanItselfForNoise)
{
    CompressedBlocks repetitions(blockSize);
    for (int count = 0; count < 1000; ++count)
        repetitions.append(repeated('y'));
    EXPECT_LT(repetitions.memory(), 64 * 1024);

    RandomText random(22);
    CompressedBlocks noises(blockSize);
    for (int count = 0; count < 50; ++count)
        noises.append(noise(random, blockSize));
    EXPECT_LT(noises.memory(), 51 * blockSize);
    EXPECT_GE(noises.memory(), 50 * blockSize);
}

TEST(CompressedBlocks, GivesItsMemoryBackAsItsFrontIsDropped)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "What the thread sanitizer notes of memory stays when the memory itself is given back.";
#endif
    RandomText random(23);
    const QByteArray block = noise(random, blockSize);
    CompressedBlocks blocks(blockSize);
    const std::int64_t before = residentMemory();
    ASSERT_GT(before, 0);
    for (int count = 0; count < 1024; ++count)
        blocks.append(block);
    constexpr std::int64_t mebibyte = 1024 * 1024;
    EXPECT_GT(residentMemory(), before + 120 * mebibyte);
    blocks.dropFront(512);
    EXPECT_LT(blocks.memory(), 73 * mebibyte); // at most one slab is dropped in part only
    EXPECT_TRUE(waitUntil([&] { return residentMemory() < before + 80 * mebibyte; }));
    EXPECT_TRUE(blocks.read(511) == block);
    blocks.dropFront(512);
    EXPECT_EQ(blocks.memory(), 0);
    EXPECT_TRUE(waitUntil([&] { return residentMemory() < before + 16 * mebibyte; }));
}
