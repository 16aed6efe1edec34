#include "RunControllerTest.h"

using namespace Qt::StringLiterals;

TEST_F(RunControllerTest, StopsTheScript)
{
    for (const int status : {0, 3}) {
        addOrb(u":"_s, u":"_s, TestTools::untilTerminated(status));
        run.clearTranscript();
        const qsizetype before = calls().size();
        run.start(job, &history);
        EXPECT_TRUE(waitForCall(before + 1));
        run.stop();
        EXPECT_TRUE(run.isRunning()) << "the run ends when its step returns";
        EXPECT_TRUE(waitUntilIdle());
        EXPECT_EQ(told(run), QStringList({u"info: $ orb -m dev bash -s\n"_s, u"warn: \nStopped by user.\n"_s}));
        EXPECT_EQ(history.entries().first().exitCode, std::nullopt);
        EXPECT_EQ(history.entries().first().note, u"stopped"_s);
    }
}

TEST_F(RunControllerTest, StopsAtOnceAfterTheStart)
{
    addOrb(u":"_s, u":"_s, u"exec sleep 600"_s);
    run.start(job, &history);
    run.stop();
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(RunControllerTest, StopsAScriptWhoseChildWasNotThereYet)
{
    addOrb(u":"_s, u":"_s, u"exec sleep 600"_s);
    // The echoed command line is told before the child is started.
    QObject::connect(&run, &RunController::phaseChanged, &run, &RunController::stop);
    run.start(job, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(RunControllerTest, StopsBetweenTheCreationAndTheScriptAndDeletesAllTheSame)
{
    addOrb(u":"_s, u":"_s, u"exec sleep 600"_s);
    // The creation's tool has ended then, the script's is not there yet.
    QObject::connect(&run, &RunController::phaseChanged, &run, [this] {
        if (run.phase().startsWith(u"Running in "_s))
            run.stop();
    });
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run), QStringList({u"info: Creating disposable machine sbx-NNNNNN (debian)…\n"
                                      "$ orb -m sbx-NNNNNN bash -s\n"_s,
                                      u"warn: \nStopped by user.\n"_s,
                                      u"info: Deleting disposable machine sbx-NNNNNN…\nDeleted sbx-NNNNNN.\n"_s}));
    EXPECT_EQ(history.entries().first().exitCode, std::nullopt);
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(RunControllerTest, WaitsForAToolThatIgnoresTheStop)
{
    addOrb(u":"_s, u":"_s,
           u"trap '' TERM\n"_s + tools.tellByFile(u"up"_s) + tools.waitForFile(u"go"_s) + u"echo still here"_s);
    run.start(job, &history);
    EXPECT_TRUE(waitUntil([this] { return tools.hasFile(u"up"_s); }));
    run.stop();
    run.stop();
    EXPECT_TRUE(run.isRunning());
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run).mid(1), QStringList({u"out: still here\n"_s, u"warn: \nStopped by user.\n"_s}));
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(RunControllerTest, IsNotHarmedByAStopWhileIdle)
{
    run.stop();
    EXPECT_FALSE(run.isRunning());
    EXPECT_EQ(run.plainText(), QString());
    addOrb();
    run.start(job, &history);
    EXPECT_TRUE(waitUntilIdle());
    run.stop();
    EXPECT_EQ(history.entries().size(), 1);
    EXPECT_EQ(history.entries().first().exitCode, 0);
}
