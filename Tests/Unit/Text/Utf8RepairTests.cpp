#include "Text/Utf8Repair.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string repaired(const std::string &bytes)
{
    const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
    const std::optional<QByteArray> text = Utf8Repair::repaired(view);
    return text ? text->toStdString() : bytes;
}

bool isUntouched(const std::string &bytes)
{
    return !Utf8Repair::repaired(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size()))).has_value();
}

const std::string replacement = "\xEF\xBF\xBD";

} // namespace

TEST(Utf8Repair, LeavesValidTextUntouched)
{
    EXPECT_TRUE(isUntouched(""));
    EXPECT_TRUE(isUntouched("plain"));
    EXPECT_TRUE(isUntouched(std::string("nul\0inside", 10)));
    EXPECT_TRUE(isUntouched("\u00e9 \u20ac \U0001F600 \u0080 \u07ff \u0800 \uffff \U0010ffff"));
    EXPECT_TRUE(isUntouched(std::string(100000, 'x') + "\u00e9" + std::string(31, 'y')));
}

TEST(Utf8Repair, KeepsALeadingByteOrderMark)
{
    EXPECT_TRUE(isUntouched("\xEF\xBB\xBFtext"));
    EXPECT_EQ(repaired("\xEF\xBB\xBF\xFF"), "\xEF\xBB\xBF" + replacement);
}

TEST(Utf8Repair, ReplacesACutCharacterOnceOnEachSide)
{
    EXPECT_EQ(repaired("a\xC3"), "a" + replacement);
    EXPECT_EQ(repaired("\xA9z"), replacement + "z");
    EXPECT_EQ(repaired("\xF0\x9F\x98"), replacement);
    EXPECT_EQ(repaired("\x80"), replacement);
}

TEST(Utf8Repair, ReplacesEachLongestIllFormedPartOnce)
{
    EXPECT_EQ(repaired("\xE2\x82"
                       "A"),
              replacement + "A");
    EXPECT_EQ(repaired("\xC0\xAF"), replacement + replacement);                                     // overlong
    EXPECT_EQ(repaired("\xE0\x80\x80"), replacement + replacement + replacement);                   // overlong
    EXPECT_EQ(repaired("\xED\xA0\x80"), replacement + replacement + replacement);                   // surrogate
    EXPECT_EQ(repaired("\xF4\x90\x80\x80"), replacement + replacement + replacement + replacement); // past the end
    EXPECT_EQ(repaired("\xF0\x90\x80\xC3\xA9"), replacement + "\xC3\xA9");
    EXPECT_EQ(repaired("\xFE\xFF"), replacement + replacement);
}

TEST(Utf8Repair, TakesNoMoreMemoryThanItsText)
{
    const std::optional<QByteArray> text = Utf8Repair::repaired(QByteArray(100'000, 'a') + '\xff');
    EXPECT_LT(text->capacity(), 110'000);
}

TEST(Utf8Repair, KeepsTheRoomThatIsLargeEnough)
{
    QByteArray room(1000, 'x');
    const char *const begin = room.constData();
    EXPECT_EQ(Utf8Repair::repairInto(room, "a\xff"), 4);
    EXPECT_EQ(room.constData(), begin);
    EXPECT_TRUE(room.startsWith("a\uFFFD"));
    EXPECT_EQ(Utf8Repair::repairInto(room, "valid"), std::nullopt);
    EXPECT_EQ(Utf8Repair::repairInto(room, QByteArray(1000, '\xff')), 3000);
    EXPECT_EQ(QByteArrayView(room).first(3000), QByteArray("\uFFFD").repeated(1000));
}

TEST(Utf8Repair, FindsADefectAtEveryPlaceOfALongText)
{
    for (std::size_t place = 0; place < 200; ++place) {
        std::string text(200, 'a');
        text[place] = '\xFF';
        std::string expected(200, 'a');
        expected.replace(place, 1, replacement);
        EXPECT_EQ(repaired(text), expected) << place;
    }
}

TEST(Utf8Repair, TakesACharacterAsOneWhereverItStandsBehindADefect)
{
    for (std::size_t distance = 0; distance < 200; ++distance) {
        const std::string begin = '\xFF' + std::string(distance, 'a');
        const std::string expected = replacement + std::string(distance, 'a');
        for (const std::string character : {"\u00e9", "\u4e2d", "\U0001f43b"}) {
            EXPECT_EQ(repaired(begin + character + std::string(20, 'z')), expected + character + std::string(20, 'z'));
            EXPECT_EQ(repaired(begin + character.substr(0, character.size() - 1) + std::string(20, 'z')),
                      expected + replacement + std::string(20, 'z'));
        }
    }
}

TEST(Utf8Repair, MakesEveryPairOfBytesValid)
{
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second) {
            const std::string text = {static_cast<char>(first), static_cast<char>(second), 'x'};
            const std::string result = repaired(text);
            EXPECT_TRUE(isUntouched(result)) << first << ' ' << second;
            EXPECT_EQ(result.back(), 'x');
        }
}
