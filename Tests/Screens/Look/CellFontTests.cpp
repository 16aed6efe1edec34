#include "Look/CellFont.h"

#include "Look/Typography.h"

#include <QFontMetricsF>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace
{

/// Shapes so many different characters.
void shapeMany(CellFont &font, int count)
{
    for (int number = 0; number < count; ++number) {
        QString character = QChar(u'a' + number % 26);
        for (int rest = number / 26; rest > 0; rest /= 100)
            character += QChar(0x0300 + rest % 100);
        font.shaped(character.toUtf8());
    }
}

} // namespace

TEST(CellFont, RemembersTheCharactersOfAScreenfulAndForgetsThemBeforeTheyAreTooMany)
{
    CellFont font(Typography::monospaced(12));
    // A copy shares what the font remembers, as long as it does.
    const QList<QGlyphRun> glyphs = font.shaped("\u00e9")->glyphs;
    ASSERT_FALSE(glyphs.isEmpty());
    shapeMany(font, 2000);
    EXPECT_FALSE(glyphs.isDetached()) << "remembered";
    shapeMany(font, 10'000);
    EXPECT_TRUE(glyphs.isDetached()) << "forgotten";
    const QList<QGlyphRun> anew = font.shaped("\u00e9")->glyphs;
    ASSERT_EQ(anew.size(), glyphs.size());
    EXPECT_EQ(anew.first().glyphIndexes(), glyphs.first().glyphIndexes());
}

TEST(CellFont, TellsCharactersOfTheSameFirstByteApart)
{
    CellFont font(Typography::monospaced(12));
    const auto glyphsOf = [&font](const char *character) {
        return font.shaped(character)->glyphs.first().glyphIndexes();
    };
    const QList<quint32> first = glyphsOf("\u00e9");
    EXPECT_NE(glyphsOf("\u00df"), first);
    EXPECT_EQ(glyphsOf("\u00e9"), first);
}

TEST(CellFont, HasTheGlyphOfEveryPrintableAsciiCharacterAndTheMeasuresOfItsFont)
{
    const QFont type = Typography::monospaced(12);
    const CellFont font(type);
    for (char16_t character = u' '; character <= u'~'; ++character)
        EXPECT_EQ(font.glyph(character), font.rawFont().glyphIndexesForString(QChar(character)).first())
            << static_cast<int>(character);
    const QFontMetricsF metrics(type);
    EXPECT_EQ(font.cellWidth(), metrics.horizontalAdvance(u'0'));
    EXPECT_EQ(font.ascent(), std::ceil(metrics.ascent()));
    EXPECT_EQ(font.rowHeight(), std::ceil(font.ascent() + metrics.descent() + metrics.leading()));
}

TEST(CellFont, OpensNoMoreFontsOnceTheTimeForThatIsUsedUp)
{
    CellFont font(Typography::monospaced(12));
    {
        const CellFont::OpeningLimit limit(font, 1ns);
        EXPECT_NE(font.shaped("\u05d0"), nullptr) << "one goes on with each limit";
        EXPECT_FALSE(font.takeMissed());
        EXPECT_EQ(font.shaped("\u0e01"), nullptr);
        EXPECT_EQ(font.layout(u"\u0905\u0906"_s, Qt::LeftToRight), nullptr);
        EXPECT_NE(font.shaped("\u05d1"), nullptr) << "a font that is open";
        EXPECT_EQ(font.layout(u"\u05d0\u0e01"_s, Qt::RightToLeft), nullptr) << "in part";
        EXPECT_TRUE(font.takeMissed());
        EXPECT_FALSE(font.takeMissed());
    }
    EXPECT_NE(font.shaped("\u0e01"), nullptr);
    EXPECT_FALSE(font.takeMissed());
    const CellFont::OpeningLimit limit(font, 0ns);
    EXPECT_NE(font.shaped("\u0e02"), nullptr);
    EXPECT_EQ(font.shaped("\u10d0"), nullptr);
}
