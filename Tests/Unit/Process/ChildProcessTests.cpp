#include "Support/TestTools.h"
#include "Unit/OrbCLI/StreamRecording.h"

#include <fcntl.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace
{

QString probe()
{
    return QStringLiteral(RUNNER_PROBE);
}

/// The probe runs in a process of its own; what it checks is its exit status.
void expectProbeSucceeds(const QStringList &arguments)
{
    const auto recording = record(probe(), arguments);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, 0) << arguments.join(u' ').toStdString() << '\n' << recording->errors.toStdString();
}

} // namespace

TEST(ChildProcess, GetsOnlyItsStandardStreamsAndPlainSignals)
{
    const int inheritable = ::open("/dev/null", O_RDONLY); // as a careless launcher leaves one
    ASSERT_GE(inheritable, 0);
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &signals, &before);
    const auto recording = record(probe(), {u"report"_s}, u"input"_s);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ASSERT_TRUE(recording->waitForEnd());
    ::close(inheritable);
    EXPECT_EQ(recording->output, u"input: pipe\ndescriptors: 0 1 2\nignored:\nblocked:\n"_s);
}

TEST(ChildProcess, GetsItsStreamsFromAProgramThatHasNone)
{
    TestTools tools;
    const QString tool = tools.addTool(u"talker"_s, u"cat; printf error >&2"_s);
    for (const QString &closed : {u"0"_s, u"1"_s, u"2"_s, u"01"_s, u"02"_s, u"12"_s, u"012"_s})
        expectProbeSucceeds({u"closed-streams"_s, tool, closed});
}

TEST(ChildProcess, KeepsItsStatusInAProgramStartedWithTheChildSignalIgnored)
{
    TestTools tools;
    expectProbeSucceeds({u"ignored-child-signal"_s, tools.addTool(u"seven"_s, u"exit 7"_s)});
}

TEST(Quitting, WaitsForNoChildAndEndsNone)
{
    TestTools tools;
    const QString pidFile = tools.path(u"pid"_s);
    const QString body = u"echo $$ > '%1.new'; mv '%1.new' '%1'; exec sleep 600"_s.arg(pidFile);
    const QString sleeper = tools.addTool(u"sleeper"_s, body);
    const QString flooder = tools.addTool(u"flooder"_s, u"exec yes"_s);
    for (const QString &mode : {u"quit-at-once"_s, u"quit-later"_s}) {
        QFile::remove(pidFile);
        expectProbeSucceeds({mode, sleeper, flooder});
        QFile file(pidFile);
        ASSERT_TRUE(waitUntil([&] { return file.exists(); }));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const pid_t pid = file.readAll().trimmed().toInt();
        ASSERT_GT(pid, 0);
        EXPECT_EQ(::kill(pid, SIGKILL), 0) << "the child was ended with the program";
    }
}
