#include "RunController/RunController.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

QString nameOf(OutputKind kind)
{
    return QStringList{u"out"_s, u"err"_s, u"info"_s, u"ok"_s, u"fail"_s, u"warn"_s}.at(static_cast<int>(kind));
}

/// The transcript, one text a segment: "info: $ orb -m dev bash -s\n". Elapsed times are told as "Ns", and the name of
/// a disposable machine as "sbx-NNNNNN".
QStringList told(const RunController &run)
{
    static const QRegularExpression elapsed(u" · [0-9]+\\.[0-9]s\\n"_s);
    static const QRegularExpression disposable(u"sbx-[0-9a-f]{6}\\b"_s);
    QStringList texts;
    for (std::size_t index = 0; index < run.transcript().segmentCount(); ++index) {
        const OutputSegment segment = run.transcript().segment(index);
        QString text = nameOf(segment.kind) + u": "_s + segment.text;
        texts << text.replace(elapsed, u" · Ns\n"_s).replace(disposable, u"sbx-NNNNNN"_s);
    }
    return texts;
}

/// A controller with far-away limits over a fake `orb`, and a history in memory.
class RunControllerTest : public testing::Test
{
protected:
    RunControllerTest()
    {
        QObject::connect(&run, &RunController::phaseChanged, &run, [this] {
            if (!run.phase().isEmpty())
                phases << run.phase();
        });
    }

    /// An `orb` with these bodies for create, delete and a run; a run by default is a real shell.
    void addOrb(const QString &create = u":"_s, const QString &remove = u":"_s,
                const QString &script = u"shift 3; exec sh -s"_s)
    {
        tools.addTool(u"orb"_s, u"case $1 in\ncreate) "_s + create + u";;\ndelete) "_s + remove + u";;\n-m) "_s +
                                    script + u";;\nesac"_s);
    }

    bool waitUntilIdle()
    {
        return waitUntil([this] { return !run.isRunning(); });
    }

    bool waitForCall(qsizetype number)
    {
        return waitUntil([this, number] { return calls().size() >= number; });
    }

    QStringList calls() const { return tools.calls(u"orb"_s); }

    TestTools tools;
    const RunTimeLimits limits{.creation = 20, .script = 20, .deletion = 20};
    HistoryStore history{std::nullopt};
    RunController run{limits};
    QStringList phases;
    const RunJob job{.script = u"echo hello"_s,
                     .label = u"a label"_s,
                     .machine = u"dev"_s,
                     .distro = u"ubuntu"_s,
                     .folder = std::nullopt,
                     .timeoutEnabled = false};
    const RunJob disposableJob{.script = u"echo hello"_s,
                               .label = u"a label"_s,
                               .machine = u"ignored"_s,
                               .distro = u"debian"_s,
                               .disposable = true,
                               .folder = std::nullopt,
                               .timeoutEnabled = false};
};

} // namespace

// ---- A run in a machine of the user's own

TEST_F(RunControllerTest, StartsIdle)
{
    EXPECT_FALSE(run.isRunning());
    EXPECT_EQ(run.startedAt(), std::nullopt);
    EXPECT_EQ(run.phase(), QString());
    EXPECT_EQ(run.script(), QString());
    EXPECT_EQ(run.revision(), 0);
    EXPECT_EQ(run.plainText(), QString());
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

// ---- The time limit

TEST_F(RunControllerTest, TimesOutWhenTheLimitIsOn)
{
    for (const int status : {0, 3}) {
        RunController hasty(RunTimeLimits{.script = 0.2});
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
    RunController hasty(RunTimeLimits{.script = 0.2});
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

// ---- Stop

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
    addOrb(u":"_s, u":"_s, u"exec sleep 60"_s);
    run.start(job, &history);
    run.stop();
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(RunControllerTest, StopsAScriptWhoseChildWasNotThereYet)
{
    addOrb(u":"_s, u":"_s, u"exec sleep 60"_s);
    // The echoed command line is told before the child is started.
    QObject::connect(&run, &RunController::phaseChanged, &run, &RunController::stop);
    run.start(job, &history);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(RunControllerTest, WaitsForAToolThatIgnoresTheStop)
{
    addOrb(u":"_s, u":"_s, u"trap '' TERM\n"_s + tools.waitForFile(u"go"_s) + u"echo still here"_s);
    run.start(job, &history);
    EXPECT_TRUE(waitForCall(1));
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

// ---- Disposable machines

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
    RunController hasty(RunTimeLimits{.creation = 0.2});
    addOrb(TestTools::untilTerminated(15));
    hasty.start(disposableJob, &history);
    EXPECT_TRUE(waitUntil([&] { return !hasty.isRunning(); }));
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
    addOrb(u"trap 'echo cleaning up; exit 1' TERM; while :; do sleep 0.01; done"_s);
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitForCall(1));
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

// ---- Order, and the end

TEST_F(RunControllerTest, WritesTheHistoryThenResetsItsFieldsInOrder)
{
    addOrb();
    run.start(job, &history);
    QStringList order;
    QObject::connect(&history, &HistoryStore::entriesChanged, &run, [&] { order << u"history"_s; });
    QObject::connect(&run, &RunController::phaseChanged, &run, [&] { order << u"phase"_s; });
    QObject::connect(&run, &RunController::startedAtChanged, &run, [&] { order << u"startedAt"_s; });
    QObject::connect(&run, &RunController::isRunningChanged, &run, [&] {
        order << u"isRunning"_s;
        EXPECT_EQ(run.phase(), QString());
        EXPECT_EQ(run.startedAt(), std::nullopt);
    });
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
    QRandomGenerator random = QRandomGenerator::securelySeeded();
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
