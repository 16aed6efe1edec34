#include "Transcript/TextBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{

void write(TextBlock &block, QByteArrayView text)
{
    std::copy(text.begin(), text.end(), block.memory.data());
    block.size = static_cast<std::int32_t>(text.size());
}

} // namespace

TEST(TextBlock, BecomesASentenceOfTheBytesThatAreMissingNoLongerThanTheyWere)
{
    TextBlock block;
    write(block, "text");
    block.kinds = {{0, OutputKind::out}, {2, OutputKind::err}};
    block.becomeMissing(1'234'567);
    EXPECT_TRUE(block.isMissing);
    EXPECT_EQ(block.text(), "1,234,567 bytes of the output are missing here.\n");
    ASSERT_EQ(block.kinds.size(), 1U);
    EXPECT_EQ(block.kinds[0].begin, 0);
    EXPECT_EQ(block.kinds[0].kind, OutputKind::warn);
    block.becomeMissing(42);
    EXPECT_EQ(block.text(), "42 bytes of the output are missing here.\n");
    block.becomeMissing(41);
    EXPECT_EQ(block.text(), "41 bytes of the output are missing here.\n");
    block.becomeMissing(5);
    EXPECT_EQ(block.text(), "5 byt");
}

TEST(TextBlock, IsTheSameAgainFromItsContent)
{
    TextBlock block;
    write(block, "some text");
    block.kinds = {{0, OutputKind::out}, {4, OutputKind::err}, {6, OutputKind::info}};
    const QByteArray content = block.content();
    EXPECT_EQ(content.size(), 9 + 3 * qsizetype{sizeof(KindMark)});

    TextBlock other;
    other.becomeMissing(10);
    std::copy(content.begin(), content.end(), other.memory.data());
    other.readContent(9, static_cast<std::int32_t>(content.size()));
    EXPECT_FALSE(other.isMissing);
    EXPECT_EQ(other.text(), "some text");
    ASSERT_EQ(other.kinds.size(), 3U);
    for (std::size_t mark = 0; mark < 3; ++mark) {
        EXPECT_EQ(other.kinds[mark].begin, block.kinds[mark].begin);
        EXPECT_EQ(other.kinds[mark].kind, block.kinds[mark].kind);
    }
    EXPECT_EQ(other.content(), content);
}

TEST(TextBlock, HoldsNothingButWhatItBeginsWith)
{
    TextBlock block;
    block.becomeMissing(1000);
    block.beginWith("moved");
    EXPECT_EQ(block.text(), "moved");
    block.beginWith({});
    EXPECT_FALSE(block.isMissing);
    EXPECT_TRUE(block.text().isEmpty());
    EXPECT_TRUE(block.kinds.empty());
    EXPECT_TRUE(block.content().isEmpty());
}
