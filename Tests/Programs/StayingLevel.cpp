// StayingLevel [RUNS [SECONDS]]: so many runs in one process, one after the other in the real window's content over
// fake tools and a real shell, every tenth of them in a disposable machine; then, for so many seconds, OrbStack's state
// and both lists asked for with a hundredth of the usual pause, the containers different each time. Without arguments
// 10,000 runs, and 150 seconds, in which more is asked than usually in two hours.
//
// Tells what the process holds when it is warm, half-way and at the end, each time at rest, and fails where that is not
// level. Of descriptors, threads, children and temporary files there may be no more than at the start. Of memory there
// may be 2 MiB more: the allocator's gaps come and go by less than one, and 210 bytes lost a run would be as much after
// 10,000 runs.

#include "Screens/TestWindow.h"
#include "Support/ProcessLevels.h"
#include "Support/ProcessMemory.h"
#include "TidewellApp/IgnoredSignals.h"
#include "TidewellApp/TidewellApp.h"

#include <QApplication>
#include <QEventLoop>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace
{

/// Until the transcript is at its bound, the history full, and as many blocks of text are laid out as ever are.
constexpr int runsToWarmUp = 500;
/// Until all that is kept between two rounds has been made.
constexpr qsizetype roundsToWarmUp = 30;
constexpr auto shortPause = std::chrono::milliseconds(6000 / 100);
constexpr long mostKibibytes = 2048;

/// What did not happen cannot have left anything behind.
void expect(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "did not come about: %s\n", what);
    std::exit(2);
}

struct Levels {
    long kibibytes = 0;
    long descriptors = 0;
    long threads = 0;
    long files = 0;

    bool isLevelWith(const Levels &start) const
    {
        return kibibytes <= start.kibibytes + mostKibibytes && descriptors <= start.descriptors &&
               threads <= start.threads && files <= start.files;
    }
};

class Record
{
public:
    /// All temporary files are made below `folder`.
    explicit Record(const QString &folder) : m_folder(folder.toStdString()) {}

    /// Once no child is left: an error when that does not come about.
    void note(const char *when, TestWindow &window)
    {
        // Nothing is asked for while nothing is shown.
        window.content().hide();
        expect(waitUntil(ProcessLevels::hasNoChild), "an end of all children");
        // One round may still be between two of its tools.
        QTest::qWait(200);
        expect(waitUntil(ProcessLevels::hasNoChild), "an end of all children");
        // Pages of files that nobody else maps at the moment are not counted: that is no doing of this process.
        const Levels levels{static_cast<long>(privateMemory() / 1024), ProcessLevels::descriptors(),
                            ProcessLevels::threads(),
                            std::distance(std::filesystem::recursive_directory_iterator(m_folder), {})};
        window.content().show();
        std::printf("%s: %ld KiB of private memory, %ld descriptors, %ld threads, no child, %ld temporary files\n",
                    when, levels.kibibytes, levels.descriptors, levels.threads, levels.files);
        std::fflush(stdout);
        if (!m_start)
            m_start = levels;
        m_isLevel = m_isLevel && levels.isLevelWith(*m_start);
    }

    bool isLevel() const { return m_isLevel; }

private:
    const std::filesystem::path m_folder;
    std::optional<Levels> m_start;
    bool m_isLevel = true;
};

void runScripts(TestWindow &window, int count)
{
    for (int number = 0; number < count; ++number) {
        QEventLoop loop;
        QObject::connect(&window.run, &RunController::isRunningChanged, &loop, [&] {
            if (!window.run.isRunning())
                loop.quit();
        });
        window.run.start(
            {.script = u"seq -f 'line %.0f of a script that prints as much as many others do' 20; echo an error >&2"_s,
             .label = u"run "_s + QString::number(number),
             .machine = u"box"_s,
             .distro = u"debian"_s,
             .disposable = number % 10 == 9,
             .folder = std::nullopt},
            &window.history);
        loop.exec();
    }
}

bool keepLevelOverRuns(const QString &folder, int runs)
{
    TestWindow window;
    window.showRunning({u"box"_s});
    Record record(folder);
    runScripts(window, runsToWarmUp);
    record.note("warm", window);
    runScripts(window, runs / 2);
    record.note("half-way", window);
    runScripts(window, runs - runs / 2);
    record.note("at the end", window);

    const QStringList calls = window.orbStack.tools().calls(u"orb"_s);
    const auto ofShells =
        std::count_if(calls.begin(), calls.end(), [](const QString &call) { return call.startsWith(u"<-m>"_s); });
    const QList<HistoryEntry> &entries = window.history.entries();
    expect(ofShells == runs + runsToWarmUp, "a shell for each run");
    expect(entries.size() == 50 && std::all_of(entries.begin(), entries.end(),
                                               [](const HistoryEntry &entry) { return entry.exitCode == 0; }),
           "runs that ended well");
    std::printf("%d runs: %s\n", runs, record.isLevel() ? "level" : "NOT LEVEL");
    return record.isLevel();
}

bool keepLevelWhilePolling(const QString &folder, int seconds)
{
    TestWindow window;
    // Another state of each container each time.
    window.orbStack.tools().addTool(u"docker"_s,
                                    u"now=$(date +%N); for id in 1 2 3 4 5 6 7 8 9; do echo \"{\\\"ID\\\":\\\"$id\\\","
                                    "\\\"Names\\\":\\\"web-$id\\\",\\\"Status\\\":\\\"Up $now\\\"}\"; done"_s);
    window.orbStack.setRunning(true);
    window.orbStack.setMachines({u"box"_s, u"other"_s});
    window.show(shortPause).setTab(AppTab::containers);
    const auto rounds = [&window] { return window.orbStack.calls(FakeOrbStack::statusCall); };
    Record record(folder);
    expect(waitUntil([&] { return rounds() >= roundsToWarmUp; }), "rounds of polling");
    record.note("warm", window);
    const qsizetype before = rounds();
    QTest::qWait(seconds * 500);
    record.note("half-way", window);
    QTest::qWait(seconds * 500);
    record.note("at the end", window);
    expect(window.containers.containers().size() == 9, "a list of containers");
    std::printf("%lld rounds of polling in %d s: %s\n", static_cast<long long>(rounds() - before), seconds,
                record.isLevel() ? "level" : "NOT LEVEL");
    return record.isLevel();
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    QTemporaryDir folder;
    // From here on all temporary files are made there.
    qputenv("TMPDIR", folder.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argumentCount, arguments);
    const IgnoredSignals ignoredSignals;
    const int runs = argumentCount > 1 ? std::atoi(arguments[1]) : 10'000;
    const int seconds = argumentCount > 2 ? std::atoi(arguments[2]) : 150;
    const bool isLevelOverRuns = keepLevelOverRuns(folder.path(), runs);
    const bool isLevelWhilePolling = keepLevelWhilePolling(folder.path(), seconds);
    return isLevelOverRuns && isLevelWhilePolling ? 0 : 1;
}
