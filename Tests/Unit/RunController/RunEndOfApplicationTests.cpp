// What is left of a run that the application cannot wait for.

#include "RunControllerTest.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace
{

QStringList written(const DisposableMachines &machines)
{
    QStringList names;
    for (const DisposableMachines::LeftBehind &machine : machines.leftBehind())
        names << machine.name;
    return names;
}

} // namespace

TEST_F(RunControllerTest, WritesTheNameOfADisposableMachineDownBeforeItMakesIt)
{
    const QString folder = tools.path(u"support"_s) + u"/Tidewell/Disposable machines/"_s;
    const DisposableMachines machines(tools.path(u"support"_s));
    RunController careful(limits, {}, machines);
    addOrb(u"[ -e '%1'\"$3\" ] || exit 9"_s.arg(folder), u"[ -e '%1'\"$3\" ] || exit 9"_s.arg(folder));
    careful.start(disposableJob, &history);
    EXPECT_TRUE(waitUntil([&] { return !careful.isRunning(); }));
    EXPECT_EQ(history.entries().first().exitCode, 0);
    EXPECT_TRUE(told(careful).last().endsWith(u"Deleted sbx-NNNNNN.\n"_s)) << told(careful).last().toStdString();
    EXPECT_TRUE(written(machines).isEmpty()) << "struck out once it is gone";
    EXPECT_EQ(careful.undeletedMachine(), QString());
}

TEST_F(RunControllerTest, KeepsTheNameOfAMachineThatItCouldNotDelete)
{
    const DisposableMachines machines(tools.path(u"support"_s));
    RunController careful(limits, {}, machines);
    addOrb(u":"_s, u"exit 1"_s);
    careful.start(disposableJob, &history);
    EXPECT_EQ(careful.undeletedMachine(), QString());
    EXPECT_TRUE(waitUntil([&] { return !careful.isRunning(); }));
    ASSERT_EQ(written(machines).size(), 1);
    EXPECT_EQ(careful.undeletedMachine(), written(machines).first());
    EXPECT_TRUE(calls().first().endsWith(u'<' + careful.undeletedMachine() + u'>'));

    addOrb();
    careful.start(disposableJob, &history);
    EXPECT_TRUE(waitUntil([&] { return !careful.isRunning(); }));
    EXPECT_EQ(careful.undeletedMachine(), QString()) << "it is the last run's";
    EXPECT_EQ(written(machines).size(), 1);
}

TEST_F(RunControllerTest, WritesNothingDownForAMachineOfTheUsers)
{
    RunController careful(limits, {}, DisposableMachines(tools.path(u"support"_s)));
    addOrb();
    careful.start(job, &history);
    EXPECT_TRUE(waitUntil([&] { return !careful.isRunning(); }));
    EXPECT_FALSE(QFile::exists(tools.path(u"support"_s)));
}

TEST_F(RunControllerTest, AbandonsARunWithItsHistoryWrittenAndItsDeletionBegun)
{
    const DisposableMachines machines(tools.path(u"support"_s));
    RunController careful(limits, {}, machines);
    addOrb(u":"_s, u"echo to nobody; : > '%1'"_s.arg(tools.path(u"deleted"_s)),
           u"trap ': > \"%1\"' TERM\n"_s.arg(tools.path(u"asked"_s)) + tools.tellByFile(u"up"_s) +
               tools.waitForFile(u"go"_s));
    careful.start(disposableJob, &history);
    EXPECT_TRUE(waitUntil([this] { return tools.hasFile(u"up"_s); }));
    careful.abandon();
    ASSERT_EQ(history.entries().size(), 1) << "at once";
    const HistoryEntry entry = history.entries().first();
    EXPECT_EQ(entry.command, u"a label"_s);
    EXPECT_EQ(entry.machine, u"disposable (debian)"_s);
    EXPECT_EQ(entry.exitCode, std::nullopt);
    EXPECT_EQ(entry.note, u"stopped"_s);
    EXPECT_EQ(entry.date, careful.startedAt());
    EXPECT_TRUE(
        waitUntil([&] { return QFile::exists(tools.path(u"deleted"_s)) && QFile::exists(tools.path(u"asked"_s)); }));
    EXPECT_TRUE(calls().last().startsWith(u"<delete><-f><sbx-"_s));

    careful.abandon();
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !careful.isRunning(); }));
    EXPECT_EQ(history.entries().size(), 1) << "once";
}

TEST_F(RunControllerTest, AbandonsARunInAMachineOfTheUsersWithoutDeletingIt)
{
    addOrb(u":"_s, u":"_s, TestTools::untilTerminated(0));
    run.start(job, &history);
    EXPECT_TRUE(waitForCall(1));
    run.abandon();
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
    EXPECT_EQ(history.entries().first().machine, u"dev"_s);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(calls().size(), 1);
}

TEST_F(RunControllerTest, AbandonsADeletionWithTheOutcomeThatTheScriptHad)
{
    const QString deletes = tools.waitForFile(u"go"_s);
    addOrb(u":"_s, deletes);
    RunJob failing = disposableJob;
    failing.script = u"exit 7"_s;
    run.start(failing, &history);
    EXPECT_TRUE(waitForCall(3));
    run.abandon();
    ASSERT_EQ(history.entries().size(), 1);
    EXPECT_EQ(history.entries().first().exitCode, 7);
    EXPECT_EQ(history.entries().first().note, QString());
    EXPECT_TRUE(waitForCall(4)) << "the deletion that outlives the application";
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilIdle());

    addOrb(u"exit 1"_s, deletes);
    QFile::remove(tools.path(u"go"_s));
    const qsizetype before = calls().size();
    run.start(disposableJob, &history);
    EXPECT_TRUE(waitForCall(before + 2));
    run.abandon();
    EXPECT_EQ(history.entries().first().exitCode, std::nullopt);
    EXPECT_EQ(history.entries().first().note, u"machine creation failed"_s);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntilIdle());
    EXPECT_EQ(history.entries().size(), 2);
}

TEST_F(RunControllerTest, HasNothingToAbandonWhileIdle)
{
    run.abandon();
    EXPECT_TRUE(history.entries().isEmpty());
    addOrb();
    run.start(job, &history);
    EXPECT_TRUE(waitUntilIdle());
    run.abandon();
    EXPECT_EQ(history.entries().size(), 1);
}
