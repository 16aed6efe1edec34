#include "OrbCLI/CollectedOutput.h"

#include "Support/Printing.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using OrbCLI::CollectedOutput;
using OrbCLI::OutputNeed;

TEST(CollectedOutput, AsksOnceForTheToolToBeStopped)
{
    CollectedOutput output({.most = 4, .beyond = OutputNeed::Beyond::stopTool});
    EXPECT_TRUE(output.append("ab"));
    EXPECT_TRUE(output.append("cd"));
    EXPECT_FALSE(output.isTooMuch());
    EXPECT_EQ(output.text(), u"abcd"_s);
    EXPECT_FALSE(output.append("e"));
    EXPECT_TRUE(output.append("f"));
    EXPECT_TRUE(output.isTooMuch());
    EXPECT_EQ(output.text(), QString());
}

TEST(CollectedOutput, KeepsTheLastBytesHoweverTheyCome)
{
    constexpr qsizetype most = qsizetype{1024} * 1024;
    CollectedOutput output({.most = most, .beyond = OutputNeed::Beyond::keepEnd});
    const QByteArray chunk = QByteArray("0123456789").repeated(1000);
    const auto expected = [&](int chunks) {
        const QByteArray all = chunk.repeated(chunks);
        return all.size() > most ? "(only the last 1 MiB are kept)\n" + all.last(most) : all;
    };
    for (int chunks = 1; chunks <= 400; ++chunks) {
        EXPECT_TRUE(output.append(QUtf8StringView(chunk.data(), chunk.size())));
        if (chunks % 21 == 0) {
            EXPECT_TRUE(output.text() == QString::fromLatin1(expected(chunks))) << chunks;
        }
    }
    EXPECT_FALSE(output.isTooMuch());
}

TEST(CollectedOutput, BeginsWithAWholeCharacter)
{
    CollectedOutput output({.most = 1024 * 1024, .beyond = OutputNeed::Beyond::keepEnd});
    const QByteArray text = QByteArray("\u20ac").repeated(1024 * 1024);
    output.append(QUtf8StringView(text.data(), text.size()));
    EXPECT_EQ(output.text(), u"(only the last 1 MiB are kept)\n"_s + QString(1024 * 1024 / 3, u'\u20ac'));
}

TEST(CollectedOutput, IsCollectedUpToSoMuch)
{
    EXPECT_EQ(OrbCLI::wholeList.most, 67'108'864);
    EXPECT_EQ(OrbCLI::wholeList.beyond, OutputNeed::Beyond::stopTool);
    EXPECT_EQ(OrbCLI::endOfLog.most, 4'194'304);
    EXPECT_EQ(OrbCLI::endOfLog.beyond, OutputNeed::Beyond::keepEnd);
}

TEST(CollectedOutput, IsCutAsSoonAsItIsMoreThanIsKept)
{
    constexpr qsizetype most = qsizetype{1024} * 1024;
    CollectedOutput output({.most = most, .beyond = OutputNeed::Beyond::keepEnd});
    const QByteArray text = "a" + QByteArray(most - 1, 'b');
    output.append(QUtf8StringView(text.data(), text.size()));
    EXPECT_EQ(output.text(), QString::fromLatin1(text));
    output.append("c");
    EXPECT_EQ(output.text(), u"(only the last 1 MiB are kept)\n"_s + QString(most - 1, u'b') + u'c');
    EXPECT_FALSE(output.isTooMuch());
}
