#include "Text/WholePattern.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(WholePattern, MatchesTheWholeTextOnly)
{
    const WholePattern word(u"[a-z]+"_s);
    EXPECT_TRUE(word.matches(u"abc"_s));
    for (const QString &text : {QString(), u"abc1"_s, u"1abc"_s, u"abc\n"_s, u"abc\ndef"_s, u"\nabc"_s})
        EXPECT_FALSE(word.matches(text)) << text.toStdString();
}

TEST(WholePattern, HoldsAllAlternativesToTheWholeText)
{
    const WholePattern either(u"tcp|udp"_s);
    EXPECT_TRUE(either.matches(u"tcp"_s));
    EXPECT_TRUE(either.matches(u"udp"_s));
    EXPECT_FALSE(either.matches(u"tcpx"_s));
    EXPECT_FALSE(either.matches(u"xudp"_s));
}

TEST(WholePattern, TellsTheGroups)
{
    EXPECT_EQ(WholePattern(u"([0-9]+)-([0-9]+)"_s).match(u"12-34"_s).captured(2), u"34"_s);
    EXPECT_FALSE(WholePattern(u"([0-9]+)-([0-9]+)"_s).match(u"12-34-"_s).hasMatch());
}
