#include "StreamRecording.h"
#include "Support/TestTools.h"
#include "Unit/Process/DescriptorRoom.h"

#include <QDir>
#include <QFile>
#include <QTimer>

#include <fcntl.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

namespace
{

bool isGone(pid_t pid)
{
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}

/// Children of one moment need descriptors of one moment; the usual limit is 256 on macOS.
void allowDescriptors(rlim_t count)
{
    rlimit limit = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_cur >= count)
        return;
    limit.rlim_cur = std::min(count, limit.rlim_max);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

int openDescriptors()
{
    int count = 0;
    for (int number = 0; number < 1024; ++number)
        count += ::fcntl(number, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

} // namespace

TEST(Stream, TellsOnlyTheEndOfASilentTool)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"quiet"_s, u"exit 0"_s));
    EXPECT_FALSE(recording->hasEnded()); // nothing is told before stream has returned
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_TRUE(recording->chunks.empty());
    EXPECT_EQ(recording->status, 0);
    EXPECT_EQ(recording->handleAtExit, recording->handle);
    EXPECT_FALSE(recording->handle->timedOut());
    EXPECT_EQ(recording->handle->launchError(), std::nullopt);
}

TEST(Stream, TellsBothStreamsApartAndTheEndLast)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"talker"_s, u"echo out; echo err >&2; echo more; exit 7"_s));
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, u"out\nmore\n"_s);
    EXPECT_EQ(recording->errors, u"err\n"_s);
    EXPECT_EQ(recording->status, 7);
    EXPECT_FALSE(recording->outputAfterExit);
    EXPECT_FALSE(recording->foreignThread);
}

TEST(Stream, ReportsTheNumberOfTheSignalThatEndedTheChild)
{
    TestTools tools;
    const auto killed = record(tools.addTool(u"killed"_s, u"kill -KILL $$"_s));
    const auto hungUp = record(tools.addTool(u"hungup"_s, u"kill -HUP $$"_s));
    ASSERT_TRUE(killed->waitForEnd());
    ASSERT_TRUE(hungUp->waitForEnd());
    EXPECT_EQ(killed->status, SIGKILL);
    EXPECT_EQ(hungUp->status, SIGHUP);
    EXPECT_FALSE(killed->handle->timedOut());
}

TEST(Stream, PassesArgumentsExactlyAndWithoutAShell)
{
    TestTools tools;
    const QString tool = tools.addTool(u"echoes"_s, u"for argument in \"$@\"; do printf '%s|' \"$argument\"; done"_s);
    const QStringList arguments{u"two words"_s, QString(),       u"$HOME `id` *"_s,
                                u"'\"\\"_s,     u"line\nfeed"_s, u"\u00e9\U0001F600"_s,
                                u"-n"_s,        u" "_s};
    const auto recording = record(tool, arguments);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, arguments.join(u'|') + u'|');
}

TEST(Stream, ReadsTheEnvironmentAfreshForEachChild)
{
    TestTools tools;
    const QString tool = tools.addTool(u"printer"_s, u"printf '%s' \"$TIDEWELL_TEST_VALUE\""_s);
    for (const char *value : {"first", "second"}) {
        qputenv("TIDEWELL_TEST_VALUE", value);
        const auto recording = record(tool);
        ASSERT_TRUE(recording->waitForEnd());
        EXPECT_EQ(recording->output, QString::fromUtf8(value));
    }
    qunsetenv("TIDEWELL_TEST_VALUE");
}

TEST(Stream, GivesTheChildTheToolDirectoriesAndTheWorkingDirectory)
{
    TestTools tools;
    tools.addTool(u"helper"_s, u"echo found"_s, 2);
    const auto recording = record(tools.addTool(u"caller"_s, u"helper; pwd -P"_s));
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, u"found\n"_s + QDir::current().canonicalPath() + u'\n');
}

TEST(Stream, DecodesEachReadByItself)
{
    TestTools tools;
    const QString go = tools.path(u"go"_s);
    const QString body = uR"(printf '\303'; while [ ! -e '%1' ]; do sleep 0.01; done; printf '\251')"_s.arg(go);
    const auto recording = record(tools.addTool(u"splitter"_s, body));
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    EXPECT_EQ(recording->output, u"\uFFFD"_s);
    QFile file(go);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, u"\uFFFD\uFFFD"_s);
}

TEST(Stream, PassesBytesOfEveryKindAsText)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"odd"_s, uR"(printf '\357\273\277a\000b\r\377\033[1m')"_s));
    ASSERT_TRUE(recording->waitForEnd());
    const QString expected = u"\uFEFFa"_s + QChar(0) + u"b\r\uFFFD\u001b[1m"_s;
    EXPECT_EQ(recording->output, expected);
}

TEST(Stream, WaitsForAGrandchildThatHoldsThePipe)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"parent"_s, u"sleep 600 & echo $$ $!; exit 3"_s), {}, std::nullopt, 2);
    ASSERT_TRUE(waitUntil([&] { return recording->output.endsWith(u'\n'); }));
    const pid_t child = recording->output.section(u' ', 0, 0).toInt();
    const pid_t grandchild = recording->output.section(u' ', 1).trimmed().toInt();
    ASSERT_GT(child, 0);
    ASSERT_GT(grandchild, 0);
    ASSERT_TRUE(waitUntil([&] { return isGone(child); }));
    // The child's number may be another process's by now: neither a cancel nor the time limit may use it.
    recording->handle->cancel();
    const QDeadlineTimer limitPassed(2200, Qt::PreciseTimer);
    ASSERT_TRUE(waitUntil([&] { return limitPassed.hasExpired(); }));
    EXPECT_FALSE(recording->hasEnded());
    EXPECT_FALSE(isGone(grandchild));
    ::kill(grandchild, SIGKILL);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, 3);
    EXPECT_FALSE(recording->handle->timedOut());
}

TEST(Stream, WaitsForAChildThatClosedItsOutputLongBeforeItsEnd)
{
    TestTools tools;
    const QString go = tools.path(u"go"_s);
    const QString body = u"echo $$; exec >&- 2>&-; while [ ! -e '%1' ]; do sleep 0.01; done; exit 4"_s.arg(go);
    const auto recording = record(tools.addTool(u"closer"_s, body));
    const auto other = record(tools.addTool(u"other"_s, u"exit 0"_s));
    ASSERT_TRUE(waitUntil([&] { return !recording->output.isEmpty(); }));
    ASSERT_TRUE(other->waitForEnd());
    EXPECT_FALSE(recording->hasEnded());
    QFile file(go);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, 4);
}

TEST(Stream, KeepsTheOrderOfBothStreamsWhileBothFlood)
{
    TestTools tools;
    const auto recording = record(tools.addTool(u"flooder"_s, u"seq 1 300000 & seq 300001 600000 >&2; wait; exit 5"_s));
    ASSERT_TRUE(recording->waitForEnd());
    QString output;
    QString errors;
    for (int number = 1; number <= 300000; ++number) {
        output += QString::number(number) + u'\n';
        errors += QString::number(number + 300000) + u'\n';
    }
    EXPECT_TRUE(recording->output == output);
    EXPECT_TRUE(recording->errors == errors);
    EXPECT_EQ(recording->status, 5);
    EXPECT_FALSE(recording->outputAfterExit);
}

TEST(Stream, LetsTheEventLoopTurnWhileAChildFloods)
{
    TestTools tools;
    int turns = 0;
    QTimer timer;
    timer.callOnTimeout([&turns] { ++turns; });
    timer.start(0);
    const auto handle =
        OrbCLI::stream(tools.addTool(u"flooder"_s, u"exec yes"_s), {}, std::nullopt, std::nullopt, nullptr, nullptr);
    EXPECT_TRUE(waitUntil([&] { return turns > 50; }));
    handle->cancel();
}

TEST(Stream, RunsTwoHundredChildrenAtOnce)
{
    allowDescriptors(1024);
    TestTools tools;
    const QString go = tools.path(u"go"_s);
    const QString tool = tools.addTool(
        u"numbered"_s, u"echo up $1; while [ ! -e '%1' ]; do sleep 0.2; done; exit $(($1 % 100))"_s.arg(go));
    std::vector<std::shared_ptr<StreamRecording>> recordings;
    recordings.reserve(200);
    for (int number = 0; number < 200; ++number)
        recordings.push_back(record(tool, {QString::number(number)}));
    const auto all = [&](const auto &condition) {
        return waitUntil([&] { return std::all_of(recordings.begin(), recordings.end(), condition); });
    };
    // Every one of them is running now.
    ASSERT_TRUE(all([](const auto &recording) { return !recording->output.isEmpty() && !recording->hasEnded(); }));
    QFile file(go);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(all([](const auto &recording) { return recording->hasEnded(); }));
    for (int number = 0; number < 200; ++number) {
        const auto &recording = recordings[static_cast<std::size_t>(number)];
        EXPECT_EQ(recording->output, u"up %1\n"_s.arg(number));
        EXPECT_EQ(recording->status, number % 100);
        EXPECT_EQ(recording->exits, 1);
    }
}

TEST(Stream, RunsAsManyChildrenAsThereAreDescriptors)
{
    TestTools tools;
    // A hundred that look a hundred times a second would leave others no processor.
    const QString tool = tools.addTool(u"talker"_s, u"echo up; "_s + tools.waitForFile(u"go"_s, 0.2));
    ASSERT_TRUE(record(tools.addTool(u"silent"_s, u":"_s))->waitForEnd());
    std::vector<std::shared_ptr<StreamRecording>> recordings;
    const DescriptorRoom room(100 * 3 + 10); // each has two pipes and a notice
    for (int number = 0; number < 100; ++number)
        recordings.push_back(record(tool));
    const auto all = [&](const auto &condition) {
        return waitUntil([&] { return std::all_of(recordings.begin(), recordings.end(), condition); });
    };
    EXPECT_TRUE(all([](const auto &recording) { return recording->output == u"up\n"_s; }));
    tools.addFile(u"go"_s);
    EXPECT_TRUE(all([](const auto &recording) { return recording->hasEnded() && recording->status == 0; }));
}

TEST(Stream, LeavesNoDescriptorOpen)
{
    TestTools tools;
    const QString tool = tools.addTool(u"echoes"_s, u"cat; exit 0"_s);
    ASSERT_TRUE(record(tool)->waitForEnd()); // the engine's own descriptors stay from here on
    const int before = openDescriptors();
    for (int round = 0; round < 20; ++round) {
        const auto plain = record(tool, {}, u"text"_s, 10);
        const auto failed = record(tools.path(u"missing"_s), {}, u"text"_s);
        const auto unread = record(tools.addTool(u"deaf"_s, u"exit 0"_s), {}, QString(1'000'000, u'x'));
        ASSERT_TRUE(plain->waitForEnd());
        ASSERT_TRUE(failed->waitForEnd());
        ASSERT_TRUE(unread->waitForEnd());
    }
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() == before; })) << openDescriptors() << " of " << before;
}

TEST(Stream, MayBeCalledOnAnyThreadAndAnswersOnTheMainOne)
{
    TestTools tools;
    const QString tool = tools.addTool(u"talker"_s, u"echo \"$1\"; exit 0"_s);
    std::vector<std::shared_ptr<StreamRecording>> recordings(8);
    std::vector<std::thread> threads;
    threads.reserve(recordings.size());
    for (std::size_t index = 0; index < recordings.size(); ++index)
        threads.emplace_back([&, index] { recordings[index] = record(tool, {QString::number(index)}); });
    for (std::thread &thread : threads)
        thread.join();
    for (std::size_t index = 0; index < recordings.size(); ++index) {
        ASSERT_TRUE(recordings[index]->waitForEnd());
        EXPECT_EQ(recordings[index]->output, QString::number(index) + u'\n');
        EXPECT_FALSE(recordings[index]->foreignThread);
    }
}

TEST(Stream, HearsOtherChildrenWhileAHandlerTurnsTheEventLoop)
{
    TestTools tools;
    const QString tool = tools.addTool(u"talker"_s, u"echo a; exit 0"_s);
    std::shared_ptr<StreamRecording> other;
    bool otherEndedInside = false;
    bool ended = false;
    QString order;
    OrbCLI::stream(
        tools.addTool(u"outer"_s, u"echo 1; "_s + tools.waitForFile(u"go"_s) + u"echo 2; exit 0"_s), {}, std::nullopt,
        std::nullopt,
        [&](QUtf8StringView text, bool) {
            order += u'(';
            if (!other) {
                other = record(tool);
                otherEndedInside = other->waitForEnd();
                tools.addFile(u"go"_s);
            }
            order += Utf8::toQString(text).trimmed() + u')';
        },
        [&](int, const ProcessHandlePointer &) { ended = true; });
    ASSERT_TRUE(waitUntil([&] { return ended; }));
    EXPECT_TRUE(otherEndedInside);
    EXPECT_EQ(order, u"(1)(2)"_s);
}

TEST(Stream, MayBeStartedFromTheEndOfAnother)
{
    TestTools tools;
    const QString tool = tools.addTool(u"quiet"_s, u"exit 0"_s);
    int remaining = 5;
    std::function<void()> next = [&] {
        OrbCLI::stream(tool, {}, std::nullopt, std::nullopt, nullptr, [&](int, const ProcessHandlePointer &) {
            if (--remaining > 0)
                next();
        });
    };
    next();
    EXPECT_TRUE(waitUntil([&] { return remaining == 0; }));
}

TEST(Stream, ReleasesItsHandlersOnTheMainThread)
{
    TestTools tools;
    std::atomic<bool> isReleased = false;
    std::atomic<bool> isOnMainThread = false;
    std::shared_ptr<int> held(new int(0), [&](const int *value) {
        delete value;
        isOnMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
        isReleased = true;
    });
    OutputHandler onOutput = [held](QUtf8StringView, bool) {};
    ExitHandler onExit = [held](int, const ProcessHandlePointer &) {};
    held.reset();
    OrbCLI::stream(tools.addTool(u"talker"_s, u"echo a"_s), {}, std::nullopt, std::nullopt, std::move(onOutput),
                   std::move(onExit));
    EXPECT_FALSE(isReleased);
    EXPECT_TRUE(waitUntil([&] { return isReleased.load(); }));
    EXPECT_TRUE(isOnMainThread);
}

TEST(Stream, NeedsNoNoticeOfTheExitWhenDescriptorsRunOut)
{
    TestTools tools;
    const QString tool = tools.addTool(u"talker"_s, u"echo a; exit 6"_s);
    ASSERT_TRUE(record(tool)->waitForEnd());
    std::shared_ptr<StreamRecording> recording;
    {
        const DescriptorRoom room(4); // for the two pipes and for nothing else
        recording = record(tool);
    }
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->handle->launchError(), std::nullopt);
    EXPECT_EQ(recording->output, u"a\n"_s);
    EXPECT_EQ(recording->status, 6);
}
