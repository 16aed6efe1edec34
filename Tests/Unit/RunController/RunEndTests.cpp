#include "RunControllerTest.h"
#include "Support/Seed.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTimer>

using namespace Qt::StringLiterals;

TEST_F(RunControllerTest, SetsItsFieldsThenWritesTheHistoryAndResetsThemInOrder)
{
    addOrb();
    QStringList order;
    QObject::connect(&history, &HistoryStore::entriesChanged, &run, [&] { order << u"history"_s; });
    QObject::connect(&run, &RunController::phaseChanged, &run, [&] { order << u"phase"_s; });
    QObject::connect(&run, &RunController::startedAtChanged, &run, [&] { order << u"startedAt"_s; });
    QObject::connect(&run, &RunController::isRunningChanged, &run, [&] {
        order << u"isRunning"_s;
        EXPECT_EQ(run.phase(), QString());
        EXPECT_EQ(run.startedAt(), std::nullopt);
    });
    run.start(job, &history);
    EXPECT_EQ(order, QStringList({u"isRunning"_s, u"startedAt"_s, u"phase"_s}));
    order.clear();
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(order, QStringList({u"history"_s, u"phase"_s, u"startedAt"_s, u"isRunning"_s}));
}

TEST_F(RunControllerTest, CanBeStartedAgainFromTheEndOfARun)
{
    addOrb();
    int runs = 1;
    QObject::connect(&run, &RunController::isRunningChanged, &run, [&] {
        if (!run.isRunning() && runs < 3) {
            ++runs;
            run.start(job, &history);
        }
    });
    run.start(job, &history);
    EXPECT_TRUE(waitUntil([&] { return history.entries().size() == 3; }));
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(runs, 3);
}

TEST_F(RunControllerTest, HasDeletedTheMachineAndWrittenTheHistoryFileWhenAStoppedRunEnds)
{
    HistoryStore onDisk(tools.path(u"support"_s));
    addOrb(u":"_s, u": > '%1'"_s.arg(tools.path(u"deleted"_s)), u"trap '' TERM\n"_s + tools.waitForFile(u"go"_s));
    bool complete = false;
    QObject::connect(&run, &RunController::isRunningChanged, &run, [&] {
        if (!run.isRunning()) {
            complete =
                QFile::exists(tools.path(u"deleted"_s)) && HistoryStore(tools.path(u"support"_s)).entries().size() == 1;
        }
    });
    run.start(disposableJob, &onDisk);
    EXPECT_TRUE(waitForCall(2));
    run.stop();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_TRUE(complete);
}

TEST_F(RunControllerTest, MayGoAwayAtEveryStep)
{
    for (int step = 1; step <= 3; ++step) {
        const QString waiting = tools.waitForFile(u"go%1"_s.arg(step));
        addOrb(step == 1 ? waiting : u":"_s, step == 3 ? waiting : u":"_s, step == 2 ? waiting : u":"_s);
        const qsizetype before = calls().size();
        auto doomed = std::make_unique<RunController>(limits);
        doomed->start(disposableJob, &history);
        EXPECT_TRUE(waitForCall(before + step));
        doomed.reset();
        tools.addFile(u"go%1"_s.arg(step));
        // Another run turns the loop long enough for the first to wake up, too.
        run.start(job, nullptr);
        EXPECT_TRUE(waitUntilIdle());
        run.start(job, nullptr);
        EXPECT_TRUE(waitUntilIdle());
        EXPECT_EQ(calls().size(), before + step + 2) << "nobody went on to a next step";
    }
    EXPECT_TRUE(history.entries().isEmpty());
}

TEST_F(RunControllerTest, MayOutliveTheHistory)
{
    addOrb(u":"_s, u":"_s, tools.waitForFile(u"go"_s));
    auto doomed = std::make_unique<HistoryStore>(std::nullopt);
    run.start(job, doomed.get());
    EXPECT_TRUE(waitForCall(1));
    doomed.reset();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilIdle());
}

TEST_F(RunControllerTest, EndsWellWhenItsToolsAreKilledAtRandomMoments)
{
    QRandomGenerator random(seedOr(QRandomGenerator::system()->generate()));
    // A step that prints a few lines and is then ended by a signal, or ends by itself.
    const auto step = [&random] {
        return u"i=0; while [ $i -lt %1 ]; do echo line; echo error >&2; sleep 0.003; i=$((i+1)); done; %2"_s
            .arg(random.bounded(8))
            .arg(QStringList{u"kill -TERM $$"_s, u"kill -KILL $$"_s, u"kill -SEGV $$"_s, u":"_s}.at(random.bounded(4)));
    };
    for (int round = 1; round <= 15; ++round) {
        addOrb(step(), step(), step());
        if (random.bounded(3) == 0)
            QTimer::singleShot(random.bounded(60), &run, &RunController::stop);
        run.start(disposableJob, &history);
        EXPECT_TRUE(waitUntilIdle());
        EXPECT_EQ(history.entries().size(), round);
        EXPECT_EQ(run.phase(), QString());
        EXPECT_EQ(run.startedAt(), std::nullopt);
        EXPECT_TRUE(told(run).last().endsWith(u"Deleted sbx-NNNNNN.\n"_s) ||
                    told(run).last().endsWith(u". Remove it in the Machines tab.\n"_s))
            << told(run).last().toStdString();
        run.clearTranscript();
    }
}
