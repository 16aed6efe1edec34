#include "RunControllerTest.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

TEST_F(RunControllerTest, StartsIdle)
{
    EXPECT_FALSE(run.isRunning());
    EXPECT_EQ(run.startedAt(), std::nullopt);
    EXPECT_EQ(run.phase(), QString());
    EXPECT_EQ(run.script(), QString());
    EXPECT_EQ(run.revision(), 0);
    EXPECT_EQ(run.plainText(), QString());
}

TEST_F(RunControllerTest, GivesEachStepItsTime)
{
    const RunTimeLimits seconds;
    EXPECT_EQ(seconds.creation, 900);
    EXPECT_EQ(seconds.script, 600);
    EXPECT_EQ(seconds.deletion, 120);
}

TEST_F(RunControllerTest, RunsTheScriptAndKeepsIt)
{
    addOrb();
    const QDateTime before = QDateTime::currentDateTimeUtc();
    run.start(job, &history);
    EXPECT_TRUE(run.isRunning());
    EXPECT_EQ(run.phase(), u"Running in dev"_s);
    ASSERT_TRUE(run.startedAt().has_value());
    EXPECT_GE(*run.startedAt(), before);
    EXPECT_LE(*run.startedAt(), QDateTime::currentDateTimeUtc());
    const QDateTime startedAt = *run.startedAt();
    EXPECT_TRUE(waitUntilIdle());

    EXPECT_EQ(told(run),
              QStringList({u"info: $ orb -m dev bash -s\n"_s, u"out: hello\n"_s, u"ok: \nexit status 0 · Ns\n"_s}));
    EXPECT_EQ(calls(), QStringList{u"<-m><dev><bash><-s>"_s});
    EXPECT_EQ(phases, QStringList{u"Running in dev"_s});
    EXPECT_EQ(run.phase(), QString());
    EXPECT_EQ(run.startedAt(), std::nullopt);

    ASSERT_EQ(history.entries().size(), 1);
    const HistoryEntry &entry = history.entries().first();
    EXPECT_FALSE(entry.id.isNull());
    EXPECT_EQ(entry.command, u"a label"_s);
    EXPECT_EQ(entry.machine, u"dev"_s);
    EXPECT_EQ(entry.exitCode, 0);
    EXPECT_EQ(entry.note, QString());
    EXPECT_EQ(entry.date, startedAt);
    EXPECT_GE(entry.duration, 0);
    EXPECT_LT(entry.duration, 20);
}

TEST_F(RunControllerTest, TellsTheExitStatusOfAFailingScript)
{
    addOrb();
    RunJob failing = job;
    failing.script = u"printf out; sleep 0.05; printf err >&2; exit 7"_s;
    run.start(failing, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run), QStringList({u"info: $ orb -m dev bash -s\n"_s, u"out: out"_s, u"err: err"_s,
                                      u"fail: \nexit status 7 · Ns\n"_s}));
    EXPECT_EQ(history.entries().first().exitCode, 7);
    EXPECT_EQ(history.entries().first().note, QString());
}

TEST_F(RunControllerTest, MeasuresTheTimeWithOneDecimal)
{
    addOrb(u":"_s, u":"_s, u"sleep 0.3"_s);
    run.start(job, &history);
    EXPECT_TRUE(waitUntilIdle());
    const QRegularExpressionMatch match =
        QRegularExpression(u"\\nexit status 0 · ([0-9]+\\.[0-9])s\\n$"_s).match(run.plainText());
    ASSERT_TRUE(match.hasMatch()) << run.plainText().toStdString();
    EXPECT_GE(match.captured(1).toDouble(), 0.3);
    EXPECT_LT(match.captured(1).toDouble(), 15);
    EXPECT_GE(history.entries().first().duration, 0.3);
}

TEST_F(RunControllerTest, UsesShInAlpine)
{
    addOrb();
    RunJob alpine = job;
    alpine.distro = u"Alpine 3"_s;
    run.start(alpine, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(calls(), QStringList{u"<-m><dev><sh><-s>"_s});
    EXPECT_EQ(told(run).first(), u"info: $ orb -m dev sh -s\n"_s);
}

TEST_F(RunControllerTest, WorksInTheSharedFolder)
{
    addOrb();
    const QString folder = tools.path(u"it's here"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    RunJob shared = job;
    shared.folder = folder;
    shared.script = u"pwd"_s;
    run.start(shared, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run), QStringList({u"info: $ orb -m dev bash -s   (folder: "_s + folder + u")\n"_s,
                                      u"out: "_s + folder + u'\n', u"ok: \nexit status 0 · Ns\n"_s}));
}

TEST_F(RunControllerTest, EndsWithStatus97WhenTheFolderCannotBeEntered)
{
    addOrb();
    RunJob shared = job;
    shared.folder = u"/nonexistent/folder"_s;
    run.start(shared, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().first().exitCode, 97);
    EXPECT_TRUE(run.plainText().contains(u"Cannot open the shared folder in the machine\n\nexit status 97 · "_s));
    EXPECT_FALSE(run.plainText().contains(u"hello"_s));
}

TEST_F(RunControllerTest, SendsAScriptOfFiveMegabytesExactly)
{
    addOrb(u":"_s, u":"_s, u"cat > '%1'"_s.arg(tools.path(u"input"_s)));
    RunJob large = job;
    large.script = u"echo '\u00e9 \U0001f600 $(x) \"y\" \\'\r\n"_s.repeated(200'000);
    ASSERT_GT(large.script.toUtf8().size(), 5 << 20);
    run.start(large, &history);
    EXPECT_TRUE(waitUntilIdle());
    QFile input(tools.path(u"input"_s));
    ASSERT_TRUE(input.open(QIODevice::ReadOnly));
    EXPECT_TRUE(input.readAll() == large.script.toUtf8());
    EXPECT_EQ(history.entries().first().exitCode, 0);
}

TEST_F(RunControllerTest, GoesOnWhenTheMachineReadsNothingOfTheScript)
{
    addOrb(u":"_s, u":"_s, u"exec 0<&-; exit 4"_s);
    RunJob large = job;
    large.script = QString(5 << 20, u'x');
    run.start(large, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().first().exitCode, 4);
}

TEST_F(RunControllerTest, PassesHostileOutputOnUnchanged)
{
    addOrb();
    RunJob hostile = job;
    hostile.script = u"printf '<b>x</b>\\033[31m\\000\\007\\342\\200\\256'"_s;
    run.start(hostile, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(told(run).at(1), u"out: <b>x</b>\u001b[31m\u0000\u0007\u202e"_s);
}

TEST_F(RunControllerTest, SaysSoWhenOrbIsMissingAndChangesNothingElse)
{
    int changes = 0;
    QObject::connect(&run, &RunController::isRunningChanged, &run, [&] { ++changes; });
    run.start(disposableJob, &history);
    EXPECT_EQ(told(run), QStringList{u"fail: orb was not found. Install OrbStack first.\n"_s});
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(run.startedAt(), std::nullopt);
    EXPECT_TRUE(history.entries().isEmpty());
}

TEST_F(RunControllerTest, AsksForAMachineWhenThereIsNone)
{
    addOrb();
    QStringList order;
    QObject::connect(&run, &RunController::isRunningChanged, &run,
                     [&] { order << (run.isRunning() ? u"running"_s : u"idle"_s); });
    RunJob nowhere = job;
    nowhere.machine.clear();
    run.start(nowhere, &history);
    EXPECT_FALSE(run.isRunning());
    EXPECT_EQ(told(run), QStringList{u"fail: Choose a machine first (or create one).\n"_s});
    EXPECT_EQ(order, QStringList({u"running"_s, u"idle"_s}));
    EXPECT_EQ(calls(), QStringList());
    ASSERT_EQ(history.entries().size(), 1);
    EXPECT_EQ(history.entries().first().machine, QString());
    EXPECT_EQ(history.entries().first().exitCode, std::nullopt);
    EXPECT_EQ(history.entries().first().note, u"no machine"_s);
}

TEST_F(RunControllerTest, TellsWhenOrbCannotStart)
{
    addOrb();
    tools.setInterpreter(u"orb"_s, u"/nonexistent/shell"_s);
    run.start(job, &history);
    EXPECT_TRUE(waitUntilIdle());
    const QStringList texts = told(run);
    ASSERT_EQ(texts.size(), 3);
    EXPECT_TRUE(texts[1].startsWith(u"err: Could not start orb: "_s));
    EXPECT_EQ(texts[2], u"fail: \nexit status -1 · Ns\n"_s);
    EXPECT_EQ(history.entries().first().exitCode, -1);
}

TEST_F(RunControllerTest, IgnoresAStartWhileARunIsGoing)
{
    addOrb(u":"_s, u":"_s, tools.waitForFile(u"go"_s));
    run.start(job, &history);
    run.start(disposableJob, &history);
    run.installPackages(u"git"_s, u"dev"_s, u"ubuntu"_s, false, &history);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(calls().size(), 1);
    EXPECT_EQ(history.entries().size(), 1);
}

TEST_F(RunControllerTest, KeepsTheTranscriptAcrossRunsUntilItIsCleared)
{
    addOrb();
    for (int count = 1; count <= 2; ++count) {
        run.start(job, &history);
        EXPECT_TRUE(waitUntilIdle());
    }
    EXPECT_EQ(run.plainText().count(u"hello"_s), 2);
    const qint64 revision = run.revision();
    int cleared = 0;
    QObject::connect(&run, &RunController::transcriptCleared, &run, [&] { ++cleared; });
    run.clearTranscript();
    EXPECT_EQ(cleared, 1);
    EXPECT_EQ(run.plainText(), QString());
    EXPECT_EQ(run.revision(), revision) << "it only ever grows, and only by an append";
}

TEST_F(RunControllerTest, CountsEveryAppend)
{
    int changes = 0;
    QObject::connect(&run, &RunController::revisionChanged, &run, [&] { ++changes; });
    run.append(u"a"_s, OutputKind::out);
    run.append(QUtf8StringView("b"), OutputKind::out);
    run.append(QString(), OutputKind::err);
    EXPECT_EQ(run.revision(), 3);
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(told(run), QStringList({u"out: ab"_s, u"err: "_s}));
}

TEST_F(RunControllerTest, ShowsHalfACharacterHarmlessly)
{
    for (const QString &text : {QString(QChar(0xd800)), QString(QChar(0xdc00)) + u'x', u"x"_s + QChar(0xdbff)}) {
        run.clearTranscript();
        run.append(text, OutputKind::info);
        EXPECT_EQ(run.plainText().size(), text.size());
        EXPECT_TRUE(run.plainText().isValidUtf16());
    }
}

TEST_F(RunControllerTest, TimesOutWhenTheLimitIsOn)
{
    for (const int status : {0, 3}) {
        RunController hasty(RunTimeLimits{.script = 1});
        addOrb(u":"_s, u":"_s, u"echo before\n"_s + TestTools::untilTerminated(status));
        RunJob limited = job;
        limited.timeoutEnabled = true;
        hasty.start(limited, &history);
        EXPECT_TRUE(waitUntil([&] { return !hasty.isRunning(); }));
        EXPECT_EQ(told(hasty), QStringList({u"info: $ orb -m dev bash -s\n"_s, u"out: before\n"_s,
                                            u"warn: \nTimed out after 10 minutes and was stopped.\n"_s}));
        EXPECT_EQ(history.entries().first().exitCode, std::nullopt);
        EXPECT_EQ(history.entries().first().note, u"timed out"_s);
    }
}

TEST_F(RunControllerTest, IsNeverStoppedByTimeWhenTheLimitIsOff)
{
    RunController hasty(RunTimeLimits{.script = 0.05});
    addOrb(u":"_s, u":"_s, u"sleep 0.3"_s);
    hasty.start(job, &history);
    EXPECT_TRUE(waitUntil([&] { return !hasty.isRunning(); }));
    EXPECT_EQ(history.entries().first().exitCode, 0);
}

TEST_F(RunControllerTest, CallsARunTimedOutEvenWhenTheUserStopsItToo)
{
    RunController hasty(RunTimeLimits{.script = 1});
    addOrb(u":"_s, u":"_s,
           u"trap ': > \"%1\"' TERM; while [ ! -e '%2' ]; do sleep 0.01; done"_s.arg(tools.path(u"asked"_s),
                                                                                     tools.path(u"go"_s)));
    RunJob limited = job;
    limited.timeoutEnabled = true;
    hasty.start(limited, &history);
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(tools.path(u"asked"_s)); }));
    hasty.stop();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !hasty.isRunning(); }));
    EXPECT_EQ(history.entries().first().note, u"timed out"_s);
}

TEST_F(RunControllerTest, CountsAnAppendThatDropsAnOldSegment)
{
    run.append(QString(Transcript::characterBound + 1, u'x'), OutputKind::out);
    ASSERT_EQ(run.transcript().segmentCount(), 1U);
    run.append(u"y"_s, OutputKind::err);
    EXPECT_EQ(told(run), QStringList{u"err: y"_s});
    EXPECT_EQ(run.revision(), 2) << "once, though it added and removed";
}
