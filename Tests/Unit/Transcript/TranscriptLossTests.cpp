#include "Transcript/Transcript.h"

#include "Support/Mebibyte.h"
#include "Support/Printing.h"
#include "Support/Waiting.h"
#include "Unit/Transcript/MostAtRest.h"
#include "Unit/Transcript/RandomText.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::StringLiterals;

namespace
{

QString sizeText(std::int64_t bytes)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

/// One character for a reader, of so many bytes, which hardly compress: a letter under a pile of accents.
QByteArray pileOfAccents(RandomText &random, qsizetype size)
{
    QByteArray bytes(size % 2 == 0 ? "ee" : "e");
    while (bytes.size() < size) {
        const int accent = 0x300 + random.below(0x70);
        bytes += static_cast<char>(0xc0 | accent >> 6);
        bytes += static_cast<char>(0x80 | (accent & 0x3f));
    }
    return bytes;
}

TextStorage smallStorage()
{
    TextStorage storage;
    storage.plainBlocks = 4;
    storage.packedBytes = mebibyte;
    return storage;
}

} // namespace

TEST(TranscriptLoss, IsToldWhereTheDiskIsNearlyFull)
{
    TextStorage storage = smallStorage();
    storage.diskReserve = std::int64_t{1} << 60;
    std::atomic<int> losses = 0;
    Transcript transcript(storage, [&losses] { ++losses; });
    transcript.append("from the run before\n", OutputKind::ok);
    transcript.beginRecord();
    const std::int64_t begin = transcript.end();
    RandomText random(51);
    transcript.append(random.noise(8 * mebibyte), OutputKind::out);
    ASSERT_TRUE(waitUntil([&] { return losses >= 3; }));
    transcript.dropLost();
    const std::int64_t dropped = transcript.record().begin() - begin;
    EXPECT_GT(dropped, mebibyte);
    EXPECT_EQ(transcript.loss(),
              u"The first "_s + sizeText(dropped) + u" of the output were dropped: the disk is nearly full."_s);
}

TEST(TranscriptLoss, IsToldWhereTheDiskIsTooSlowForOneRunAndNotForTheNext)
{
    TextStorage storage = smallStorage();
    // Nothing may wait: whatever the disk has not taken yet is too much.
    storage.packedBytes = 2 * mebibyte;
    storage.waitingBytes = -mebibyte;
    storage.diskReserve = 0;
    storage.diskReserveShare = 0;
    std::atomic<int> losses = 0;
    Transcript transcript(storage, [&losses] { ++losses; });
    RandomText random(52);
    transcript.append(random.noise(8 * mebibyte), OutputKind::out);
    ASSERT_TRUE(waitUntil([&] { return losses >= 1; }));
    const QString behind = u" of the output were dropped: the disk is too slow."_s;
    EXPECT_TRUE(waitUntil([&] { return transcript.loss().endsWith(u" MB"_s + behind); }))
        << transcript.loss().toStdString();
    EXPECT_TRUE(transcript.loss().front().isDigit());
    transcript.dropLost();
    EXPECT_EQ(transcript.begin(), 0) << "it is not the front that was lost";
    transcript.clear();
    EXPECT_EQ(transcript.loss(), QString());
    transcript.append("next\n", OutputKind::out);
    EXPECT_EQ(transcript.loss(), QString());
}

TEST(TranscriptLoss, IsNotToldOfATextThatOnlyASnapshotHolds)
{
    TextStorage storage = smallStorage();
    storage.plainBlocks = 100;
    storage.packedBytes = 2 * mebibyte;
    storage.waitingBytes = -mebibyte;
    std::atomic<int> losses = 0;
    Transcript transcript(storage, [&losses] { ++losses; });
    RandomText random(54);
    constexpr qsizetype size = 80 * TextStore::blockCapacity;
    transcript.append(random.noise(size), OutputKind::out);
    const TextSnapshot snapshot = transcript.text().snapshot();
    transcript.clear();
    ASSERT_EQ(losses, 0) << "nothing is packed as yet";
    // Pushes the first text out of the plain blocks, and stays in them itself.
    transcript.append(random.noise(size), OutputKind::out);
    ASSERT_TRUE(waitUntil([&] { return losses >= 1; }));
    EXPECT_EQ(transcript.loss(), QString());
}

TEST(TranscriptLoss, TakesTheSegmentsAlongThatAreLostAndNoOther)
{
    constexpr qsizetype size = TextStore::blockCapacity;
    TextStorage storage = smallStorage();
    storage.folder = "/nowhere";
    std::atomic<int> losses = 0;
    Transcript transcript(storage, [&losses] { ++losses; });
    RandomText random(53);
    constexpr int count = 80;
    for (int number = 0; number < count; ++number)
        transcript.append(pileOfAccents(random, size), number % 2 == 0 ? OutputKind::out : OutputKind::err);
    ASSERT_EQ(transcript.segmentCount(), static_cast<std::size_t>(count)) << "hardly any characters";
    // Until so little is left that no more can be lost, however it is packed.
    ASSERT_TRUE(waitUntil([&] { return transcript.memory() < mostAtRest(storage); })) << transcript.memory();
    EXPECT_GE(losses, 2);
    transcript.dropLost();
    EXPECT_EQ(transcript.plainText().toUtf8().size(), transcript.end() - transcript.begin());
    const auto dropped = static_cast<std::size_t>(transcript.begin() / size);
    EXPECT_EQ(transcript.begin() % size, 0) << "a segment is a block here";
    EXPECT_GT(dropped, 5U);
    ASSERT_EQ(transcript.segmentCount(), count - dropped);
    for (std::size_t index = 0; index < transcript.segmentCount(); ++index) {
        EXPECT_EQ(transcript.segment(index).text.toUtf8().size(), size) << index;
        EXPECT_EQ(transcript.segment(index).kind, (index + dropped) % 2 == 0 ? OutputKind::out : OutputKind::err);
    }
}
