#include "Transcript/PagedList.h"

#include "Unit/Transcript/RandomText.h"

#include <gtest/gtest.h>

#include <deque>

TEST(PagedList, FollowsAPlainModel)
{
    RandomText random(31);
    PagedList<int> list;
    std::deque<int> model;
    int next = 0;
    for (int round = 0; round < 60; ++round) {
        for (int count = random.below(20'000); count > 0; --count) {
            list.append(next);
            model.push_back(next++);
        }
        const int dropped =
            random.below(10) == 0 ? static_cast<int>(model.size()) : random.below(static_cast<int>(model.size()) + 1);
        list.dropFront(dropped);
        model.erase(model.begin(), model.begin() + dropped);
        ASSERT_EQ(list.size(), static_cast<PagedList<int>::Index>(model.size()));
        EXPECT_EQ(list.isEmpty(), model.empty());
        for (std::size_t index = 0; index < model.size(); ++index)
            ASSERT_EQ(list[static_cast<PagedList<int>::Index>(index)], model[index]);
    }
}

TEST(PagedList, NeverMovesWhatItHolds)
{
    PagedList<int> list;
    list.append(1);
    const int *const first = &list[0];
    for (int value = 0; value < 100'000; ++value)
        list.append(value);
    EXPECT_EQ(&list[0], first);
}

TEST(PagedList, TakesNoMemoryOnceItIsEmpty)
{
    PagedList<int> list;
    for (int value = 0; value < 100'000; ++value)
        list.append(value);
    EXPECT_GE(list.memory(), 400'000);
    list.dropFront(99'999);
    EXPECT_LT(list.memory(), 100'000);
    list.dropFront(1);
    EXPECT_EQ(list.memory(), 0);
}
