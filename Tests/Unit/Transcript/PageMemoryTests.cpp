#include "Transcript/PageMemory.h"

#include "Support/Mebibyte.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace
{

/// Whether there is memory at that address.
bool isThere(const char *address)
{
    return ::msync(const_cast<char *>(address), 1, MS_ASYNC) == 0;
}

std::deque<PageMemory> pieces(std::size_t count, std::size_t size)
{
    std::deque<PageMemory> list;
    for (std::size_t number = 0; number < count; ++number)
        list.emplace_back(size);
    return list;
}

struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;

    int value = 0;
    static inline int alive = 0;
};

} // namespace

TEST(PageMemory, BelongsToWhomItWasMovedTo)
{
    PageMemory first(mebibyte);
    char *const data = first.data();
    data[mebibyte - 1] = 'x';
    PageMemory second(std::move(first));
    EXPECT_EQ(second.data(), data);
    PageMemory third(mebibyte);
    const char *const other = third.data();
    third = std::move(second);
    EXPECT_EQ(third.data(), data);
    EXPECT_EQ(third.data()[mebibyte - 1], 'x');
    EXPECT_TRUE(isThere(other));
}

TEST(PageMemory, IsGivenBackAtOnceWhereItIsNotMuch)
{
    // A little less than what a thread of its own gives back.
    std::deque<PageMemory> list = pieces(3, 8 * mebibyte - 4096);
    const char *const first = list[0].data();
    const char *const last = list[2].data();
    PageMemory::giveBackFront(list, 2);
    EXPECT_FALSE(isThere(first));
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].data(), last);
    EXPECT_TRUE(isThere(last));
    PageMemory::giveBackFront(list, 0);
    EXPECT_TRUE(isThere(last));
}

TEST(PageMemory, IsGivenBackInTimeWithGapsWhereItIsMuch)
{
    // Never written: it costs nothing.
    constexpr std::size_t count = 200;
    // Somebody else may get memory at addresses that are free again: an allocator takes 64 MiB of them at a time.
    constexpr std::ptrdiff_t reused = 40;
    std::deque<PageMemory> list = pieces(count + 1, 4 * mebibyte);
    std::vector<const char *> given;
    std::transform(list.begin(), list.end() - 1, std::back_inserter(given),
                   [](const PageMemory &each) { return each.data(); });
    const char *const kept = list.back().data();
    const auto start = std::chrono::steady_clock::now();
    PageMemory::giveBackFront(list, count);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_TRUE(waitUntil([&given] { return std::count_if(given.begin(), given.end(), isThere) <= reused; }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, (count - reused - 1) * std::chrono::microseconds(200));
    EXPECT_TRUE(isThere(kept));
}

TEST(PagePool, GivesAThingAgainAsItWasLeftAndKeepsNoMoreThanItMay)
{
    {
        const auto pool = std::make_shared<PagePool<Counted>>(2);
        std::vector<std::shared_ptr<Counted>> things;
        for (int number = 1; number <= 4; ++number) {
            things.push_back(pool->take());
            EXPECT_EQ(things.back()->value, 0);
            things.back()->value = number;
        }
        EXPECT_EQ(Counted::alive, 4);
        const Counted *const second = things[1].get();
        things.erase(things.begin(), things.begin() + 2);
        EXPECT_EQ(Counted::alive, 4) << "two are kept";
        things.clear();
        EXPECT_EQ(Counted::alive, 2) << "and no more";
        things.push_back(pool->take());
        EXPECT_EQ(things.back().get(), second);
        EXPECT_EQ(things.back()->value, 2);
        EXPECT_EQ(Counted::alive, 2);
        pool->clear();
        EXPECT_EQ(Counted::alive, 1) << "the one in use stays";
        things.clear();
        EXPECT_EQ(Counted::alive, 1) << "and is kept";
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(PagePool, TakesAThingBackAfterItsOwnerHasLetGoOfThePool)
{
    auto pool = std::make_shared<PagePool<Counted>>(1);
    std::shared_ptr<Counted> thing = pool->take();
    pool.reset();
    EXPECT_EQ(Counted::alive, 1);
    thing.reset();
    EXPECT_EQ(Counted::alive, 0);
}
