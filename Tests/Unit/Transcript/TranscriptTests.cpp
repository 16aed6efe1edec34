#include "Transcript/Transcript.h"

#include "Unit/Transcript/RandomText.h"

#include <QFile>

#include <gtest/gtest.h>

#include <array>
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
    EXPECT_EQ(transcript.runAt(0).kind, OutputKind::out);
    EXPECT_EQ(transcript.runAt(2).end, 3);
    EXPECT_EQ(transcript.runAt(3).kind, OutputKind::info);
    EXPECT_EQ(transcript.runAt(7).kind, OutputKind::info);
    transcript.append("", OutputKind::ok);
    EXPECT_EQ(transcript.runAt(7).kind, OutputKind::ok);
    EXPECT_EQ(transcript.runAt(7).end, 7);
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
