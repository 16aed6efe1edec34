#include "Process/OutputReader.h"

#include "Process/Pipe.h"

#include <QSet>

#include <gtest/gtest.h>

#include <fcntl.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr qsizetype usualSize = qsizetype{64} * 1024;
[[maybe_unused]] constexpr qsizetype largeSize = qsizetype{1024} * 1024; // where a pipe can be enlarged

class OutputReaderTest : public testing::Test
{
protected:
    explicit OutputReaderTest(OutputStream stream = OutputStream::standard)
    {
        std::optional<Pipe> pipe = openPipe();
        writeEnd = std::move(pipe->writeEnd);
        makeNonBlocking(writeEnd);
        reader = OutputReader(std::move(pipe->readEnd), stream);
    }

    static OutputQueue::Listener usualListener()
    {
        return {.onReady = [](const std::shared_ptr<OutputQueue> &) {}, .onRoom = [] {}};
    }

    void write(const QByteArray &bytes) const
    {
        ASSERT_EQ(::write(writeEnd.number(), bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
    }

    qsizetype read() { return reader.read(block, *queue); }

    /// All that was read since, one text a chunk.
    std::vector<std::string> delivered()
    {
        told.clear();
        while (queue->deliverNext()) {
        }
        return std::exchange(told, {});
    }

    FileDescriptor writeEnd;
    OutputReader reader;
    QByteArray block;
    std::vector<std::string> told;
    const std::shared_ptr<OutputQueue> queue = std::make_shared<OutputQueue>(
        nullptr,
        [this](QUtf8StringView text, bool isError) {
            told.push_back((isError ? "error: " : "") +
                           std::string(text.data(), static_cast<std::size_t>(text.size())));
        },
        nullptr, usualListener());
};

class ErrorReaderTest : public OutputReaderTest
{
protected:
    ErrorReaderTest() : OutputReaderTest(OutputStream::error) {}
};

using Texts = std::vector<std::string>;

} // namespace

TEST_F(OutputReaderTest, ReadsWhatThePipeHoldsAndIsAtItsEndWithIt)
{
    EXPECT_TRUE(OutputReader().isAtEnd());
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_EQ(read(), 0) << "nothing is there, which it does not wait for";
    EXPECT_FALSE(reader.isAtEnd());
    write("one");
    EXPECT_EQ(read(), 3);
    write("two");
    EXPECT_EQ(read(), 3);
    EXPECT_EQ(delivered(), Texts{"onetwo"});
    write("last");
    writeEnd.close();
    EXPECT_EQ(read(), 4);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_EQ(read(), 0);
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_EQ(delivered(), Texts{"last"});
}

TEST_F(ErrorReaderTest, TellsItsStreamHoweverTheTextIsTaken)
{
    write("short");
    EXPECT_EQ(read(), 5);
    EXPECT_EQ(delivered(), Texts{"error: short"});
    const QByteArray much(usualSize / 2, 'x');
    write(much);
    EXPECT_EQ(read(), much.size());
    EXPECT_EQ(delivered(), Texts{"error: " + much.toStdString()});
    write("a\xff");
    EXPECT_EQ(read(), 2) << "as many as were read, not as there are now";
    EXPECT_EQ(delivered(), Texts{"error: a\ufffd"});
}

TEST_F(OutputReaderTest, GivesItsBlockAwayWithAQuarterOfItOrMore)
{
    write(QByteArray(usualSize / 4 - 1, 'x'));
    EXPECT_EQ(read(), usualSize / 4 - 1);
    EXPECT_EQ(block.size(), usualSize);
    write(QByteArray(usualSize / 4, 'x'));
    EXPECT_EQ(read(), usualSize / 4);
    EXPECT_EQ(block.size(), 0);
}

TEST_F(OutputReaderTest, RepairsAgainAndAgainIntoTheRoomThatWasDelivered)
{
    QSet<const char *> places;
    std::string text;
    const std::shared_ptr<OutputQueue> watched = std::make_shared<OutputQueue>(
        nullptr,
        [&](QUtf8StringView chunk, bool) {
            places.insert(chunk.data());
            text.append(chunk.data(), static_cast<std::size_t>(chunk.size()));
        },
        nullptr, usualListener());
    for (int round = 0; round < 10; ++round) {
        const QByteArray right(1000, static_cast<char>('a' + round));
        write(right + QByteArray(usualSize / 2, '\xff') + right);
        EXPECT_EQ(reader.read(block, *watched), 2000 + usualSize / 2);
        text.clear();
        while (watched->deliverNext()) {
        }
        EXPECT_EQ(text, (right + QByteArray("\ufffd").repeated(usualSize / 2) + right).toStdString());
    }
    EXPECT_LE(places.size(), 4) << "two rooms by turns, each delivered in two chunks";
}

TEST_F(OutputReaderTest, JoinsShortTextsWhetherTheyWereRepairedOrNot)
{
    for (const char *text : {"a\xff", "b", "\xff", "c\xff"}) {
        write(text);
        EXPECT_GT(read(), 0);
    }
    EXPECT_EQ(delivered(), Texts{"a\ufffdb\ufffdc\ufffd"});
}

TEST_F(OutputReaderTest, GivesARoomAwayWithAQuarterOfAPipesTextOrMore)
{
    write(QByteArray(usualSize / 12, '\xff'));
    read();
    write("x");
    read();
    EXPECT_EQ(delivered().size(), 1U) << "three bytes each, and still less than a quarter";
    write(QByteArray(usualSize / 8, '\xff'));
    read();
    write("x");
    read();
    EXPECT_EQ(delivered().size(), 2U);
}

TEST_F(OutputReaderTest, EnlargesAPipeThatWasFullAndFillsABlockAgainThatWasDelivered)
{
#ifndef F_GETPIPE_SZ
    GTEST_SKIP() << "the system has no call for it";
#else
    const auto pipeSize = [this] { return ::fcntl(writeEnd.number(), F_GETPIPE_SZ); };
    const bool mayBeLarge = enlargePipe(openPipe()->readEnd, static_cast<std::size_t>(largeSize));
    if (pipeSize() != usualSize || !mayBeLarge)
        GTEST_SKIP() << "this user has used up the system's allowance";
    write(QByteArray(usualSize - 1, 'x'));
    EXPECT_EQ(read(), usualSize - 1);
    EXPECT_EQ(pipeSize(), usualSize);
    write(QByteArray(usualSize, 'x'));
    EXPECT_EQ(read(), usualSize);
    ASSERT_EQ(pipeSize(), largeSize);
    delivered();

    write(QByteArray(largeSize, 'y'));
    EXPECT_EQ(read(), largeSize) << "in one go";
    EXPECT_EQ(block.size(), 0);
    EXPECT_EQ(delivered(), Texts(largeSize / usualSize, std::string(usualSize, 'y')));
    write("more");
    EXPECT_EQ(read(), 4);
    EXPECT_EQ(block.size(), largeSize);
    EXPECT_TRUE(queue->takeDelivered().isEmpty()) << "it is the one that was delivered";
    EXPECT_TRUE(block.endsWith("yyy"));
#endif
}
