#include "Text/Utf8.h"

#include "Support/Printing.h"

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;

TEST(Utf8, KnowsFromItsFirstByteHowLongACodePointIs)
{
    for (const auto &[lead, length] : std::initializer_list<std::pair<int, int>>{
             {0x00, 1}, {0x7f, 1}, {0xc2, 2}, {0xdf, 2}, {0xe0, 3}, {0xef, 3}, {0xf0, 4}, {0xf4, 4}})
        EXPECT_EQ(Utf8::lengthOf(static_cast<char>(lead)), length) << lead;
    for (const auto &[byte, isContinuation] : std::initializer_list<std::pair<int, bool>>{
             {0x7f, false}, {0x80, true}, {0xbf, true}, {0xc0, false}, {0xff, false}, {0x00, false}})
        EXPECT_EQ(Utf8::isContinuation(static_cast<char>(byte)), isContinuation) << byte;
    EXPECT_TRUE(Utf8::isAscii('\x7f'));
    EXPECT_FALSE(Utf8::isAscii('\x80'));
}

TEST(Utf8, ReadsTheFirstAndTheLastCodePointOfEachLength)
{
    constexpr std::array codePoints{U'\0', U'\x7f', U'\x80', U'\x7ff', U'\x800', U'\xffff', U'\x10000', U'\x10ffff'};
    const QByteArray text = QString::fromUcs4(codePoints.data(), codePoints.size()).toUtf8();
    qsizetype at = 0;
    for (const char32_t codePoint : codePoints)
        EXPECT_EQ(Utf8::next(text, at), codePoint);
    EXPECT_EQ(at, text.size());
}

TEST(Utf8, FindsTheEndOfTheAsciiAtItsStartWhereverThatIs)
{
    for (int size = 0; size <= 26; ++size) {
        const QByteArray ascii(size, '\x7f');
        EXPECT_EQ(Utf8::asciiPrefix(ascii), size);
        for (int place = 0; place < size; ++place) {
            QByteArray text = ascii;
            text[place] = '\x80';
            EXPECT_EQ(Utf8::asciiPrefix(text), place) << "of " << size;
        }
    }
}

TEST(Utf8, KeepsAByteOrderMarkAtTheStart)
{
    EXPECT_EQ(Utf8::toQString("\ufeffa"), u"\ufeffa"_s);
    EXPECT_EQ(Utf8::toQString(""), QString());
}
