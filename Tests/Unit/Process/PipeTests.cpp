#include "Process/Pipe.h"

#include "Unit/Process/DescriptorRoom.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <cerrno>

namespace
{

bool isClosedOnExec(const FileDescriptor &end)
{
    return (::fcntl(end.number(), F_GETFD) & FD_CLOEXEC) != 0;
}

bool isNonBlocking(const FileDescriptor &end)
{
    return (::fcntl(end.number(), F_GETFL) & O_NONBLOCK) != 0;
}

} // namespace

TEST(Pipe, LeadsFromOneEndToTheOtherAndIsInheritedByNoChild)
{
    const std::optional<Pipe> pipe = openPipe();
    ASSERT_TRUE(pipe);
    EXPECT_TRUE(isClosedOnExec(pipe->readEnd));
    EXPECT_TRUE(isClosedOnExec(pipe->writeEnd));
    ASSERT_EQ(::write(pipe->writeEnd.number(), "x", 1), 1);
    char byte = 0;
    ASSERT_EQ(::read(pipe->readEnd.number(), &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
}

TEST(Pipe, IsNoneOfTheStandardStreamsEvenWhereOneIsClosed)
{
    const int saved = ::fcntl(0, F_DUPFD_CLOEXEC, 3);
    ::close(0);
    const std::optional<Pipe> pipe = openPipe();
    const bool isFreeAgain = ::fcntl(0, F_GETFD) < 0;
    if (saved >= 0) {
        ::dup2(saved, 0);
        ::close(saved);
    }
    ASSERT_TRUE(pipe);
    EXPECT_TRUE(isFreeAgain);
    for (const FileDescriptor *end : {&pipe->readEnd, &pipe->writeEnd}) {
        EXPECT_GE(end->number(), 3);
        EXPECT_TRUE(isClosedOnExec(*end));
    }
    EXPECT_EQ(::write(pipe->writeEnd.number(), "x", 1), 1);
}

TEST(Pipe, MayBeNonBlockingAtOneEndAlone)
{
    const std::optional<Pipe> pipe = openPipe();
    EXPECT_FALSE(isNonBlocking(pipe->readEnd));
    makeNonBlocking(pipe->readEnd);
    EXPECT_TRUE(isNonBlocking(pipe->readEnd));
    EXPECT_FALSE(isNonBlocking(pipe->writeEnd));
    char byte = 0;
    EXPECT_LT(::read(pipe->readEnd.number(), &byte, 1), 0);
    EXPECT_EQ(errno, EAGAIN);
}

TEST(Pipe, IsNotToBeHadWithoutTwoDescriptors)
{
    const DescriptorRoom room(1);
    errno = 0;
    const bool isThere = openPipe().has_value();
    const int error = errno;
    EXPECT_FALSE(isThere);
    EXPECT_EQ(error, EMFILE);
}
