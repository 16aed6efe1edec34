#include "Transcript/Transcript.h"

#include "Support/Mebibyte.h"
#include "Support/Waiting.h"
#include "Unit/Transcript/MostAtRest.h"
#include "Unit/Transcript/RandomText.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <deque>

using namespace Qt::StringLiterals;

namespace
{

QString joined(const Transcript &transcript)
{
    QString text;
    for (std::size_t index = 0; index < transcript.segmentCount(); ++index)
        text += transcript.segment(index).text;
    return text;
}

} // namespace

TEST(Transcript, IsEmptyAtFirst)
{
    const Transcript transcript;
    EXPECT_TRUE(transcript.isEmpty());
    EXPECT_EQ(transcript.segmentCount(), 0U);
    EXPECT_EQ(transcript.plainText(), QString());
}

TEST(Transcript, MergesOutputOfOneKindAndStartsANewSegmentForAnother)
{
    Transcript transcript;
    transcript.append("a", OutputKind::out);
    const QUuid first = transcript.segment(0).id;
    transcript.append("b", OutputKind::out);
    ASSERT_EQ(transcript.segmentCount(), 1U);
    EXPECT_EQ(transcript.segment(0).text, u"ab"_s);
    EXPECT_EQ(transcript.segment(0).id, first);
    transcript.append("c", OutputKind::err);
    ASSERT_EQ(transcript.segmentCount(), 2U);
    EXPECT_EQ(transcript.segment(1).text, u"c"_s);
    EXPECT_EQ(transcript.segment(1).kind, OutputKind::err);
    EXPECT_NE(transcript.segment(1).id, first);
    EXPECT_EQ(transcript.plainText(), u"abc"_s);
}

TEST(Transcript, MakesASegmentOfAnEmptyTextOfANewKind)
{
    Transcript transcript;
    transcript.append("", OutputKind::info);
    EXPECT_FALSE(transcript.isEmpty());
    EXPECT_EQ(transcript.segmentCount(), 1U);
    EXPECT_EQ(transcript.segment(0).text, QString());
    transcript.append("", OutputKind::info);
    EXPECT_EQ(transcript.segmentCount(), 1U);
    transcript.append("", OutputKind::ok);
    EXPECT_EQ(transcript.segmentCount(), 2U);
}

TEST(Transcript, NeverTrimsItsOnlySegmentAndDropsItWhenAnotherKindFollows)
{
    Transcript transcript;
    for (int index = 0; index < 50; ++index)
        transcript.append(QByteArray(10'000, 'x'), OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 1U);
    EXPECT_EQ(transcript.plainText().size(), 500'000);
    transcript.append("end", OutputKind::info);
    ASSERT_EQ(transcript.segmentCount(), 1U);
    EXPECT_EQ(transcript.segment(0).text, u"end"_s);
    EXPECT_EQ(transcript.plainText(), u"end"_s);
}

TEST(Transcript, DropsExactlyOneSegmentPerAppendWhilePastTheBound)
{
    Transcript transcript;
    transcript.append("first", OutputKind::out);
    transcript.append("second", OutputKind::err);
    transcript.append(QByteArray(Transcript::characterBound, 'x'), OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 2U);
    EXPECT_EQ(transcript.segment(0).text, u"second"_s);
    transcript.append("", OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 1U);
    transcript.append("", OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 1U);
}

TEST(Transcript, KeepsExactlyTheBound)
{
    Transcript transcript;
    transcript.append("\r\n", OutputKind::err);
    transcript.append(QByteArray(Transcript::characterBound - 1, 'x'), OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 2U);
    transcript.append("x", OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 1U);
}

TEST(Transcript, CountsCharactersAsAReaderDoesAlsoWhenTheyAreCutBetweenAppends)
{
    Transcript transcript;
    transcript.append("1", OutputKind::err);
    for (int index = 0; index < Transcript::characterBound - 1; ++index) {
        transcript.append("e", OutputKind::out);
        transcript.append("\u0301", OutputKind::out);
    }
    EXPECT_EQ(transcript.segmentCount(), 2U);
    transcript.append("e", OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 1U);
}

TEST(Transcript, CountsACharacterThatTwoSegmentsShareInBoth)
{
    Transcript transcript;
    transcript.append("\r", OutputKind::err);
    transcript.append("\n" + QByteArray(Transcript::characterBound - 1, 'x'), OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 1U);
}

TEST(Transcript, FollowsAPlainModelThroughRandomAppends)
{
    struct Piece {
        QByteArray text;
        OutputKind kind;
    };
    RandomText random(11);
    const std::array kinds{OutputKind::out, OutputKind::err, OutputKind::info};
    Transcript transcript;
    std::deque<Piece> model;
    for (int round = 0; round < 1500; ++round) {
        const OutputKind kind = kinds[static_cast<std::size_t>(random.below(3))];
        const QByteArray text(random.below(40) == 0 ? random.below(300'000) : random.below(4000), 'x');
        if (model.empty() || model.back().kind != kind)
            model.push_back({QByteArray(), kind});
        model.back().text += text;
        qsizetype total = 0;
        for (const Piece &piece : model)
            total += piece.text.size();
        if (total > 400'000 && model.size() >= 2)
            model.pop_front();

        transcript.append(text, kind);
        ASSERT_EQ(transcript.segmentCount(), model.size());
        EXPECT_EQ(transcript.segment(0).text.size(), model.front().text.size());
        EXPECT_EQ(transcript.segment(0).kind, model.front().kind);
        EXPECT_EQ(transcript.segment(model.size() - 1).text.size(), model.back().text.size());
    }
    EXPECT_EQ(joined(transcript), transcript.plainText());
}

TEST(Transcript, TellsTheKindAtEveryPosition)
{
    Transcript transcript;
    transcript.append("out", OutputKind::out);
    transcript.append("", OutputKind::err);
    transcript.append("info", OutputKind::info);
    EXPECT_EQ(transcript.text().runAt(0).kind, OutputKind::out);
    EXPECT_EQ(transcript.text().runAt(2).end, 3);
    EXPECT_EQ(transcript.text().runAt(3).kind, OutputKind::info);
    EXPECT_EQ(transcript.text().runAt(7).kind, OutputKind::info);
    transcript.append("", OutputKind::ok);
    EXPECT_EQ(transcript.text().runAt(7).kind, OutputKind::ok);
    EXPECT_EQ(transcript.text().runAt(7).end, 7);
}

TEST(Transcript, StartsAnewAfterAClear)
{
    Transcript transcript;
    transcript.append(QByteArray(Transcript::characterBound, 'x'), OutputKind::out);
    transcript.clear();
    EXPECT_TRUE(transcript.isEmpty());
    EXPECT_EQ(transcript.plainText(), QString());
    transcript.append("a", OutputKind::err);
    transcript.append("b", OutputKind::out);
    EXPECT_EQ(transcript.segmentCount(), 2U);
    EXPECT_EQ(transcript.plainText(), u"ab"_s);
}

TEST(Transcript, KeepsInItsRecordWhatItDropsOfARun)
{
    Transcript transcript;
    transcript.append("before\n", OutputKind::info);
    transcript.beginRecord();
    EXPECT_TRUE(transcript.record().isEmpty());
    transcript.append("$ run\n", OutputKind::info);
    const QByteArray flood = QByteArray("0123456789\n").repeated(60'000);
    transcript.append(flood, OutputKind::out);
    transcript.append("\nexit status 0\n", OutputKind::ok);
    EXPECT_EQ(transcript.plainText(), u"\nexit status 0\n"_s);
    const TextView &record = transcript.record();
    const QString all = u"$ run\n"_s + QString::fromLatin1(flood) + u"\nexit status 0\n"_s;
    EXPECT_EQ(record.text(record.begin(), record.end()), all);
    EXPECT_EQ(record.runAt(record.begin()).kind, OutputKind::info);
    EXPECT_EQ(record.runAt(record.begin() + 6).kind, OutputKind::out);
    EXPECT_EQ(record.runAt(record.end() - 1).kind, OutputKind::ok);
    EXPECT_EQ(record.runAt(record.end() - 1).begin, record.end() - 15);
}

TEST(Transcript, BeginsAnotherRecordWithTheNextRunAndStillShowsTheRunBefore)
{
    Transcript transcript;
    transcript.beginRecord();
    transcript.append("first, without a line end", OutputKind::out);
    transcript.beginRecord();
    EXPECT_TRUE(transcript.record().isEmpty());
    EXPECT_EQ(transcript.record().firstBlock(), transcript.record().endBlock());
    EXPECT_EQ(transcript.plainText(), u"first, without a line end"_s);
    // The line that both runs share moves on to the next block together.
    transcript.append(QByteArray(TextStore::blockCapacity - 1000, 's'), OutputKind::err);
    transcript.append(QByteArray(2000, 't') + '\n' + QByteArray(TextStore::blockCapacity, 'u'), OutputKind::err);
    const TextView &record = transcript.record();
    EXPECT_EQ(record.end() - record.begin(), 2 * TextStore::blockCapacity + 1001);
    EXPECT_TRUE(record.text(record.begin(), record.end()).startsWith(u"sss"_s));
    EXPECT_EQ(record.runAt(record.begin()).kind, OutputKind::err);
    EXPECT_EQ(record.runAt(record.begin()).begin, record.begin());
    EXPECT_EQ(record.utf16Offset(record.end()), record.end() - record.begin());
    EXPECT_EQ(record.lineBegin(record.begin() + 5), record.begin());
}

TEST(Transcript, EndsItsRecordWithAClear)
{
    Transcript transcript;
    transcript.beginRecord();
    transcript.append(QByteArray(3'000'000, 'x'), OutputKind::out);
    transcript.append("end", OutputKind::ok);
    transcript.clear();
    EXPECT_TRUE(transcript.record().isEmpty());
    EXPECT_EQ(transcript.record().text(0, transcript.end()), QString());
    transcript.append("more", OutputKind::out);
    EXPECT_EQ(transcript.record().text(0, transcript.end()), u"more"_s);
    EXPECT_LT(transcript.memory(), 1'000'000);
}

TEST(Transcript, KeepsTheKindOfEveryPieceOfItsRecordWhereverThatIs)
{
    RandomText random(12);
    TextStorage storage;
    storage.plainBlocks = 2;
    Transcript transcript(storage);
    QByteArray text;
    QByteArray kinds; // of each byte
    for (int round = 0; round < 10'000; ++round) {
        const auto kind = static_cast<OutputKind>(random.below(6));
        const QByteArray piece =
            random.below(200) == 0 ? QByteArray(random.below(60'000), 'l') : random.text(random.below(8)).toUtf8();
        transcript.append(piece, kind);
        text += piece;
        kinds += QByteArray(piece.size(), static_cast<char>(kind));
    }
    const TextView &record = transcript.record();
    ASSERT_EQ(record.end(), text.size());
    ASSERT_GT(record.endBlock(), 8);
    for (TextView::Position at = 0; at < record.end();) {
        const TextView::Run run = record.runAt(at);
        ASSERT_EQ(run.begin, at);
        ASSERT_GT(run.end, at);
        ASSERT_EQ(kinds.sliced(at, run.end - at), QByteArray(run.end - at, static_cast<char>(run.kind))) << at;
        at = run.end;
    }
    EXPECT_TRUE(record.text(0, record.end()).toUtf8() == text);
}

TEST(Transcript, TellsHowMuchOfTheRunWasDroppedWhereNothingCanBeFiled)
{
    TextStorage storage;
    storage.plainBlocks = 4;
    storage.packedBytes = mebibyte;
    storage.folder = "/nowhere";
    std::atomic<int> losses = 0;
    Transcript transcript(storage, [&losses] { ++losses; });
    transcript.append("from the run before\n", OutputKind::ok);
    transcript.beginRecord();
    EXPECT_EQ(transcript.loss(), QString());
    RandomText random(13);
    QByteArray noise(16 * mebibyte, Qt::Uninitialized);
    for (char &byte : noise)
        byte = static_cast<char>(' ' + random.below(64));
    transcript.append(noise, OutputKind::out);
    // Until so little is left that no more can be lost, however it is packed.
    ASSERT_TRUE(waitUntil([&] { return transcript.memory() < mostAtRest(storage); })) << transcript.memory();
    EXPECT_GE(losses, 5);
    transcript.dropLost();
    EXPECT_GT(transcript.record().begin(), 5 * mebibyte);
    EXPECT_EQ(transcript.begin(), transcript.record().begin());
    EXPECT_EQ(transcript.segment(0).text, transcript.plainText());
    const QRegularExpression sentence(
        u"^The first [0-9]+\\.[0-9] MB of the output were dropped: no temporary file can be "
        "written\\.$"_s);
    EXPECT_TRUE(sentence.match(transcript.loss()).hasMatch()) << transcript.loss().toStdString();
    transcript.beginRecord();
    EXPECT_EQ(transcript.loss(), QString());
}
