#include "Transcript/PackedBlocks.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>

namespace
{

constexpr std::int64_t slabSize = std::int64_t{1024} * 1024;

class PackedBlocksTest : public testing::Test
{
protected:
    PackedBlocks::Place add(PackedBlocks::Number number, qsizetype size = slabSize)
    {
        const PackedBlocks::Room room = blocks.makeRoom(size, number);
        blocks.fill(room);
        return room.place;
    }

    /// Writes the next slab, or pretends that it could not be written; where in the file, and whether that has to grow.
    std::pair<std::int64_t, bool> file(bool isWritten = true)
    {
        std::optional<PackedBlocks::Filing> filing = blocks.startFiling();
        if (!filing)
            return {-1, false};
        if (!filing->file) {
            filing->file = NamelessFile::open(folder.path().toStdString());
            ++files;
        }
        watched = filing->file;
        blocks.filed(*filing, isWritten, unused);
        return {filing->slot, filing->grows};
    }

    bool isMissing(PackedBlocks::Place place) const
    {
        const PackedBlocks::Location location = blocks.find(place);
        return !location.memory && !location.file;
    }

    /// In which part of the file the slab with that number is; -1 while it is not there.
    std::int64_t slotOf(std::int64_t slab) const
    {
        const PackedBlocks::Location location = blocks.find(slab * slabSize + 5);
        EXPECT_EQ(location.offset % slabSize, location.file || location.memory ? 5 : 0);
        return location.file ? location.offset / slabSize : -1;
    }

    void dropBefore(PackedBlocks::Number number) { blocks.dropFront(number, unused); }

    bool isFileOpen()
    {
        unused.clear();
        return !watched.expired();
    }

    static std::pair<std::int64_t, std::int64_t> pairOf(PackedBlocks::Numbers numbers)
    {
        return {numbers.begin, numbers.end};
    }

    using Numbers = std::pair<std::int64_t, std::int64_t>;
    using Slot = std::pair<std::int64_t, bool>;

    const QTemporaryDir folder;
    PackedBlocks blocks;
    PackedBlocks::Unused unused;
    int files = 0; // that were opened
    std::weak_ptr<const NamelessFile> watched;
};

} // namespace

TEST_F(PackedBlocksTest, LieOneBehindAnotherInSlabsOfAMebibyte)
{
    EXPECT_EQ(PackedBlocks::slabSize, slabSize);
    EXPECT_EQ(add(0, slabSize - 10), 0);
    EXPECT_EQ(add(1, 10), slabSize - 10) << "just enough room";
    EXPECT_EQ(add(2, 7), slabSize);
    EXPECT_EQ(add(3, slabSize - 6), 2 * slabSize) << "a byte too much";
    EXPECT_EQ(blocks.memory(), 2 * slabSize + 1);
    EXPECT_EQ(blocks.find(0).memory, blocks.find(slabSize - 10).memory);
    EXPECT_EQ(blocks.find(slabSize - 10).offset, slabSize - 10);
    EXPECT_NE(blocks.find(slabSize).memory, blocks.find(0).memory);
    EXPECT_EQ(blocks.find(slabSize).offset, 0);
}

TEST_F(PackedBlocksTest, AreFiledOldestFirstButForTheLastSlab)
{
    EXPECT_FALSE(blocks.startFiling());
    for (int number = 0; number < 3; ++number)
        add(number);
    const auto filing = blocks.startFiling();
    ASSERT_TRUE(filing);
    EXPECT_EQ(filing->memory, blocks.find(0).memory);
    EXPECT_EQ(filing->size, slabSize);
    EXPECT_FALSE(filing->file);
    blocks.filed(*filing, false, unused);
    EXPECT_EQ(blocks.memory(), 3 * slabSize) << "it was not written";
    EXPECT_EQ(slotOf(0), -1);

    EXPECT_EQ(file(), Slot(0, true));
    EXPECT_EQ(blocks.memory(), 2 * slabSize);
    EXPECT_EQ(unused.size(), 1U) << "its memory";
    EXPECT_EQ(file(), Slot(1, true));
    EXPECT_EQ(file(), Slot(-1, false)) << "the last is not full yet";
    EXPECT_EQ(slotOf(0), 0);
    EXPECT_EQ(slotOf(1), 1);
    EXPECT_EQ(slotOf(2), -1);
    EXPECT_EQ(blocks.memory(), slabSize);
}

TEST_F(PackedBlocksTest, TakeThePlaceInTheFileOfThoseThatWereDropped)
{
    for (int number = 0; number < 4; ++number)
        add(number);
    for (int slot = 0; slot < 3; ++slot)
        EXPECT_EQ(file(), Slot(slot, true));
    dropBefore(0);
    EXPECT_FALSE(isMissing(0));
    dropBefore(2);
    EXPECT_TRUE(isMissing(0) && isMissing(slabSize));
    EXPECT_EQ(slotOf(2), 2);
    add(4);
    EXPECT_EQ(file(false), Slot(1, false));
    EXPECT_EQ(slotOf(3), -1);
    EXPECT_EQ(file(), Slot(0, false)) << "that part could not be written; another is tried";
    EXPECT_EQ(slotOf(3), 0);
    add(5);
    EXPECT_EQ(file(), Slot(1, false));
    add(6);
    EXPECT_EQ(file(), Slot(3, true));
    EXPECT_TRUE(isFileOpen());
}

TEST_F(PackedBlocksTest, CloseTheFileWithTheLastOfThemAndBeginAnotherAtItsBeginning)
{
    for (int round = 0; round < 3; ++round) {
        for (int number = 0; number < 3; ++number)
            add(3 * round + number);
        EXPECT_EQ(file(), Slot(0, true));
        EXPECT_EQ(files, round + 1);
        EXPECT_EQ(file(), Slot(1, true));
        EXPECT_EQ(files, round + 1);
        dropBefore(3 * round + 1);
        EXPECT_TRUE(isFileOpen());
        dropBefore(3 * round + 3);
        EXPECT_FALSE(isFileOpen());
        EXPECT_EQ(blocks.memory(), 0);
    }
}

TEST_F(PackedBlocksTest, AreNotFiledBeforeTheyAreThere)
{
    const PackedBlocks::Room room = blocks.makeRoom(slabSize - 10, 0);
    const PackedBlocks::Room other = blocks.makeRoom(10, 1);
    add(2);
    blocks.fill(other);
    EXPECT_FALSE(blocks.startFiling());
    blocks.fill(room);
    EXPECT_TRUE(blocks.startFiling());
}

TEST_F(PackedBlocksTest, MayBeDroppedWhileTheyAreCopiedOrFiled)
{
    const PackedBlocks::Room room = blocks.makeRoom(slabSize, 0);
    for (int number = 1; number < 4; ++number)
        add(number);
    dropBefore(1);
    blocks.fill(room);
    EXPECT_EQ(blocks.memory(), 3 * slabSize);
    std::optional<PackedBlocks::Filing> filing = blocks.startFiling();
    ASSERT_TRUE(filing);
    EXPECT_EQ(filing->memory, blocks.find(slabSize).memory);
    filing->file = NamelessFile::open(folder.path().toStdString());
    watched = filing->file;
    dropBefore(2);
    blocks.filed(*filing, true, unused);
    filing.reset();
    EXPECT_EQ(blocks.memory(), 2 * slabSize) << "counted once";
    EXPECT_TRUE(isMissing(slabSize));
    EXPECT_FALSE(isFileOpen()) << "nothing is in it";
    EXPECT_EQ(file(), Slot(0, true));
    EXPECT_EQ(slotOf(2), 0);
}

TEST_F(PackedBlocksTest, AreLetGoOldestFirstWhereverTheyAre)
{
    for (int number = 0; number < 3; ++number)
        add(number);
    EXPECT_EQ(file(), Slot(0, true));
    EXPECT_EQ(pairOf(blocks.letGoOldest(unused)), Numbers(0, 1));
    EXPECT_TRUE(isMissing(0));
    EXPECT_EQ(blocks.memory(), 2 * slabSize);
    EXPECT_EQ(file(), Slot(0, false)) << "in its place";
    add(3);
    EXPECT_EQ(pairOf(blocks.letGoOldest(unused)), Numbers(1, 2));
    EXPECT_EQ(pairOf(blocks.letGoOldest(unused)), Numbers(2, 3));
    EXPECT_EQ(blocks.memory(), slabSize);
    EXPECT_EQ(pairOf(blocks.letGoOldest(unused)), Numbers(3, 4)) << "the last one, too";
    EXPECT_EQ(blocks.memory(), 0);
    EXPECT_EQ(pairOf(blocks.letGoOldest(unused)), Numbers(0, 0));
    EXPECT_EQ(add(4, 1), 4 * slabSize) << "not into one that is missing";
}

TEST_F(PackedBlocksTest, AreLetGoWhileTheyWaitButForTheOneBeingFiledAndTheLast)
{
    for (int number = 0; number < 4; ++number)
        add(number);
    dropBefore(1);
    std::optional<PackedBlocks::Filing> filing = blocks.startFiling();
    ASSERT_TRUE(filing);
    EXPECT_EQ(pairOf(blocks.letGoWaiting(unused)), Numbers(2, 3));
    EXPECT_TRUE(isMissing(2 * slabSize));
    EXPECT_EQ(pairOf(blocks.letGoWaiting(unused)), Numbers(0, 0));
    EXPECT_EQ(blocks.memory(), 2 * slabSize);
    blocks.filed(*filing, false, unused);
    EXPECT_EQ(pairOf(blocks.letGoWaiting(unused)), Numbers(1, 2));
    EXPECT_EQ(blocks.memory(), slabSize);
}

TEST_F(PackedBlocksTest, KnowTheNumbersOfASlabInWhateverOrderTheyCome)
{
    add(6, 10);
    add(5, 10);
    dropBefore(6);
    EXPECT_FALSE(isMissing(0)) << "number 6 is in it";
    EXPECT_EQ(pairOf(blocks.letGoOldest(unused)), Numbers(5, 7));
    dropBefore(7);
    EXPECT_EQ(add(7, 10), slabSize);
}

TEST_F(PackedBlocksTest, AreLetGoOfTheirSlabOnlyWhereOneCameLate)
{
    const PackedBlocks::Place second = add(1);
    const PackedBlocks::Place first = add(0, 10);
    const PackedBlocks::Place third = add(2, 10);
    add(3);
    const PackedBlocks::Numbers before = blocks.letGoWaiting(unused);
    EXPECT_EQ(pairOf(before), Numbers(1, 2));
    EXPECT_TRUE(before.areAt(second));
    EXPECT_FALSE(before.areAt(first) || before.areAt(third));
    EXPECT_FALSE(before.areAt(-1)) << "one that is not packed";
    const PackedBlocks::Numbers behind = blocks.letGoWaiting(unused);
    EXPECT_EQ(pairOf(behind), Numbers(0, 3));
    EXPECT_FALSE(behind.areAt(second));
    EXPECT_TRUE(behind.areAt(first) && behind.areAt(third));
    EXPECT_EQ(pairOf(blocks.letGoWaiting(unused)), Numbers(0, 0));
}

TEST_F(PackedBlocksTest, GiveThingsBackWithGapsInWhichOthersGetTheirMemory)
{
    auto thing = std::make_shared<int>(1);
    PackedBlocks::Unused many(1600, thing);
    const auto start = std::chrono::steady_clock::now();
    PackedBlocks::giveBack(std::move(many));
    EXPECT_EQ(thing.use_count(), 1);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 100 * std::chrono::microseconds(200));
}
