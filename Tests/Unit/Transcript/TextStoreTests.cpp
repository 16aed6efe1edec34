#include "Transcript/TextView.h"

#include "Support/Mebibyte.h"
#include "Support/ProcessMemory.h"
#include "Support/Waiting.h"
#include "Unit/Transcript/RandomText.h"
#include "Unit/Transcript/ViewedText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

QByteArray allBytes(const ViewedText &store)
{
    QByteArray bytes;
    for (TextStore::BlockNumber number = store.firstBlock(); number < store.endBlock(); ++number)
        bytes += store.bytes(number);
    return bytes;
}

/// What every store keeps true, whatever was done to it.
void expectSoundBlocks(const ViewedText &store)
{
    TextStore::Position position = store.begin();
    for (TextStore::BlockNumber number = store.firstBlock(); number < store.endBlock(); ++number) {
        const TextView::Block block = store.block(number);
        const QByteArrayView bytes = store.bytes(number);
        EXPECT_EQ(block.begin(), position);
        EXPECT_GT(block.size.bytes, 0);
        EXPECT_EQ(block.size.bytes, bytes.size());
        EXPECT_EQ(block.size.lineFeeds, std::count(bytes.begin(), bytes.end(), '\n'));
        EXPECT_TRUE(bytes.isValidUtf8());
        EXPECT_EQ(block.size.utf16, store.text(block.begin(), block.end()).size());
        EXPECT_EQ(store.blockAt(block.begin()), number);
        EXPECT_EQ(store.blockAt(block.end() - 1), number);
        position = block.end();
    }
    EXPECT_EQ(position, store.end());
}

QByteArray linesOf(int length, int count)
{
    QByteArray bytes;
    for (int index = 0; index < count; ++index)
        bytes += QByteArray(length - 1, static_cast<char>('a' + index % 26)) + '\n';
    return bytes;
}

} // namespace

TEST(TextStore, HoldsExactlyWhatWasAppendedInWhateverChunks)
{
    RandomText random(1);
    for (int round = 0; round < 30; ++round) {
        ViewedText store(round % 3 == 0 ? TextStorage().plainBlocks : 2);
        QByteArray model;
        const QString text = random.text(random.below(200'000));
        for (const QByteArray &chunk : random.chunks(text, 1 + random.below(round % 2 == 0 ? 50 : 60'000))) {
            store.append(chunk);
            model += chunk;
        }
        EXPECT_EQ(allBytes(store), model);
        EXPECT_EQ(store.text(store.begin(), store.end()), text);
        expectSoundBlocks(store);
    }
}

TEST(TextStore, StartsBlocksAtLineStarts)
{
    ViewedText store;
    const QByteArray line = linesOf(80, 1);
    for (int index = 0; index < 10'000; ++index) {
        // In two pieces, so that a block fills up in the middle of a line.
        store.append(line.first(33));
        store.append(line.sliced(33));
    }
    EXPECT_GT(store.endBlock(), 3);
    for (TextStore::BlockNumber number = 0; number < store.endBlock(); ++number)
        EXPECT_TRUE(store.bytes(number).endsWith('\n'));
    expectSoundBlocks(store);
}

TEST(TextStore, KeepsALineTogetherThatIsNotVeryLong)
{
    ViewedText store;
    const QByteArray lines = linesOf(TextStore::longestMovedLine, 40);
    for (qsizetype at = 0; at < lines.size(); at += 100)
        store.append(QByteArrayView(lines).sliced(at, std::min<qsizetype>(100, lines.size() - at)));
    EXPECT_GT(store.endBlock(), 3);
    for (TextStore::BlockNumber number = 0; number < store.endBlock(); ++number)
        EXPECT_TRUE(store.bytes(number).endsWith('\n'));
    EXPECT_EQ(allBytes(store), lines);
    expectSoundBlocks(store);
}

TEST(TextStore, ContinuesAVeryLongLineInTheNextBlockWithoutCuttingACharacter)
{
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;
    const QByteArray bytes = family.repeated(40'000).toUtf8();
    ViewedText store;
    store.append(bytes);
    EXPECT_GT(store.endBlock(), 4);
    for (TextStore::BlockNumber number = 0; number < store.endBlock(); ++number)
        EXPECT_EQ(store.block(number).size.bytes % family.toUtf8().size(), 0);
    EXPECT_EQ(store.lineBegin(store.end()), 0);
    EXPECT_EQ(store.lineEnd(0), store.end());
    EXPECT_EQ(allBytes(store), bytes);
    expectSoundBlocks(store);
}

TEST(TextStore, CutsNoCharacterOfAVeryLongLineThatArrivesInPieces)
{
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;
    for (const QString &character : {u"e\u0301"_s, u"\U0001f1e9\U0001f1ea"_s, family}) {
        const QByteArray bytes = character.toUtf8().repeated(60'000);
        for (const qsizetype sizeOfPieces : {qsizetype{64} * 1024, qsizetype{1}}) {
            ViewedText store;
            // Cut as the tool runner cuts, between code points.
            for (qsizetype at = 0; at < bytes.size();) {
                qsizetype end = std::min(at + sizeOfPieces, bytes.size());
                while (end < bytes.size() && (static_cast<unsigned char>(bytes[end]) & 0xc0U) == 0x80U)
                    sizeOfPieces == 1 ? ++end : --end;
                store.append(QByteArrayView(bytes).sliced(at, end - at));
                at = end;
            }
            for (TextStore::BlockNumber number = 0; number < store.endBlock(); ++number)
                EXPECT_EQ(store.block(number).size.bytes % character.toUtf8().size(), 0) << character.toStdString();
            EXPECT_EQ(allBytes(store), bytes);
            expectSoundBlocks(store);
        }
    }
}

TEST(TextStore, KeepsBothHalvesOfALineEndTogether)
{
    ViewedText store;
    store.append(QByteArray(TextStore::blockCapacity - 1, 'x') + '\r');
    store.append("\nnext");
    EXPECT_TRUE(store.bytes(store.endBlock() - 1) == "\r\nnext");
    EXPECT_EQ(store.block(0).size.bytes, TextStore::blockCapacity - 1);
    expectSoundBlocks(store);
}

TEST(TextStore, KeepsItsPositionsWhenTheFrontIsDropped)
{
    RandomText random(2);
    ViewedText store(3);
    QByteArray model;
    TextStore::Position dropped = 0;
    for (int round = 0; round < 400; ++round) {
        const QByteArray chunk = random.text(random.below(3000)).toUtf8();
        store.append(chunk);
        model += chunk;
        if (round % 3 == 0) {
            TextStore::Position target = dropped + random.below(static_cast<int>(model.size() - dropped) + 1);
            while (target < model.size() && (static_cast<unsigned char>(model[target]) & 0xc0U) == 0x80U)
                ++target;
            store.dropFront(target);
            dropped = target;
            EXPECT_EQ(store.begin(), dropped);
        }
        EXPECT_EQ(store.end(), model.size());
    }
    EXPECT_EQ(allBytes(store), model.sliced(dropped));
    expectSoundBlocks(store);
}

TEST(TextStore, IsEmptyAfterAClearAndUsesItsPositionsOnlyOnce)
{
    ViewedText store;
    store.append("one\ntwo");
    store.clear();
    EXPECT_TRUE(store.isEmpty());
    EXPECT_EQ(store.begin(), 7);
    EXPECT_EQ(store.firstBlock(), store.endBlock());
    EXPECT_EQ(store.text(0, 100), QString());
    store.append("three");
    EXPECT_EQ(store.begin(), 7);
    EXPECT_EQ(store.text(7, 12), u"three"_s);
    expectSoundBlocks(store);
}

TEST(TextStore, CountsUtf16UnitsBothWays)
{
    RandomText random(3);
    ViewedText store(2);
    const QString front = random.text(150'000);
    const QString rest = random.text(150'000);
    store.append(front.toUtf8());
    store.append(rest.toUtf8());
    store.dropFront(front.toUtf8().size());
    EXPECT_EQ(store.utf16Offset(store.begin()), 0);
    EXPECT_EQ(store.utf16Offset(store.end()), rest.size());
    EXPECT_EQ(store.positionAtUtf16(rest.size()), store.end());
    EXPECT_EQ(store.positionAtUtf16(rest.size() + 1), store.end());
    for (int round = 0; round < 300; ++round) {
        int units = random.below(static_cast<int>(rest.size()));
        if (rest[units].isLowSurrogate()) {
            EXPECT_EQ(store.positionAtUtf16(units), store.positionAtUtf16(units - 1));
            --units;
        }
        const TextStore::Position expected = store.begin() + QStringView(rest).first(units).toUtf8().size();
        EXPECT_EQ(store.positionAtUtf16(units), expected);
        EXPECT_EQ(store.utf16Offset(expected), units);
        EXPECT_EQ(store.text(expected, store.end()), rest.sliced(units));
    }
}

TEST(TextStore, KeepsAZeroWidthNoBreakSpaceAtTheStartOfAText)
{
    ViewedText store;
    store.append("\ufeffa");
    EXPECT_EQ(store.text(0, store.end()), QStringView(u"\ufeffa").toString());
}

TEST(TextStore, FindsWhereLinesBeginAndEnd)
{
    ViewedText store(2);
    const QByteArray lines = linesOf(100, 5000);
    store.append(lines + "open");
    EXPECT_EQ(store.lineBegin(0), 0);
    EXPECT_EQ(store.lineEnd(0), 100);
    EXPECT_EQ(store.lineBegin(250'050), 250'000);
    EXPECT_EQ(store.lineEnd(250'050), 250'100);
    EXPECT_EQ(store.lineBegin(store.end()), 500'000);
    EXPECT_EQ(store.lineEnd(500'001), store.end());
    store.dropFront(130);
    EXPECT_EQ(store.lineBegin(150), 130);
    EXPECT_EQ(store.lineBegin(200), 200);
}

TEST(TextStore, KnowsAndReadsTheSameWhereverItsBytesAre)
{
    RandomText random(4);
    ViewedText plain;
    ViewedText compressed(2);
    TextStore::Position model = 0; // where all text ever appended ends
    QByteArray all;
#ifdef __SANITIZE_THREAD__
    constexpr int rounds = 60; // more take half a minute there
#else
    constexpr int rounds = 150;
#endif
    for (int round = 0; round < rounds; ++round) {
        // Long lines, no lines at all, plain lines, and a little of everything.
        const int kind = random.below(4);
        const int size = random.below(60'000);
        const QByteArray chunk = kind == 0   ? QByteArray(size, 'l')
                                 : kind == 1 ? QStringView(u"\u4e2d\U0001F600").toString().repeated(size / 7).toUtf8()
                                 : kind == 2 ? linesOf(80, size / 80)
                                             : random.text(size / 3).toUtf8();
        plain.append(chunk);
        compressed.append(chunk);
        all += chunk;
        model += chunk.size();
        if (round % 10 == 9) {
            const bool clears = random.below(6) == 0;
            TextStore::Position target =
                clears ? model : plain.begin() + random.below(static_cast<int>(model - plain.begin()) + 1);
            while (target < model && (static_cast<unsigned char>(all[target]) & 0xc0U) == 0x80U)
                ++target;
            plain.dropFront(target);
            compressed.dropFront(target);
        }
        ASSERT_EQ(compressed.begin(), plain.begin());
        ASSERT_EQ(compressed.end(), plain.end());
        ASSERT_EQ(compressed.firstBlock(), plain.firstBlock());
        ASSERT_EQ(compressed.endBlock(), plain.endBlock());
        for (TextStore::BlockNumber number = compressed.firstBlock(); number < compressed.endBlock(); ++number)
            ASSERT_EQ(compressed.block(number), plain.block(number));
        for (int reads = 0; reads < 8 && !plain.isEmpty(); ++reads) {
            const TextStore::Position at =
                plain.begin() + random.below(static_cast<int>(plain.end() - plain.begin()) + 1);
            const TextStore::Position to = std::min<TextStore::Position>(at + random.below(300'000), plain.end());
            ASSERT_EQ(compressed.text(at, to), plain.text(at, to));
            ASSERT_EQ(compressed.lineBegin(at), plain.lineBegin(at));
            ASSERT_EQ(compressed.lineEnd(at), plain.lineEnd(at));
            ASSERT_EQ(compressed.utf16Offset(at), plain.utf16Offset(at));
            ASSERT_EQ(compressed.positionAtUtf16(plain.utf16Offset(at)), plain.positionAtUtf16(plain.utf16Offset(at)));
            const TextStore::BlockNumber number = plain.blockAt(at);
            ASSERT_TRUE(compressed.bytes(number) == plain.bytes(number));
        }
    }
    EXPECT_EQ(allBytes(compressed), all.sliced(plain.begin()));
    expectSoundBlocks(compressed);
}

TEST(TextStore, NeedsNoBytesToFindTheEndsOfALineThatGoesOnForBlocks)
{
    ViewedText store(2);
    store.append("first\n");
    const QByteArray piece(TextStore::blockCapacity, 'x');
    for (int count = 0; count < 400; ++count)
        store.append(piece);
    const TextStore::Position middle = store.end() / 2;
    const QByteArrayView held = store.bytes(store.blockAt(middle));
    const QByteArray before = held.toByteArray();
    EXPECT_EQ(store.lineBegin(middle), 6);
    EXPECT_EQ(store.lineEnd(middle), store.end());
    EXPECT_TRUE(held == before);
}

TEST(TextStore, HoldsAFloodOfOneWordInHardlyMoreThanItsPlainBlocks)
{
    ViewedText store(16);
    const QByteArray piece = QByteArray("y\n").repeated(32 * 1024);
    for (int count = 0; count < 16 * 64; ++count)
        store.append(piece);
    EXPECT_EQ(store.end(), 64 * mebibyte);
    EXPECT_TRUE(waitUntil([&] { return store.memory() < 5 * mebibyte; })) << store.memory();
    EXPECT_EQ(store.text(32 * mebibyte, 32 * mebibyte + 4), u"y\ny\n"_s);
}

TEST(TextStore, GivesItsMemoryBackToTheSystemWhenItIsCleared)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer keeps what is freed, to see it used again";
#endif
    RandomText random(5);
    QByteArray piece(mebibyte, Qt::Uninitialized);
    for (char &byte : piece)
        byte = static_cast<char>(' ' + random.below(64));
    for (const std::size_t plainBlocks : {std::size_t{2}, TextStorage().plainBlocks}) {
        ViewedText store(plainBlocks);
        const std::int64_t before = residentMemory();
        for (int count = 0; count < 100; ++count)
            store.append(piece);
        EXPECT_GT(residentMemory(), before + 70 * mebibyte);
        EXPECT_GT(store.memory(), 70 * mebibyte);
        store.clear();
        EXPECT_LT(store.memory(), mebibyte);
        EXPECT_TRUE(waitUntil([&] { return residentMemory() < before + 10 * mebibyte; }))
            << (residentMemory() - before) / mebibyte;
    }
}
