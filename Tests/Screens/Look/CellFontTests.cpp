#include "Look/CellFont.h"

#include "Look/Typography.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

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
    const QList<QGlyphRun> glyphs = font.shaped("\u00e9").glyphs;
    ASSERT_FALSE(glyphs.isEmpty());
    shapeMany(font, 2000);
    EXPECT_FALSE(glyphs.isDetached()) << "remembered";
    shapeMany(font, 10'000);
    EXPECT_TRUE(glyphs.isDetached()) << "forgotten";
    const QList<QGlyphRun> anew = font.shaped("\u00e9").glyphs;
    ASSERT_EQ(anew.size(), glyphs.size());
    EXPECT_EQ(anew.first().glyphIndexes(), glyphs.first().glyphIndexes());
}

TEST(CellFont, TellsCharactersOfTheSameFirstByteApart)
{
    CellFont font(Typography::monospaced(12));
    const auto glyphsOf = [&font](const char *character) {
        return font.shaped(character).glyphs.first().glyphIndexes();
    };
    const QList<quint32> first = glyphsOf("\u00e9");
    EXPECT_NE(glyphsOf("\u00df"), first);
    EXPECT_EQ(glyphsOf("\u00e9"), first);
}
