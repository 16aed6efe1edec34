#include "Find/SearchThread.h"

#include "Unit/Transcript/FiledText.h"

#include <chrono>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace
{

/// A search and what it told.
struct Search {
    Search()
    {
        QObject::connect(&thread, &SearchThread::found, &thread,
                         [this](std::optional<TextMatch> match) { found.push_back(match); });
        QObject::connect(&thread, &SearchThread::counted, &thread,
                         [this](SearchThread::Count count) { counted.push_back(count); });
    }

    void begin(const QString &wanted, const TextView &text)
    {
        thread.search(TextPattern(wanted, Qt::CaseInsensitive), text.snapshot(), text.begin());
    }

    bool hasCounted(std::int64_t number, std::int64_t all)
    {
        return waitUntil(
            [&] { return !counted.empty() && counted.back().number == number && counted.back().all == all; });
    }

    SearchThread thread{nullptr};
    std::vector<std::optional<TextMatch>> found;
    std::vector<SearchThread::Count> counted;
};

} // namespace

class SearchThreadTest : public FiledTextTest
{
};

TEST_F(SearchThreadTest, TellsTheFirstMatchAndHowManyThereAre)
{
    ViewedText text(storage());
    text.append("one two One\n");
    Search search;
    search.begin(u"ONE"_s, text);
    EXPECT_TRUE(search.hasCounted(1, 2));
    EXPECT_EQ(search.found, (std::vector<std::optional<TextMatch>>{TextMatch{0, 3}}));
    search.thread.step(text.snapshot(), SearchThread::Direction::forward, 3);
    EXPECT_TRUE(search.hasCounted(2, 2));
    search.thread.step(text.snapshot(), SearchThread::Direction::forward, 11);
    EXPECT_TRUE(search.hasCounted(1, 2)) << "on from the beginning";
    search.thread.step(text.snapshot(), SearchThread::Direction::backward, 0);
    EXPECT_TRUE(search.hasCounted(2, 2)) << "on from the end";
}

TEST_F(SearchThreadTest, CountsOnAsTextArrivesAndIsDropped)
{
    ViewedText text(storage());
    text.append("one two");
    Search search;
    search.begin(u"one"_s, text);
    EXPECT_TRUE(search.hasCounted(1, 1));
    text.append(" one");
    search.thread.update(text.snapshot());
    EXPECT_TRUE(search.hasCounted(1, 2));
    text.dropFront(4);
    search.thread.update(text.snapshot());
    EXPECT_TRUE(search.hasCounted(0, 1)) << "the one that was found is gone";
    text.clear();
    search.thread.update(text.snapshot());
    EXPECT_TRUE(search.hasCounted(0, 0));
    EXPECT_EQ(search.found.size(), 1U);
}

TEST_F(SearchThreadTest, TellsNothingOfASearchThatAnotherReplaced)
{
    ViewedText text(storage());
    text.append(lines(8 * mebibyte));
    Search search;
    for (const QString &wanted : {u"a"_s, u"ab"_s, u"abc"_s, u"nowhere to be found"_s})
        search.begin(wanted, text);
    EXPECT_TRUE(search.hasCounted(0, 0));
    EXPECT_EQ(search.counted.size(), 1U);
    EXPECT_EQ(search.found, (std::vector<std::optional<TextMatch>>{std::nullopt}));
    search.begin(u"a"_s, text);
    search.thread.stop();
    search.begin(u"nowhere to be found either"_s, text);
    EXPECT_TRUE(waitUntil([&] { return search.counted.size() == 2; }));
    EXPECT_EQ(search.counted.back().all, 0);
}

TEST_F(SearchThreadTest, GoesOnWithWhatWasAskedWhileTextArrives)
{
    ViewedText text(storage());
    const QByteArray bytes = lines(8 * mebibyte);
    text.append(bytes);
    text.append("needle");
    Search search;
    search.begin(u"needle"_s, text);
    for (int count = 0; count < 200; ++count) {
        text.append("\n.");
        search.thread.update(text.snapshot());
    }
    EXPECT_TRUE(search.hasCounted(1, 1));
    EXPECT_EQ(search.found, (std::vector<std::optional<TextMatch>>{TextMatch{bytes.size(), bytes.size() + 6}}));
}

TEST_F(SearchThreadTest, SearchesOnWhatWasThereAfterTheEndOfTheText)
{
    auto text = std::make_unique<ViewedText>(storage());
    fill(*text, lines(8 * mebibyte) + "needle");
    Search search;
    search.begin(u"needle"_s, *text);
    text.reset();
    EXPECT_TRUE(search.hasCounted(1, 1));
}

TEST_F(SearchThreadTest, EndsInTheMiddleOfASearchAndLetsTheTextGo)
{
    ViewedText text(storage());
    const QByteArray bytes = lines(16 * mebibyte);
    fill(text, bytes);
    {
        Search search;
        search.begin(u"e"_s, text);
    }
    text.clear();
    settle(text);
    EXPECT_LT(text.memory(), mebibyte);
#ifdef __linux__
    EXPECT_TRUE(waitUntil([&] { return openFiles().isEmpty(); }));
#endif
}

TEST_F(SearchThreadTest, LooksForNoFirstMatchThatAnEarlierSearchWasAskedFor)
{
    ViewedText text(storage());
    text.append(lines(8 * mebibyte) + "here");
    Search search;
    for (int round = 0; round < 10; ++round) {
        search.begin(u"nowhere to be found"_s, text);
        // It has begun meanwhile, and is not done.
        const auto begun = std::chrono::steady_clock::now() + std::chrono::milliseconds(1);
        while (std::chrono::steady_clock::now() < begun)
            std::this_thread::yield();
        search.thread.search(TextPattern(u"here"_s, Qt::CaseSensitive), text.snapshot());
    }
    EXPECT_TRUE(waitUntil([&] { return !search.counted.empty(); }));
    EXPECT_EQ(search.counted.back().number, 0);
    EXPECT_TRUE(search.found.empty());
}

TEST_F(SearchThreadTest, HoldsNothingOfTheTextOnceItIsCounted)
{
    ViewedText text(storage());
    fill(text, lines(8 * mebibyte));
    Search search;
    search.begin(u"nowhere to be found"_s, text);
    EXPECT_TRUE(search.hasCounted(0, 0));
    text.clear();
#ifdef __linux__
    EXPECT_TRUE(waitUntil([&] { return openFiles().isEmpty(); }));
#endif
}
