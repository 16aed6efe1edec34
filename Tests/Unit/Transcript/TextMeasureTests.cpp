#include "Transcript/TextMeasure.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{

struct Measured {
    std::int32_t lineFeeds = 0;
    std::int32_t utf16Length = 0;
    std::int32_t cells = 0;
    std::int32_t longestEndedLine = 0;
    std::int32_t openLine = 0;

    friend bool operator==(const Measured &, const Measured &) = default;
};

/// One code point after the other.
Measured measuredSlowly(const QString &text)
{
    Measured result;
    result.utf16Length = static_cast<std::int32_t>(text.size());
    const QList<uint> characters = text.toUcs4();
    for (qsizetype at = 0; at < characters.size(); ++at) {
        const char32_t character = characters[at];
        if (character == U'\n') {
            ++result.lineFeeds;
            result.longestEndedLine = std::max(result.longestEndedLine, result.openLine);
            result.openLine = 0;
            continue;
        }
        std::int32_t width = character < 0x20 || character == 0x7f || character >= 0x800 ? 2 : 1;
        if (character == U'\t')
            width = 8 - result.openLine % 8;
        if (character == U'\r' && at + 1 < characters.size() && characters[at + 1] == U'\n')
            width = 0;
        result.openLine += width;
        result.cells += width;
    }
    return result;
}

Measured found(const TextMeasure &measure)
{
    return {measure.lineFeeds(), measure.utf16Length(), measure.cells(), measure.longestEndedLine(),
            measure.openLine()};
}

QString randomText(std::mt19937 &random, int length)
{
    const QStringList pieces{u"a"_s,      u" "_s,      u"plain words"_s, u"\n"_s,      u"\r\n"_s, u"\r"_s,  u"\t"_s,
                             u"\u00e9"_s, u"\u4e2d"_s, u"\U0001f642"_s,  u"\x1b[1m"_s, u"\x7f"_s, u"\n\n"_s};
    QString text;
    while (text.size() < length) {
        // Stretches of one sort, as in real output, and mixtures.
        const QString &piece = pieces[static_cast<qsizetype>(random() % static_cast<unsigned>(pieces.size()))];
        text += piece.repeated(static_cast<qsizetype>(random() % (random() % 4 == 0 ? 400 : 3)));
    }
    return text;
}

} // namespace

TEST(TextMeasure, FindsWhatASlowCountFinds)
{
    std::mt19937 random(11);
    for (int round = 0; round < 400; ++round) {
        const QString text = randomText(random, static_cast<int>(random() % 3000));
        TextMeasure measure;
        measure.add(text.toUtf8());
        ASSERT_EQ(found(measure), measuredSlowly(text)) << text.toStdString();
    }
}

TEST(TextMeasure, FindsTheSameInPieces)
{
    std::mt19937 random(12);
    for (int round = 0; round < 200; ++round) {
        // A CR at the end of a piece might not be half a line end, so it is shown until more is known.
        const QString text = randomText(random, 2000).remove(u'\r');
        TextMeasure measure;
        for (qsizetype from = 0; from < text.size();) {
            qsizetype size = std::min<qsizetype>(1 + random() % 600, text.size() - from);
            if (text[from + size - 1].isHighSurrogate())
                ++size;
            measure.add(text.mid(from, size).toUtf8());
            from += size;
        }
        ASSERT_EQ(found(measure), measuredSlowly(text)) << text.toStdString();
    }
}

TEST(TextMeasure, GoesOnWithALineThatWasBegun)
{
    TextMeasure measure(3);
    measure.add("\tx\n");
    EXPECT_EQ(measure.cells(), 6);
    EXPECT_EQ(measure.longestEndedLine(), 9);
    EXPECT_EQ(measure.openLine(), 0);
}
