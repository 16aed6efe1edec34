#include "OutputPane/OutputPaneMarks.h"

#include "Support/Printing.h"
#include "Transcript/Transcript.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

using Position = TextView::Position;
using Match = std::pair<Position, Position>;

class OutputPaneMarksTest : public testing::Test
{
protected:
    std::vector<Match> between(Position from, Position to) const
    {
        std::vector<Match> found;
        for (const TextMatch &match : marks.between(from, to))
            found.emplace_back(match.begin, match.end);
        return found;
    }

    void look(const QString &text) { marks.setPattern(TextPattern(text, Qt::CaseSensitive)); }

    Transcript transcript;
    OutputPaneMarks marks{transcript.text()};
};

} // namespace

TEST_F(OutputPaneMarksTest, AreTheSameWhereverAViewBeginsAndEnds)
{
    const QString text = u"\u4e2d\u00e9a\u00e9 \U0001f43ba \u00e9a\u4e2da\u00e9a\n"_s.repeated(4);
    const QByteArray bytes = text.toUtf8();
    transcript.append(bytes, OutputKind::out);
    for (const QString &wanted : {u"a"_s, u"\u00e9a"_s, u"\U0001f43ba"_s, u"a\n\u4e2d"_s}) {
        look(wanted);
        const QByteArray needle = wanted.toUtf8();
        std::vector<Match> all;
        for (qsizetype at = bytes.indexOf(needle); at >= 0; at = bytes.indexOf(needle, at + needle.size()))
            all.emplace_back(at, at + needle.size());
        for (Position from = 0; from <= bytes.size(); ++from) {
            for (Position to = from; to <= bytes.size(); to += 3) {
                std::vector<Match> expected;
                for (const Match &match : all) {
                    if (match.first < to && match.second > from)
                        expected.push_back(match);
                }
                EXPECT_EQ(between(from, to), expected) << from << " to " << to;
            }
        }
    }
}

TEST_F(OutputPaneMarksTest, AreNoneWithoutATextOrAPattern)
{
    look(u"a"_s);
    EXPECT_TRUE(between(0, 0).empty());
    transcript.append("aaa", OutputKind::out);
    EXPECT_EQ(between(0, 3).size(), 3);
    look({});
    EXPECT_TRUE(between(0, 3).empty());
}

TEST_F(OutputPaneMarksTest, AreFoundInTheSecondBlockAsInTheFirst)
{
    transcript.append(QByteArray("0123456789 abcde\n").repeated(10'000), OutputKind::out);
    const Position begin = transcript.end();
    ASSERT_GT(transcript.text().blockAt(begin), 0);
    transcript.append("one \u00e9 two\n", OutputKind::out);
    look(u"two"_s);
    EXPECT_EQ(between(begin, transcript.end()), (std::vector<Match>{{begin + 7, begin + 10}}));
    EXPECT_EQ(between(begin + 5, transcript.end()), (std::vector<Match>{{begin + 7, begin + 10}})) << "within a letter";
    EXPECT_TRUE(between(begin, begin + 7).empty());
    EXPECT_TRUE(between(begin + 10, transcript.end()).empty());
}
