// What becomes of the output of a run that prints very much.

#include "RunControllerTest.h"

using namespace Qt::StringLiterals;

TEST_F(RunControllerTest, KeepsAllThatARunPrintsInItsRecordUntilTheNextOneStarts)
{
    addOrb();
    const auto recorded = [this] {
        const TextView &record = run.transcript().record();
        return record.text(record.begin(), record.end());
    };
    RunJob chatty = job;
    chatty.script = u"seq 1 200000; seq 1 10 >&2"_s;
    run.start(chatty, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_LT(run.plainText().size(), 1000);
    EXPECT_TRUE(recorded().startsWith(u"$ orb -m dev bash -s\n"_s));
    EXPECT_TRUE(recorded().contains(u"\n1\n2\n3\n"_s));
    EXPECT_TRUE(recorded().contains(u"\n199999\n200000\n"_s));
    EXPECT_TRUE(recorded().contains(u"\nexit status 0"_s));
    run.start(job, &history);
    EXPECT_TRUE(recorded().isEmpty() || recorded() == u"$ orb -m dev bash -s\n"_s) << recorded().toStdString();
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_TRUE(recorded().startsWith(u"$ orb -m dev bash -s\nhello\n\nexit status 0"_s));
    EXPECT_TRUE(run.plainText().endsWith(recorded()));
    run.clearTranscript();
    EXPECT_EQ(recorded(), QString());
}

TEST_F(RunControllerTest, HoldsNoScriptUpHoweverMuchItPrints)
{
    addOrb();
    TextStorage small;
    small.plainBlocks = 4;
    small.packedBytes = 1024 * 1024;
    small.diskReserve = 0; // however little this disk has free
    small.diskReserveShare = 0;
    RunController little(limits, small);
    RunJob flood = job;
    flood.script = u"yes 'a line of some length' | head -c 40000000; base64 -w 76 /dev/urandom | head -c 10000000"_s;
    little.start(flood, &history);
    ASSERT_TRUE(waitUntil([&] { return !little.isRunning(); }));
    EXPECT_EQ(history.entries().first().exitCode, 0);
    const TextView &record = little.transcript().record();
    EXPECT_GE(record.end() - record.begin(), 50'000'000);
    EXPECT_EQ(little.outputLoss(), QString());
    EXPECT_TRUE(waitUntil([&] { return little.transcript().memory() < 8 * 1024 * 1024; }));
}

TEST_F(RunControllerTest, TellsWhatCouldNotBeKeptUntilTheNextRunOrTheOutputIsCleared)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "Two threads post events here, and the thread sanitizer does not see Qt's lock around its queue.";
#endif
    addOrb();
    TextStorage small;
    small.plainBlocks = 4;
    small.packedBytes = 1024 * 1024;
    small.folder = "/nowhere";
    RunController little(limits, small);
    RunJob flood = job;
    flood.script = u"base64 -w 76 /dev/urandom | head -c 20000000"_s;
    little.start(flood, &history);
    ASSERT_TRUE(waitUntil([&] { return !little.isRunning() && !little.outputLoss().isEmpty(); }));
    EXPECT_EQ(history.entries().first().exitCode, 0);
    EXPECT_TRUE(little.outputLoss().endsWith(u"of the output were dropped: no temporary file can be written."_s));
    little.start(job, &history);
    EXPECT_EQ(little.outputLoss(), QString()) << "it was the run's before";
    ASSERT_TRUE(waitUntil([&] { return !little.isRunning(); }));
    little.start(flood, &history);
    ASSERT_TRUE(waitUntil([&] { return !little.isRunning() && !little.outputLoss().isEmpty(); }));
    little.clearTranscript();
    EXPECT_EQ(little.outputLoss(), QString());
}
