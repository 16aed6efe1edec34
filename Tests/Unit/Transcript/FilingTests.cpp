#include "Unit/Transcript/FileSizeLimit.h"
#include "Unit/Transcript/FiledText.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

using FilingTest = FiledTextTest;

namespace
{

int run(const QString &command)
{
    return std::system(command.toLocal8Bit().constData());
}

using Piece = std::pair<std::uint64_t, std::uint64_t>;

constexpr qsizetype pieceSize = sizeof(Piece);

/// Pieces of 16 bytes, in order, from each place that many bytes after another.
std::vector<Piece> piecesOf(const QByteArray &bytes, qsizetype step)
{
    std::vector<Piece> pieces;
    for (qsizetype at = 0; at + pieceSize <= bytes.size(); at += step) {
        Piece &piece = pieces.emplace_back();
        std::memcpy(&piece.first, bytes.data() + at, sizeof piece.first);
        std::memcpy(&piece.second, bytes.data() + at + sizeof piece.first, sizeof piece.second);
    }
    std::ranges::sort(pieces);
    return pieces;
}

} // namespace

TEST_F(FilingTest, GivesBackAllOfATextThatIsFiledForTheMostPart)
{
    ViewedText text(storage());
    const QByteArray bytes = lines(20 * mebibyte);
    fill(text, bytes);
    EXPECT_TRUE(allOf(text) == bytes);
    EXPECT_EQ(text.loss().cause, BlockStore::Cause::none);
    for (int round = 0; round < 100; ++round) {
        const TextView::Position at = random.below(static_cast<int>(bytes.size()) - 100);
        EXPECT_EQ(text.text(at, at + 100), QString::fromLatin1(bytes.sliced(at, 100)));
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System), QStringList());
}

TEST(TextStorage, HoldsWhatTheApplicationMayTakeOfTheMemoryAndTheDisk)
{
    const TextStorage storage;
    EXPECT_EQ(storage.plainBlocks, 1024U);
    EXPECT_EQ(storage.packedBytes, 192 * TextStorage::mebibyte);
    EXPECT_EQ(storage.waitingBytes, 128 * TextStorage::mebibyte);
    EXPECT_EQ(storage.diskReserve, 5120 * TextStorage::mebibyte);
    EXPECT_EQ(storage.diskReserveShare, 0.1);
}

TEST_F(FilingTest, PacksOnWhileAllThatIsTooMuchIsInASlabThatFillsUp)
{
    TextStorage little = storage();
    little.packedBytes = 0;
    ViewedText text(little);
    text.append(QByteArray(16 * mebibyte, 'x'));
    EXPECT_TRUE(waitUntil([&] { return text.memory() < 4 * mebibyte; })) << text.memory();
}

TEST_F(FilingTest, ShowsNothingOfTheOutputInTheFile)
{
#ifndef __linux__
    GTEST_SKIP() << "Only Linux shows a process its files that have no name.";
#endif
    ViewedText text(storage());
    // Some that does not compress, and some that does.
    const QByteArray bytes =
        lines(3 * mebibyte) + QByteArray("a secret that is told again and again\n").repeated(50'000);
    fill(text, bytes);
    ASSERT_TRUE(waitUntil([&] { return openFiles().size() == 1; }));
    QFile file(openFiles().first());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    // So short a text is little enough already while its second slab is still being packed.
    ASSERT_TRUE(waitUntil([&] { return file.size() > mebibyte; })) << file.size();
    EXPECT_EQ(file.permissions() &
                  ~(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadUser | QFileDevice::WriteUser),
              QFileDevice::Permissions());
    const QByteArray filed = file.readAll();
    // What they share from two pieces' length on holds a whole one.
    const std::vector<Piece> pieces = piecesOf(bytes, pieceSize);
    std::vector<Piece> common;
    std::ranges::set_intersection(pieces, piecesOf(filed, 1), std::back_inserter(common));
    EXPECT_EQ(common.size(), 0U);
}

TEST_F(FilingTest, ShowsASentenceInThePlaceOfWhatWasAlteredInTheFile)
{
#ifndef __linux__
    GTEST_SKIP() << "Only Linux shows a process its files that have no name.";
#endif
    ViewedText text(storage());
    const QByteArray bytes = lines(8 * mebibyte);
    // In two halves: of so few blocks all are packed by one thread, so that the first in the file is the first.
    fill(text, bytes.first(4 * mebibyte));
    fill(text, bytes.sliced(4 * mebibyte));
    ASSERT_EQ(openFiles().size(), 1);
    QFile file(openFiles().first());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(1000));
    const QByteArray byte = file.peek(1);
    ASSERT_EQ(file.write(QByteArray(1, static_cast<char>(byte[0] ^ 4))), 1);
    file.close();

    const TextView::Block first = text.block(text.firstBlock());
    const QByteArray sentence =
        QStringLiteral("%L1 bytes of the output are missing here.\n").arg(first.size.bytes).toLatin1();
    EXPECT_TRUE(text.bytes(text.firstBlock()) == sentence) << text.bytes(text.firstBlock()).toByteArray().toStdString();
    EXPECT_EQ(text.runAt(0).kind, OutputKind::warn);
    EXPECT_TRUE(text.bytes(text.firstBlock() + 1) ==
                bytes.sliced(first.end(), text.block(text.firstBlock() + 1).size.bytes));
    // A text over it is the sentence and what follows.
    EXPECT_EQ(text.text(0, first.end() + 5), QString::fromLatin1(sentence + bytes.sliced(first.end(), 5)));
    EXPECT_EQ(text.lineBegin(20), 0);
    EXPECT_EQ(text.lineEnd(20), sentence.size()) << "the sentence is one line";
    EXPECT_EQ(text.lineEnd(first.end() + 1), text.lineEnd(first.end()));
}

TEST_F(FilingTest, ShowsSentencesInThePlaceOfWhatCannotBeReadFromTheFile)
{
#ifndef __linux__
    GTEST_SKIP() << "Only Linux shows a process its files that have no name.";
#endif
    ViewedText text(storage());
    const QByteArray bytes = lines(8 * mebibyte);
    fill(text, bytes);
    ASSERT_EQ(openFiles().size(), 1);
    ASSERT_EQ(::truncate(openFiles().first().toLocal8Bit().constData(), 0), 0);
    int missing = 0;
    for (TextView::BlockNumber number = text.firstBlock(); number < text.endBlock(); ++number) {
        const TextView::Block block = text.block(number);
        if (text.bytes(number).endsWith(" bytes of the output are missing here.\n"))
            ++missing;
        else
            EXPECT_TRUE(text.bytes(number) == bytes.sliced(block.begin(), block.size.bytes));
    }
    EXPECT_GT(missing, 30);
    EXPECT_LT(missing, 62);
}

TEST_F(FilingTest, KeepsTheNewestInMemoryWhereNoFileCanBeMade)
{
    TextStorage missing = storage(folder.filePath(QStringLiteral("missing")));
    missing.packedBytes = 2 * mebibyte;
    ViewedText text(missing);
    const QByteArray bytes = lines(8 * mebibyte);
    fill(text, bytes);
    EXPECT_TRUE(waitUntil([&] { return text.memory() < 3 * mebibyte; }));
    const BlockStore::Loss loss = text.loss();
    EXPECT_EQ(loss.cause, BlockStore::Cause::noFile);
    EXPECT_EQ(loss.inside, 0);
    ASSERT_GT(loss.front, 0);
    const TextView::Position kept = text.block(loss.front).begin();
    EXPECT_GT(bytes.size() - kept, mebibyte);
    EXPECT_LT(bytes.size() - kept, 5 * mebibyte);
    EXPECT_TRUE(text.bytes(0).endsWith(" bytes of the output are missing here.\n"));
    text.dropFront(kept);
    EXPECT_TRUE(allOf(text) == bytes.sliced(kept));
}

TEST_F(FilingTest, KeepsTheNewestInAFileThatMayNotGrowAnyMore)
{
    const FileSizeLimit limit(6 * mebibyte); // it is reached in the middle
    ViewedText text(storage());
    const QByteArray bytes = lines(24 * mebibyte);
    fill(text, bytes);
    const BlockStore::Loss loss = text.loss();
    EXPECT_EQ(loss.cause, BlockStore::Cause::diskIsFull);
    EXPECT_EQ(loss.inside, 0);
    ASSERT_GT(loss.front, 0);
    expectWhatWasKept(text, bytes);
}

TEST_F(FilingTest, GoesOnInAFullDiskWithWhatItHasOfIt)
{
    const QString small = folder.filePath(QStringLiteral("small"));
    QDir().mkdir(small);
    if (run(u"mount -t tmpfs -o size=5m none '%1' 2>/dev/null"_s.arg(small)) != 0)
        GTEST_SKIP() << "This user may not mount.";
    {
        ViewedText text(storage(small));
        const QByteArray bytes = lines(30 * mebibyte);
        fill(text, bytes);
        const BlockStore::Loss loss = text.loss();
        EXPECT_EQ(loss.cause, BlockStore::Cause::diskIsFull);
        EXPECT_EQ(loss.inside, 0);
        expectWhatWasKept(text, bytes);
        EXPECT_GT(text.end() - text.begin(), 6 * mebibyte) << "five are on the disk, packed, and the newest in memory";
    }
    EXPECT_TRUE(waitUntil([&] { return run(u"umount '%1' 2>/dev/null"_s.arg(small)) == 0; }));
}

TEST_F(FilingTest, LosesTheFrontOnlyAndNoMoreThanItMust)
{
    // Dropped blocks make room in the file for others: a disk that has room for some holds the newest, however long it
    // goes on.
    const FileSizeLimit limit(8 * mebibyte);
    ViewedText text(storage());
    QByteArray bytes;
    for (int round = 0; round < 12; ++round) {
        const QByteArray more = lines(4 * mebibyte);
        bytes += more;
        fill(text, more);
        expectWhatWasKept(text, bytes);
    }
    EXPECT_GT(text.begin(), 0);
}

TEST_F(FilingTest, GivesTheDiskBackWhenTheTextIsCleared)
{
    ViewedText text(storage());
    for (int round = 0; round < 2; ++round) {
        fill(text, lines(8 * mebibyte));
        text.clear();
        EXPECT_TRUE(text.isEmpty());
        EXPECT_LT(text.memory(), mebibyte);
#ifdef __linux__
        EXPECT_TRUE(waitUntil([&] { return openFiles().isEmpty(); })) << "also the second time";
#endif
    }
    const QByteArray bytes = lines(8 * mebibyte);
    fill(text, bytes);
    EXPECT_TRUE(allOf(text) == bytes);
}

TEST_F(FilingTest, IsNotDisturbedByAClearWhileBlocksAreBeingFiled)
{
    ViewedText text(storage());
    QByteArray bytes;
    for (int round = 0; round < 15; ++round) {
        const QByteArray more = lines((1 + random.below(4)) * mebibyte);
        for (qsizetype at = 0; at < more.size(); at += 60'000)
            text.append(QByteArrayView(more).sliced(at, std::min<qsizetype>(60'000, more.size() - at)));
        bytes += more;
        if (random.below(3) == 0) {
            text.clear();
            bytes.clear();
        }
        const TextView::Position size = text.end() - text.begin();
        ASSERT_EQ(size, bytes.size());
        for (int reads = 0; reads < 5 && size > 200; ++reads) {
            const int at = random.below(static_cast<int>(size) - 100);
            ASSERT_EQ(text.text(text.begin() + at, text.begin() + at + 100),
                      QString::fromLatin1(bytes.sliced(at, 100)));
        }
    }
    settle(text);
    EXPECT_TRUE(allOf(text) == bytes);
}

TEST_F(FilingTest, EndsAtOnceWhileBlocksAreBeingFiled)
{
    const QByteArray bytes = lines(3 * mebibyte);
    for (int round = 0; round < 20; ++round) {
        ViewedText text(storage());
        text.append(bytes);
    }
#ifdef __linux__
    EXPECT_TRUE(waitUntil([&] { return openFiles().isEmpty(); }));
#endif
}

TEST_F(FilingTest, LetsWhatHasWaitedLongestGoWhereTheDiskIsTooSlow)
{
    TextStorage hurried = storage();
    // Nothing may wait: whatever the disk has not taken yet is too much.
    hurried.packedBytes = 2 * mebibyte;
    hurried.waitingBytes = -mebibyte;
    ViewedText text(hurried);
    const QByteArray bytes = lines(8 * mebibyte);
    fill(text, bytes);
    const BlockStore::Loss loss = text.loss();
    EXPECT_EQ(loss.cause, BlockStore::Cause::diskIsSlow);
    EXPECT_EQ(loss.front, 0);
    EXPECT_GT(loss.inside, mebibyte);
    const auto missing = [&] {
        std::int64_t size = 0;
        for (TextView::BlockNumber number = text.firstBlock(); number < text.endBlock(); ++number) {
            const TextView::Block block = text.block(number);
            if (text.bytes(number).endsWith(" bytes of the output are missing here.\n"))
                size += block.size.bytes;
            else
                EXPECT_TRUE(text.bytes(number) == bytes.sliced(block.begin(), block.size.bytes));
        }
        return size;
    };
    // As soon as no more is lost.
    EXPECT_TRUE(waitUntil([&] { return missing() == text.loss().inside; }));
}
