#include "Process/FileDescriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace
{

int openNull()
{
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool isOpenInTheSystem(int number)
{
    return ::fcntl(number, F_GETFD) >= 0;
}

} // namespace

TEST(FileDescriptor, IsClosedWithItsOwner)
{
    const int number = openNull();
    {
        const FileDescriptor owner(number);
        EXPECT_TRUE(owner.isOpen());
        EXPECT_EQ(owner.number(), number);
    }
    EXPECT_FALSE(isOpenInTheSystem(number));
    EXPECT_FALSE(FileDescriptor().isOpen());
    EXPECT_EQ(FileDescriptor().number(), -1);
    EXPECT_FALSE(FileDescriptor(-1).isOpen());
}

TEST(FileDescriptor, IsMovedAndWhatWasThereBeforeIsClosed)
{
    const int first = openNull();
    const int second = openNull();
    FileDescriptor owner(first);
    FileDescriptor other(second);
    owner = std::move(other);
    EXPECT_EQ(owner.number(), second);
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): that it is closed is told
    EXPECT_EQ(other.number(), -1);
    EXPECT_FALSE(isOpenInTheSystem(first));
    EXPECT_TRUE(isOpenInTheSystem(second));
    FileDescriptor &itself = owner;
    owner = std::move(itself);
    EXPECT_TRUE(isOpenInTheSystem(second));
    const FileDescriptor third(std::move(owner));
    EXPECT_EQ(third.number(), second);
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): that it is closed is told
    EXPECT_EQ(owner.number(), -1);
}

TEST(FileDescriptor, IsClosedOnce)
{
    FileDescriptor owner(openNull());
    const int number = owner.number();
    owner.close();
    EXPECT_FALSE(owner.isOpen());
    const FileDescriptor next(openNull());
    ASSERT_EQ(next.number(), number) << "the system gives the lowest that is free";
    owner.close();
    EXPECT_TRUE(isOpenInTheSystem(number));
}

TEST(FileDescriptor, MayBeTheFirstOfAll)
{
    const int saved = ::dup(0);
    if (saved < 0) {
        ASSERT_EQ(openNull(), 0) << "it was closed";
    }
    FileDescriptor zero(0);
    EXPECT_TRUE(zero.isOpen());
    zero.close();
    EXPECT_FALSE(isOpenInTheSystem(0));
    if (saved >= 0) {
        ::dup2(saved, 0);
        ::close(saved);
    }
}
