#include "Text/DisplayClusters.h"

#include "Support/Printing.h"
#include "Text/Utf8.h"

#include <QString>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

using Look = DisplayCluster::Look;

struct Character {
    QString text;
    Look look;
    int cells;
};

} // namespace

TEST(DisplayClusters, TakeEveryCharacterAsAReaderSeesIt)
{
    for (const Character &character : {
             Character{u"a"_s, Look::plain, 1},
             Character{u"~"_s, Look::plain, 1},
             Character{u"\t"_s, Look::tab, 1},
             Character{u"\n"_s, Look::lineEnd, 0},
             Character{u"\r\n"_s, Look::lineEnd, 0},
             Character{u"\u00e9"_s, Look::glyphs, 1},
             Character{u"e\u0301"_s, Look::glyphs, 1},
             Character{u"\u4e2d"_s, Look::glyphs, 2},
             Character{u"\uff21"_s, Look::glyphs, 2},
             Character{u"\U0001f600"_s, Look::glyphs, 2},
             Character{u"\U0001f469\u200d\U0001f52c"_s, Look::glyphs, 2},
             Character{u"\U0001f1e9\U0001f1ea"_s, Look::glyphs, 2},
             Character{u"\u2764\ufe0f"_s, Look::glyphs, 2},
             Character{u"\u0915"_s, Look::joined, 1},
             Character{u"\u0915\u094d\u0937"_s, Look::joined, 2},
             Character{u"\u05d0"_s, Look::rightToLeft, 1},
             Character{u"\u0627"_s, Look::rightToLeft, 1},
         }) {
        const QByteArray bytes = character.text.toUtf8();
        DisplayClusters clusters(bytes);
        DisplayCluster cluster;
        ASSERT_TRUE(clusters.next(cluster));
        EXPECT_EQ(cluster.size, bytes.size()) << bytes.toHex().toStdString();
        EXPECT_EQ(cluster.look, character.look) << bytes.toHex().toStdString();
        EXPECT_EQ(cluster.cells, character.cells) << bytes.toHex().toStdString();
        EXPECT_FALSE(clusters.next(cluster));
    }
}

TEST(DisplayClusters, ShowByNameWhatMustNotActOrHasNoShape)
{
    struct Named {
        QString text;
        QByteArray name;
    };
    for (const Named &named : {Named{u"\x1b"_s, "^["}, Named{QString(QChar(0)), "^@"}, Named{u"\x07"_s, "^G"},
                               Named{u"\x7f"_s, "^?"}, Named{u"\r"_s, "^M"}, Named{u"\u0085"_s, "U+0085"},
                               Named{u"\u009b"_s, "U+009B"}, Named{u"\u202e"_s, "U+202E"}, Named{u"\u2066"_s, "U+2066"},
                               Named{u"\u200b"_s, "U+200B"}, Named{u"\u2028"_s, "U+2028"}, Named{u"\ufeff"_s, "U+FEFF"},
                               Named{u"\u00ad"_s, "U+00AD"}, Named{u"\u3164"_s, "U+3164"}, Named{u"\u115f"_s, "U+115F"},
                               Named{u"\u034f"_s, "U+034F"}, Named{u"\U000e0061"_s, "U+E0061"}}) {
        const QByteArray bytes = named.text.toUtf8();
        DisplayClusters clusters(bytes);
        DisplayCluster cluster;
        ASSERT_TRUE(clusters.next(cluster));
        EXPECT_EQ(cluster.look, Look::symbol) << named.name.toStdString();
        EXPECT_EQ(outputSymbolName(cluster.first), named.name);
        EXPECT_EQ(cluster.cells, named.name.size());
    }
}

TEST(DisplayClusters, BoundAPileOfAccents)
{
    const QByteArray pile = (u"e"_s + QString(1000, QChar(0x0301))).toUtf8();
    DisplayClusters clusters(pile);
    DisplayCluster cluster;
    qsizetype size = 0;
    while (clusters.next(cluster)) {
        EXPECT_LE(cluster.size, 64);
        EXPECT_EQ(cluster.begin, size);
        size += cluster.size;
    }
    EXPECT_EQ(size, pile.size());
}

TEST(DisplayClusters, ReadNothingBeyondTheEndOfTheirText)
{
    struct Cut {
        QByteArray whole;
        qsizetype size;
        Look look;
    };
    for (const Cut &cut : {Cut{"a\u0301", 1, Look::plain}, Cut{"\r\n", 1, Look::symbol},
                           Cut{"\u4e2d\u0301", 3, Look::glyphs}, Cut{"\u05d0\u05b0", 2, Look::rightToLeft}}) {
        DisplayClusters clusters(QByteArrayView(cut.whole).first(cut.size));
        DisplayCluster cluster;
        ASSERT_TRUE(clusters.next(cluster));
        EXPECT_EQ(cluster.size, cut.size) << cut.whole.toHex().toStdString();
        EXPECT_EQ(cluster.look, cut.look) << cut.whole.toHex().toStdString();
        EXPECT_FALSE(clusters.next(cluster));
    }
}

TEST(DisplayClusters, JoinTheScriptsWhoseLettersChangeWithTheirNeighboursAndNoOthers)
{
    const auto looksJoined = [](char32_t character) {
        const QByteArray bytes = QString::fromUcs4(&character, 1).toUtf8();
        DisplayClusters clusters(bytes);
        DisplayCluster cluster;
        EXPECT_TRUE(clusters.next(cluster));
        return cluster.look == Look::joined;
    };
    for (const auto &[first, last] : std::initializer_list<std::pair<char32_t, char32_t>>{{0x0900, 0x0dff},
                                                                                          {0x0f00, 0x109f},
                                                                                          {0x1700, 0x18af},
                                                                                          {0x1a20, 0x1cff},
                                                                                          {0xa800, 0xa8ff},
                                                                                          {0xa980, 0xaaff},
                                                                                          {0xabc0, 0xabff},
                                                                                          {0x11000, 0x11fff}}) {
        EXPECT_FALSE(looksJoined(first - 1)) << std::hex << std::uint32_t{first};
        EXPECT_TRUE(looksJoined(first)) << std::hex << std::uint32_t{first};
        EXPECT_TRUE(looksJoined(last)) << std::hex << std::uint32_t{last};
        EXPECT_FALSE(looksJoined(last + 1)) << std::hex << std::uint32_t{last};
    }
}

TEST(DisplayClusters, GiveALetterTwoCellsWithAMarkBesideItAndOneWithAMarkAboveIt)
{
    const auto cellsOf = [](const QString &text) {
        const QByteArray bytes = text.toUtf8();
        DisplayClusters clusters(bytes);
        DisplayCluster cluster;
        EXPECT_TRUE(clusters.next(cluster));
        EXPECT_EQ(cluster.size, bytes.size());
        return cluster.cells;
    };
    EXPECT_EQ(cellsOf(u"\u0915"_s), 1);
    EXPECT_EQ(cellsOf(u"\u0915\u0940"_s), 2) << "beside it";
    EXPECT_EQ(cellsOf(u"\u0915\u0947"_s), 1) << "above it";
    EXPECT_EQ(cellsOf(u"\u0915\u0940\u0901"_s), 2) << "beside it, and one above";
}

TEST(DisplayClusters, GiveALetterOfAFlagTwoCells)
{
    for (const auto &[character, cells] :
         std::initializer_list<std::pair<char32_t, int>>{{0x1f1e5, 1}, {0x1f1e6, 2}, {0x1f1ff, 2}}) {
        const QByteArray bytes = QString::fromUcs4(&character, 1).toUtf8();
        DisplayClusters clusters(bytes);
        DisplayCluster cluster;
        ASSERT_TRUE(clusters.next(cluster));
        EXPECT_EQ(cluster.cells, cells) << std::hex << std::uint32_t{character};
    }
}

TEST(DisplayClusters, NameAControlByItsKeyAndAnyOtherByItsNumber)
{
    EXPECT_EQ(outputSymbolName(0x1f), "^_");
    EXPECT_EQ(outputSymbolName(0x20), "U+0020");
    EXPECT_EQ(outputSymbolName(0x7e), "U+007E");
    EXPECT_EQ(outputSymbolName(0x7f), "^?");
    EXPECT_EQ(outputSymbolName(0x80), "U+0080");
}

TEST(DisplayClusters, TakeThirtyTwoCodePointsTogetherAndNoMore)
{
    for (const int marks : {31, 32}) {
        const QByteArray bytes = (u"a"_s + QString(marks, QChar(0x0301))).toUtf8();
        DisplayClusters clusters(bytes);
        DisplayCluster cluster;
        ASSERT_TRUE(clusters.next(cluster));
        EXPECT_EQ(cluster.size, 1 + 2 * 31);
        EXPECT_EQ(clusters.next(cluster), marks > 31);
    }
}
