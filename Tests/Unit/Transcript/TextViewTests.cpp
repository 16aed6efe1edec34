#include "Transcript/TextView.h"

#include "Support/Printing.h"
#include "Text/Utf8.h"
#include "Unit/Transcript/RandomText.h"
#include "Unit/Transcript/ViewedText.h"

#include <gtest/gtest.h>

namespace
{

using Position = TextView::Position;

/// The same questions answered by all of the text in one piece.
struct PlainText {
    QByteArray bytes;
    Position begin = 0;

    Position codePointAt(Position position) const
    {
        while (position < bytes.size() && Utf8::isContinuation(bytes[position]))
            ++position;
        return position;
    }
    QByteArray between(Position from, Position to) const { return bytes.sliced(from, to - from); }
    QString text(Position from, Position to) const { return Utf8::toQString(between(from, to)); }
    Position lineBegin(Position position) const
    {
        return begin + between(begin, position).lastIndexOf('\n') + 1; // -1 where there is none
    }
    Position lineEnd(Position position) const
    {
        const Position lineFeed = bytes.indexOf('\n', position);
        return lineFeed < 0 ? bytes.size() : lineFeed + 1;
    }
};

/// Lines of every length in characters of every kind, some of many blocks.
QString manyLines(RandomText &random, int size)
{
    QString text;
    while (text.size() < size) {
        text += random.below(12) == 0 ? QString(random.below(300'000), QChar(u'l')) : random.text(random.below(400));
        if (random.below(2) == 0)
            text += u'\n';
    }
    return text;
}

void expectSame(const ViewedText &view, const PlainText &plain, Position at)
{
    ASSERT_EQ(view.lineBegin(at), plain.lineBegin(at)) << at;
    ASSERT_EQ(view.lineEnd(at), plain.lineEnd(at)) << at;
    const QString before = plain.text(plain.begin, at);
    ASSERT_EQ(view.utf16Offset(at), before.size()) << at;
    ASSERT_EQ(view.positionAtUtf16(before.size()), at);
    const Position to = plain.codePointAt(std::min<Position>(at + 1000, plain.bytes.size()));
    ASSERT_EQ(view.text(at, to), plain.text(at, to)) << at;
    if (at < view.end()) {
        const TextView::Block block = view.block(view.blockAt(at));
        ASSERT_TRUE(block.begin() <= at && at < block.end()) << at;
    }
}

} // namespace

TEST(TextView, FollowsAPlainModelAlsoWhereBlocksMeet)
{
    RandomText random(41);
    for (int round = 0; round < 4; ++round) {
        ViewedText view(2);
        PlainText plain;
        const QString text = manyLines(random, 700'000);
        for (const QByteArray &chunk : random.chunks(text, 20'000)) {
            view.append(chunk);
            plain.bytes += chunk;
        }
        plain.begin = plain.codePointAt(random.below(200'000));
        view.dropFront(plain.begin);
        ASSERT_GT(view.endBlock() - view.firstBlock(), 3);

        std::vector<Position> places{plain.begin, plain.bytes.size()};
        for (TextView::BlockNumber number = view.firstBlock(); number < view.endBlock(); ++number) {
            for (const Position distance : {-3, -2, -1, 0, 1, 2})
                places.push_back(view.block(number).begin() + distance);
        }
        for (int place = 0; place < 60; ++place)
            places.push_back(random.below(static_cast<int>(plain.bytes.size())));
        for (const Position place : places)
            expectSame(view, plain, plain.codePointAt(std::max(place, plain.begin)));

        EXPECT_EQ(view.text(0, plain.bytes.size() + 1), plain.text(plain.begin, plain.bytes.size()));
        EXPECT_EQ(view.text(view.end(), view.begin()), QString());
        EXPECT_EQ(view.utf16Offset(0), 0);
        EXPECT_EQ(view.utf16Offset(view.end() + 1), view.utf16Offset(view.end()));
        EXPECT_EQ(view.positionAtUtf16(-1), view.begin());
        EXPECT_EQ(view.positionAtUtf16(view.utf16Offset(view.end()) + 1), view.end());
    }
}

TEST(TextView, BeginsACodePointThatIsAskedForInItsMiddleWithTheNext)
{
    ViewedText view;
    view.append("a\U0001f433b\u00e9c");
    EXPECT_EQ(view.text(2, 5), QString());
    EXPECT_EQ(view.text(2, 6), QStringLiteral("b"));
    EXPECT_EQ(view.text(0, 2), QStringLiteral("a\U0001f433"));
    EXPECT_EQ(view.positionAtUtf16(2), 1) << "within a pair";
    EXPECT_EQ(view.positionAtUtf16(3), 5);
}

TEST(TextView, HasOneRunOfTheLastKindWhereItIsEmpty)
{
    ViewedText view;
    EXPECT_EQ(view.runAt(0).kind, OutputKind::out);
    view.append("gone", OutputKind::out);
    view.append("too", OutputKind::err);
    view.clear();
    const TextView::Run run = view.runAt(7);
    EXPECT_EQ(run.kind, OutputKind::err);
    EXPECT_EQ(run.begin, 7);
    EXPECT_EQ(run.end, 7);
    EXPECT_EQ(view.lineBegin(7), 7);
    EXPECT_EQ(view.lineEnd(7), 7);
    EXPECT_EQ(view.utf16Offset(7), 0);
    EXPECT_EQ(view.positionAtUtf16(3), 7);
    EXPECT_TRUE(view.snapshot().isEmpty());
}
