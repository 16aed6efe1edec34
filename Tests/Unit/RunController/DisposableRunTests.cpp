#include "RunControllerTest.h"

#include <QDir>

using namespace Qt::StringLiterals;

TEST_F(RunControllerTest, MakesAndDeletesADisposableMachine)
{
    addOrb(u"echo making; sleep 0.05; echo slowly >&2"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(run.phase().startsWith(u"Creating sbx-"_s) && run.phase().endsWith(u'…'));
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run),
              QStringList({u"info: Creating disposable machine sbx-NNNNNN (debian)…\nmaking\n"_s, u"err: slowly\n"_s,
                           u"info: $ orb -m sbx-NNNNNN bash -s\n"_s, u"out: hello\n"_s, u"ok: \nexit status 0 · Ns\n"_s,
                           u"info: Deleting disposable machine sbx-NNNNNN…\nDeleted sbx-NNNNNN.\n"_s}));
    ASSERT_EQ(calls().size(), 3);
    const QRegularExpressionMatch create =
        QRegularExpression(u"^<create><debian><(sbx-[0-9a-f]{6})>$"_s).match(calls().first());
    ASSERT_TRUE(create.hasMatch()) << calls().first().toStdString();
    const QString name = create.captured(1);
    EXPECT_EQ(calls().mid(1), QStringList({u"<-m><%1><bash><-s>"_s.arg(name), u"<delete><-f><%1>"_s.arg(name)}));
    EXPECT_EQ(phases,
              QStringList({u"Creating %1…"_s.arg(name), u"Running in %1"_s.arg(name), u"Deleting %1…"_s.arg(name)}));
    EXPECT_EQ(history.entries().first().machine, u"disposable (debian)"_s);
    EXPECT_EQ(history.entries().first().exitCode, 0);
    EXPECT_EQ(history.entries().first().note, QString());
}

TEST_F(RunControllerTest, RunsInADisposableAlpineInTheSharedFolder)
{
    addOrb();
    const QString folder = tools.path(u"it's here"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    RunJob shared = disposableJob;
    shared.distro = u"alpine"_s;
    shared.folder = folder;
    shared.script = u"pwd"_s;
    run.start(shared, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run),
              QStringList(
                  {u"info: Creating disposable machine sbx-NNNNNN (alpine)…\n$ orb -m sbx-NNNNNN sh -s   (folder: "_s +
                       folder + u")\n"_s,
                   u"out: "_s + folder + u'\n', u"ok: \nexit status 0 · Ns\n"_s,
                   u"info: Deleting disposable machine sbx-NNNNNN…\nDeleted sbx-NNNNNN.\n"_s}));
    EXPECT_TRUE(calls().at(0).startsWith(u"<create><alpine><sbx-"_s));
    EXPECT_TRUE(calls().at(1).endsWith(u"><sh><-s>"_s));
    EXPECT_EQ(history.entries().first().machine, u"disposable (alpine)"_s);
}

TEST_F(RunControllerTest, NamesEveryDisposableMachineAnew)
{
    addOrb();
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_NE(calls().at(0), calls().at(3));
}

TEST_F(RunControllerTest, CountsTheDeletionIntoTheDurationOnly)
{
    addOrb(u":"_s, u"sleep 0.4"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    const QRegularExpressionMatch match = QRegularExpression(u"exit status 0 · ([0-9.]+)s"_s).match(run.plainText());
    EXPECT_GE(history.entries().first().duration, 0.4);
    EXPECT_GE(history.entries().first().duration - match.captured(1).toDouble(), 0.3);
}

TEST_F(RunControllerTest, GivesUpWhenTheMachineCannotBeMade)
{
    addOrb(u"echo 'no space' >&2; exit 3"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run),
              QStringList({u"info: Creating disposable machine sbx-NNNNNN (debian)…\n"_s, u"err: no space\n"_s,
                           u"fail: Could not create the disposable machine (machine creation failed).\n"_s,
                           u"info: Deleting disposable machine sbx-NNNNNN…\nDeleted sbx-NNNNNN.\n"_s}));
    EXPECT_EQ(calls().size(), 2);
    EXPECT_EQ(history.entries().first().machine, u"disposable (debian)"_s);
    EXPECT_EQ(history.entries().first().exitCode, std::nullopt);
    EXPECT_EQ(history.entries().first().note, u"machine creation failed"_s);
}

TEST_F(RunControllerTest, LimitsTheCreationEvenWithoutATimeLimit)
{
    RunController hasty(RunTimeLimits{.creation = 1});
    addOrb(u"echo making\n"_s + TestTools::untilTerminated(15));
    hasty.start(disposableJob, &history);
    EXPECT_TRUE(waitUntil([&] { return !hasty.isRunning(); }));
    EXPECT_EQ(told(hasty), QStringList({u"info: Creating disposable machine sbx-NNNNNN (debian)…\nmaking\n"_s,
                                        u"fail: Could not create the disposable machine (machine creation failed).\n"_s,
                                        u"info: Deleting disposable machine sbx-NNNNNN…\nDeleted sbx-NNNNNN.\n"_s}));
    EXPECT_EQ(calls().size(), 2) << "no script was run";
    EXPECT_EQ(history.entries().first().note, u"machine creation failed"_s);
    EXPECT_TRUE(calls().last().startsWith(u"<delete><-f><sbx-"_s));
}

TEST_F(RunControllerTest, StopsDuringTheCreationWhateverItsStatusAndDeletesAllTheSame)
{
    for (const int status : {0, 3}) {
        addOrb(TestTools::untilTerminated(status));
        run.clearTranscript();
        const qsizetype before = calls().size();
        run.start(disposableJob, &history);
        EXPECT_TRUE(waitForCall(before + 1));
        run.stop();
        EXPECT_TRUE(waitUntilIdle());
        EXPECT_EQ(told(run), QStringList({u"info: Creating disposable machine sbx-NNNNNN (debian)…\n"_s,
                                          u"fail: Could not create the disposable machine (stopped).\n"_s,
                                          u"info: Deleting disposable machine sbx-NNNNNN…\nDeleted sbx-NNNNNN.\n"_s}));
        EXPECT_EQ(history.entries().first().exitCode, std::nullopt);
        EXPECT_EQ(history.entries().first().note, u"stopped"_s);
    }
}

TEST_F(RunControllerTest, KeepsWhatTheCreationStillPrintsAfterAStop)
{
    addOrb(u"trap 'echo cleaning up; exit 1' TERM\n"_s + tools.tellByFile(u"up"_s) + u"while :; do sleep 0.01; done"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntil([this] { return tools.hasFile(u"up"_s); }));
    run.stop();
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run).first(), u"info: Creating disposable machine sbx-NNNNNN (debian)…\ncleaning up\n"_s);
}

TEST_F(RunControllerTest, DeletesTheMachineAfterAStoppedOrTimedOutScript)
{
    addOrb(u":"_s, u":"_s, TestTools::untilTerminated(0));
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitForCall(2));
    run.stop();
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run).mid(1),
              QStringList({u"warn: \nStopped by user.\n"_s,
                           u"info: Deleting disposable machine sbx-NNNNNN…\nDeleted sbx-NNNNNN.\n"_s}));
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);

    RunController hasty(RunTimeLimits{.script = 0.2});
    RunJob limited = disposableJob;
    limited.timeoutEnabled = true;
    hasty.start(limited, &history);
    EXPECT_TRUE(waitUntil([&] { return !hasty.isRunning(); }));
    EXPECT_TRUE(calls().last().startsWith(u"<delete><-f><sbx-"_s));
    EXPECT_EQ(history.entries().first().note, u"timed out"_s);
}

TEST_F(RunControllerTest, IsNotChangedByAStopDuringTheDeletion)
{
    addOrb(u":"_s, tools.waitForFile(u"go"_s));
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitForCall(3));
    run.stop();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(calls().size(), 3) << "the deletion was not ended";
    EXPECT_EQ(history.entries().first().exitCode, 0);
    EXPECT_TRUE(told(run).last().endsWith(u"Deleted sbx-NNNNNN.\n"_s));
}

TEST_F(RunControllerTest, TellsWhenTheMachineCannotBeDeleted)
{
    addOrb(u":"_s, u"echo ' busy '; echo ' <b> ' >&2; exit 1"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run).mid(3),
              QStringList({u"info: Deleting disposable machine sbx-NNNNNN…\n"_s,
                           u"warn: Could not delete sbx-NNNNNN: busy\n<b>. Remove it in the Machines tab.\n"_s}));
    EXPECT_EQ(calls().size(), 4) << "the second attempt was made";
    EXPECT_EQ(history.entries().first().exitCode, 0) << "the run itself did not fail";
}

TEST_F(RunControllerTest, DeletesWithTheSecondAttempt)
{
    addOrb(u":"_s, u"[ \"$2\" != -f ]"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_TRUE(told(run).last().endsWith(u"Deleted sbx-NNNNNN.\n"_s));
}

TEST_F(RunControllerTest, TellsWhenTheDeletionTimesOut)
{
    RunController hasty(RunTimeLimits{.deletion = 0.2});
    addOrb(u":"_s, TestTools::untilTerminated(0));
    hasty.start(disposableJob, &history);
    EXPECT_TRUE(waitUntil([&] { return !hasty.isRunning(); }));
    EXPECT_EQ(told(hasty).last(), u"warn: Could not delete sbx-NNNNNN: . Remove it in the Machines tab.\n"_s);
}

TEST_F(RunControllerTest, SurvivesAnOrbThatCannotStartAtAnyStep)
{
    addOrb();
    tools.setInterpreter(u"orb"_s, u"/nonexistent/shell"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    const QStringList texts = told(run);
    ASSERT_EQ(texts.size(), 5);
    EXPECT_TRUE(texts[1].startsWith(u"err: Could not start orb: "_s));
    EXPECT_EQ(texts[2], u"fail: Could not create the disposable machine (machine creation failed).\n"_s);
    EXPECT_TRUE(texts[4].startsWith(u"warn: Could not delete sbx-NNNNNN: Could not start orb: "_s));
    EXPECT_TRUE(texts[4].endsWith(u". Remove it in the Machines tab.\n"_s));
}

TEST_F(RunControllerTest, SurvivesAnOrbThatGoesAwayAfterTheCreation)
{
    addOrb(u"rm -f \"$0\""_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().first().exitCode, -1);
    EXPECT_TRUE(told(run).last().startsWith(u"warn: Could not delete"_s));
}
