#include "Unit/Transcript/FiledText.h"

#include <atomic>
#include <memory>
#include <thread>

using TextSnapshotTest = FiledTextTest;

namespace
{

QByteArray forwards(const TextSnapshot &snapshot)
{
    QByteArray bytes;
    for (TextPiece::Position at = snapshot.begin(); at < snapshot.end();) {
        const TextPiece piece = snapshot.pieceAt(at);
        EXPECT_EQ(piece.begin, at);
        EXPECT_GT(piece.end, at);
        EXPECT_FALSE(piece.isMissing);
        bytes += piece.bytes;
        at = piece.end;
    }
    return bytes;
}

} // namespace

TEST_F(TextSnapshotTest, HoldsWhatTheViewHeldWhateverIsAppendedLater)
{
    ViewedText text(storage());
    QByteArray bytes = lines(3 * mebibyte);
    text.append(bytes);
    text.dropFront(100'000);
    const TextSnapshot snapshot = text.snapshot();
    text.append(lines(5 * mebibyte));
    settle(text);
    EXPECT_TRUE(forwards(snapshot) == bytes.sliced(100'000));
    EXPECT_EQ(snapshot.begin(), 100'000);
    EXPECT_EQ(snapshot.end(), bytes.size());
}

TEST_F(TextSnapshotTest, IsEmptyOfAnEmptyText)
{
    const ViewedText text(storage());
    const TextSnapshot snapshot = text.snapshot();
    EXPECT_TRUE(snapshot.isEmpty());
    EXPECT_TRUE(TextSnapshot().isEmpty());
}

TEST_F(TextSnapshotTest, HoldsItsTextAfterAClearAndLetsItGoWithItself)
{
    ViewedText text(storage());
    const QByteArray bytes = lines(8 * mebibyte);
    fill(text, bytes);
    std::optional<TextSnapshot> snapshot = text.snapshot();
    text.clear();
    const QByteArray later = lines(4 * mebibyte);
    fill(text, later);
    EXPECT_TRUE(forwards(*snapshot) == bytes);
    EXPECT_TRUE(forwards(text.snapshot()) == later);
    snapshot.reset();
    text.clear();
#ifdef __linux__
    EXPECT_TRUE(waitUntil([&] { return openFiles().isEmpty(); }));
#endif
}

TEST_F(TextSnapshotTest, HoldsItsTextAfterTheEndOfTheStore)
{
    auto text = std::make_unique<ViewedText>(storage());
    const QByteArray bytes = lines(6 * mebibyte);
    fill(*text, bytes);
    const TextSnapshot snapshot = text->snapshot();
    text.reset();
    EXPECT_TRUE(forwards(snapshot) == bytes);
}

TEST_F(TextSnapshotTest, IsReadOnAnotherThreadWhileTheTextGrowsAndLosesItsFront)
{
    ViewedText text(storage());
    const QByteArray bytes = lines(24 * mebibyte);
    QByteArray known; // what text begins with
    qsizetype at = 0;
    for (int round = 0; round < 12; ++round) {
        const auto append = [&](qsizetype size) {
            while (size > 0 && at < bytes.size()) {
                const qsizetype piece = std::min<qsizetype>({size, 1 + random.below(30'000), bytes.size() - at});
                text.append(QByteArrayView(bytes).sliced(at, piece));
                at += piece;
                size -= piece;
            }
        };
        append(mebibyte + random.below(1'000'000));
        TextSnapshot snapshot = text.snapshot();
        const QByteArrayView expected =
            QByteArrayView(bytes).sliced(snapshot.begin(), snapshot.end() - snapshot.begin());
        std::atomic<bool> isSame = false;
        std::thread reader(
            [snapshot = std::move(snapshot), expected, &isSame] { isSame = forwards(snapshot) == expected; });
        append(500'000);
        text.dropFront(text.begin() + random.below(static_cast<int>(text.end() - text.begin())));
        append(500'000);
        reader.join();
        EXPECT_TRUE(isSame) << round;
    }
}

TEST_F(TextSnapshotTest, ReadsTheUnfinishedLineThatMovesToTheNextBlock)
{
    ViewedText text(storage());
    const QByteArray full = lines(TextStore::blockCapacity - 100);
    const QByteArray open(90, 'o');
    text.append(full + '\n' + open);
    const TextSnapshot snapshot = text.snapshot();
    text.append(lines(TextStore::blockCapacity));
    EXPECT_TRUE(forwards(snapshot) == full + '\n' + open);
    EXPECT_TRUE(snapshot.pieceAt(snapshot.end() - 1).bytes.endsWith('o'));
}

TEST_F(TextSnapshotTest, TellsWhichPieceIsMissing)
{
    ViewedText text(storage(folder.filePath(QStringLiteral("missing"))));
    const QByteArray bytes = lines(3 * mebibyte);
    text.append(bytes);
    const TextSnapshot snapshot = text.snapshot();
    fill(text, lines(5 * mebibyte));
    const TextPiece piece = snapshot.pieceAt(5);
    EXPECT_TRUE(piece.isMissing);
    EXPECT_TRUE(piece.bytes.endsWith(" bytes of the output are missing here.\n"));
    EXPECT_EQ(piece.begin, 5);
    EXPECT_GT(piece.end, 100'000);
}

TEST_F(TextSnapshotTest, MovesWithAllThatItHolds)
{
    ViewedText text(storage());
    const QByteArray bytes = lines(8 * mebibyte);
    fill(text, bytes);
    TextSnapshot whole = text.snapshot();
    text.dropFront(4 * mebibyte);
    TextSnapshot half = text.snapshot();
    text.clear();
    TextSnapshot moved(std::move(whole));
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): that it is empty is told
    EXPECT_TRUE(whole.isEmpty());
    EXPECT_TRUE(forwards(moved) == bytes);
    whole = std::move(half);
    EXPECT_TRUE(forwards(whole) == bytes.sliced(4 * mebibyte));
    std::swap(whole, moved);
    EXPECT_TRUE(forwards(whole) == bytes);
    EXPECT_TRUE(forwards(moved) == bytes.sliced(4 * mebibyte));
    whole = TextSnapshot();
    EXPECT_TRUE(forwards(moved) == bytes.sliced(4 * mebibyte)) << "the other holds its own part";
    moved = TextSnapshot();
#ifdef __linux__
    EXPECT_TRUE(waitUntil([&] { return openFiles().isEmpty(); })) << "nobody holds anything";
#endif
}

TEST_F(TextSnapshotTest, ReadsTheUnfinishedLineOnAnotherThreadWhileItMoves)
{
    for (int round = 0; round < 100; ++round) {
        ViewedText text(storage());
        const QByteArray full = lines(TextStore::blockCapacity - 10'000);
        const QByteArray open(9'000, 'o');
        text.append(full + '\n' + open);
        TextSnapshot snapshot = text.snapshot();
        const QByteArray expected = full + '\n' + open;
        std::atomic<bool> isOver = false;
        std::atomic<int> differences = 0;
        std::thread reader([snapshot = std::move(snapshot), &expected, &isOver, &differences] {
            do
                differences += forwards(snapshot) == expected ? 0 : 1;
            while (!isOver);
        });
        text.append(QByteArray(3'000, 'p') + '\n');
        isOver = true;
        reader.join();
        EXPECT_EQ(differences, 0) << round;
    }
}
