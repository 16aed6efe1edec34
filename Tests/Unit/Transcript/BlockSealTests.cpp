#include "Transcript/BlockSeal.h"

#include "Transcript/TextBlock.h"
#include "Unit/Transcript/RandomText.h"

#include <gtest/gtest.h>

#include <optional>

namespace
{

/// Bytes that do not compress.
QByteArray noise(RandomText &random, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = static_cast<char>(random.below(256));
    return bytes;
}

std::optional<QByteArray> unpacked(const BlockKey &key, std::int64_t number, QByteArrayView packed, qsizetype size)
{
    QByteArray content(size, Qt::Uninitialized);
    if (!unpackBlock(key, number, packed, content.data(), size))
        return std::nullopt;
    return content;
}

} // namespace

TEST(BlockSeal, GivesBackWhatWasPackedWhetherItCompressesOrNot)
{
    const BlockKey key;
    BlockPacker packer(key);
    RandomText random(21);
    for (int round = 0; round < 200; ++round) {
        const int size = 1 + random.below(TextBlock::capacity);
        const QByteArray content = round % 3 == 0   ? noise(random, size)
                                   : round % 3 == 1 ? QByteArray(size, 'y')
                                                    : random.text(1 + size / 4).toUtf8();
        const QByteArray packed = packer.pack(round, content).toByteArray();
        ASSERT_EQ(unpacked(key, round, packed, content.size()), content);
    }
}

TEST(BlockSeal, TakesNextToNothingForRepetitionsAndLittleMoreThanItselfForNoise)
{
    const BlockKey key;
    BlockPacker packer(key);
    RandomText random(22);
    EXPECT_LT(packer.pack(1, QByteArray(TextBlock::capacity, 'y')).size(), 64);
    EXPECT_LT(packer.pack(2, noise(random, TextBlock::capacity)).size(), TextBlock::capacity + 64);
}

TEST(BlockSeal, RefusesWhatWasAlteredAtAnyPlaceOrCutOrPackedUnderAnotherNumberOrKey)
{
    const BlockKey key;
    const BlockKey otherKey;
    BlockPacker packer(key);
    const QByteArray content = QByteArray("one line of many\n").repeated(100);
    const QByteArray packed = packer.pack(7, content).toByteArray();
    ASSERT_EQ(unpacked(key, 7, packed, content.size()), content);
    EXPECT_FALSE(unpacked(key, 8, packed, content.size()));
    EXPECT_FALSE(unpacked(otherKey, 7, packed, content.size()));
    for (qsizetype place = 0; place < packed.size(); ++place) {
        QByteArray altered = packed;
        altered[place] = static_cast<char>(altered[place] ^ 1);
        EXPECT_FALSE(unpacked(key, 7, altered, content.size())) << place;
        EXPECT_FALSE(unpacked(key, 7, packed.first(place), content.size())) << place;
    }
}
