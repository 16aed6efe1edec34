#include "Find/TextSearch.h"

#include "Unit/Transcript/FiledText.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace
{

using Position = TextSearch::Position;

constexpr Position stretch = TextSearch::stretchSize;

std::unique_ptr<TextSearch> searchFor(const QString &wanted, const TextView &text)
{
    auto search = std::make_unique<TextSearch>(TextPattern(wanted, Qt::CaseInsensitive), [] { return false; });
    search->setText(text.snapshot());
    return search;
}

std::int64_t countAll(TextSearch &search)
{
    while (!search.isComplete())
        search.countOn();
    return search.count();
}

/// What a search must find, found in the plainest way.
std::vector<TextMatch> matchesIn(const QByteArray &bytes, const QByteArray &wanted)
{
    std::vector<TextMatch> found;
    for (qsizetype at = bytes.indexOf(wanted); at >= 0; at = bytes.indexOf(wanted, at + wanted.size()))
        found.push_back({at, at + wanted.size()});
    return found;
}

} // namespace

class TextSearchTest : public FiledTextTest
{
protected:
    /// Lines of a few letters, so that there are matches everywhere.
    QByteArray fewLetters(qsizetype size)
    {
        QByteArray text(size, Qt::Uninitialized);
        for (char &letter : text)
            letter = "aaaaaabcd\n"[random.below(10)];
        return text;
    }
};

TEST_F(TextSearchTest, WalksThroughEveryMatchForwardAndBackward)
{
    const QByteArray bytes = fewLetters(3 * stretch + 12'345);
    ViewedText text(storage());
    text.append(bytes);
    for (const QByteArray &wanted :
         {QByteArray("aaaaaaaaabaaaaa"), QByteArray("bcdd"), QByteArray("aaaaaaaaaaaaaaaaaaa")}) {
        const std::vector<TextMatch> expected = matchesIn(bytes, wanted);
        ASSERT_GT(expected.size(), 2U);
        const auto search = searchFor(QString::fromUtf8(wanted), text);
        EXPECT_EQ(countAll(*search), static_cast<std::int64_t>(expected.size()));
        std::int64_t number = 0;
        for (const TextMatch &match : expected) {
            EXPECT_EQ(search->firstFrom(number == 0 ? 0 : expected[static_cast<std::size_t>(number) - 1].end), match);
            EXPECT_EQ(search->countBefore(match.begin), number);
            ++number;
        }
        for (auto match = expected.rbegin(); match != expected.rend(); ++match)
            EXPECT_EQ(search->lastBefore(match == expected.rbegin() ? text.end() : std::prev(match)->begin), *match);
        EXPECT_EQ(search->firstFrom(expected.back().end), expected.front()) << "on from the beginning";
        EXPECT_EQ(search->lastBefore(expected.front().begin), expected.back()) << "on from the end";
    }
}

TEST_F(TextSearchTest, FindsBeforeAnythingIsCounted)
{
    QByteArray bytes(5 * stretch, 'x');
    bytes.replace(2 * stretch + 100, 3, "one");
    ViewedText text(storage());
    text.append(bytes);
    const auto search = searchFor(u"ONE"_s, text);
    const TextMatch expected{2 * stretch + 100, 2 * stretch + 103};
    EXPECT_EQ(search->firstFrom(4 * stretch), expected);
    EXPECT_EQ(search->lastBefore(100), expected);
    EXPECT_EQ(search->firstFrom(0), expected);
    EXPECT_EQ(search->firstFrom(expected.begin), expected);
    EXPECT_EQ(search->firstFrom(expected.begin + 1), expected) << "round, to what is before in the same stretch";
    EXPECT_EQ(search->lastBefore(expected.begin + 1), expected);
    EXPECT_EQ(search->lastBefore(expected.begin), expected);
    EXPECT_EQ(countAll(*search), 1);
}

TEST_F(TextSearchTest, FindsTheFirstAndTheLastByteWhereverAStretchEnds)
{
    for (const Position size : {Position{1}, stretch - 1, stretch, stretch + 1, 2 * stretch, 2 * stretch + 1}) {
        ViewedText text(storage());
        QByteArray bytes(size, 'x');
        bytes.back() = 'z';
        bytes.front() = 'a';
        text.append(bytes);
        const auto last = searchFor(QString(QChar::fromLatin1(bytes.back())), text);
        const TextMatch expected{size - 1, size};
        EXPECT_EQ(last->firstFrom(0), expected) << size;
        EXPECT_EQ(last->lastBefore(size), expected) << size;
        EXPECT_EQ(countAll(*last), 1) << size;
        EXPECT_EQ(last->countBefore(size - 1), 0) << size;
        EXPECT_EQ(last->countBefore(size), 1) << size;
        EXPECT_EQ(countAll(*searchFor(QString(QChar::fromLatin1(bytes.front())), text)), 1) << size;
    }
}

TEST_F(TextSearchTest, CountsMatchesThatCouldOverlapOnceAlsoWhereStretchesMeet)
{
    ViewedText text(storage());
    text.append(QByteArray(3 * stretch + 10, 'a'));
    for (const int size : {2, 3, 7, 1000}) {
        const auto search = searchFor(QString(size, u'a'), text);
        EXPECT_EQ(countAll(*search), text.end() / size) << size;
    }
    // The stretches found in another order have the same count in the end.
    const auto search = searchFor(u"aaaaaaa"_s, text);
    search->lastBefore(2 * stretch + 1);
    search->firstFrom(stretch);
    EXPECT_EQ(countAll(*search), text.end() / 7);
}

TEST_F(TextSearchTest, FindsWhatSpansBlocksWhereverTheyAreKept)
{
    const QByteArray bytes = lines(8 * mebibyte);
    ViewedText text(storage());
    fill(text, bytes); // filed, packed in memory, and plain
    ASSERT_GT(text.endBlock(), 60);
    for (TextView::BlockNumber number = 1; number < text.endBlock(); number += 3) {
        const Position border = text.block(number).begin();
        const TextMatch expected{border - 12, border + 12};
        const auto search = searchFor(QString::fromUtf8(bytes.sliced(border - 12, 24)), text);
        EXPECT_EQ(search->firstFrom(0), expected) << "block " << number;
    }
    for (Position border = stretch; border < text.end(); border += 5 * stretch) {
        const auto search = searchFor(QString::fromUtf8(bytes.sliced(border - 1, 24)), text);
        EXPECT_EQ(search->lastBefore(text.end()), (TextMatch{border - 1, border + 23}));
    }
}

TEST_F(TextSearchTest, FindsATextOfAMegabyte)
{
    const QByteArray bytes = lines(6 * mebibyte);
    ViewedText text(storage());
    fill(text, bytes);
    const auto search = searchFor(QString::fromUtf8(bytes.sliced(1'500'000, 1'000'000)), text);
    EXPECT_EQ(search->firstFrom(text.end()), (TextMatch{1'500'000, 2'500'000}));
    EXPECT_EQ(countAll(*search), 1);
    const auto another = searchFor(QString::fromUtf8(bytes.sliced(1'500'000, 1'000'000)) + u'!', text);
    EXPECT_EQ(countAll(*another), 0);
}

TEST_F(TextSearchTest, KeepsItsCountWhileTextArrivesAndItsFrontIsDropped)
{
    const QByteArray bytes = fewLetters(4 * stretch);
    for (const QByteArray &wanted : {QByteArray("a"), QByteArray("aabaa"), QByteArray("aaaaaaaaaa")}) {
        ViewedText text(storage());
        const auto search = searchFor(QString::fromUtf8(wanted), text);
        EXPECT_EQ(countAll(*search), 0);
        for (qsizetype at = 0; at < bytes.size();) {
            const qsizetype size = std::min<qsizetype>(bytes.size() - at, 1 + random.below(90'000));
            text.append(QByteArrayView(bytes).sliced(at, size));
            at += size;
            search->setText(text.snapshot());
            if (random.below(2) == 0)
                countAll(*search);
        }
        EXPECT_EQ(countAll(*search), static_cast<std::int64_t>(matchesIn(bytes, wanted).size()));
        const auto afresh = [&] { return countAll(*searchFor(QString::fromUtf8(wanted), text)); };
        for (const Position begin : {Position{1}, Position{7000}, stretch - 3, stretch + 1, 3 * stretch + 99}) {
            text.dropFront(begin);
            search->setText(text.snapshot());
            EXPECT_EQ(countAll(*search), afresh()) << "from " << begin;
        }
        text.clear();
        search->setText(text.snapshot());
        EXPECT_EQ(countAll(*search), 0);
        EXPECT_FALSE(search->firstFrom(0));
        EXPECT_FALSE(search->lastBefore(text.end()));
        text.append("aabaaaaaaaaaaaaa");
        search->setText(text.snapshot());
        EXPECT_EQ(countAll(*search), afresh());
    }
}

TEST_F(TextSearchTest, BeginsNoMatchWithinACharacterWhereverTheStretchesMeet)
{
    const QString bear = u"\U0001f43b"_s;
    for (int shift = 0; shift < 4; ++shift) {
        ViewedText text(storage());
        text.append(QByteArray(shift, 'x'));
        text.append(bear.repeated(static_cast<int>(3 * stretch / 4)).toUtf8());
        EXPECT_EQ(countAll(*searchFor(bear, text)), 3 * stretch / 4);
    }
}

TEST_F(TextSearchTest, FindsWhatStandsRightBehindACharacterWithinWhichTwoStretchesMeet)
{
    for (const char *character : {"\u00e9", "\u4e2d", "\U0001f43b"}) {
        for (Position shift = 0; shift < 5; ++shift) {
            ViewedText text(storage());
            // In the other case, so that it matters which bytes are taken for a character.
            text.append(QByteArray(stretch - shift, 'x') + character + "NEEDLE");
            EXPECT_EQ(countAll(*searchFor(u"needle"_s, text)), 1) << character << shift;
        }
    }
}

TEST_F(TextSearchTest, PassesOverWhatIsLost)
{
    ViewedText text(storage(u"/no such folder"_s));
    QByteArray bytes = lines(12 * mebibyte);
    bytes.replace(bytes.size() - 100, 6, "needle");
    text.append(bytes);
    EXPECT_TRUE(waitUntil([&] { return text.loss().cause != BlockStore::Cause::none; }));
    const auto search = searchFor(u"needle"_s, text);
    EXPECT_EQ(search->firstFrom(text.begin()), (TextMatch{bytes.size() - 100, bytes.size() - 94}));
    EXPECT_EQ(countAll(*search), 1);
    EXPECT_EQ(countAll(*searchFor(u"output"_s, text)), 0) << "the sentence in place of what is lost is not searched";
}

TEST_F(TextSearchTest, GivesUpBetweenTwoStretches)
{
    ViewedText text(storage());
    text.append(QByteArray(10 * stretch, 'x') + "end");
    int asked = 0;
    TextSearch search(TextPattern(u"end"_s, Qt::CaseInsensitive), [&asked] { return ++asked > 3; });
    search.setText(text.snapshot());
    EXPECT_FALSE(search.firstFrom(0));
    EXPECT_LE(asked, 4);
}

TEST_F(TextSearchTest, HoldsNothingOfATextThatItReleased)
{
    ViewedText text(storage());
    text.append("output\n");
    const auto search = searchFor(u"output"_s, text);
    EXPECT_EQ(countAll(*search), 1);
    const TextPiece piece = text.snapshot().pieceAt(0);
    const auto holders = piece.block.use_count();
    search->releaseText();
    EXPECT_EQ(piece.block.use_count(), holders - 1);
}
