// Whether a script that never stops printing can be left alone in the real window: the gaps between two turns of the
// event loop, the frames, the memory; how it scrolls through what is far from the end, and what Stop and Clear cost.
//
// RunningYes [SECONDS] [SCRIPT]

#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Heartbeat.h"
#include "shared/JumpingAbout.h"
#include "shared/MachineWatch.h"
#include "shared/Measuring.h"
#include "shared/RealWindow.h"

using namespace Qt::StringLiterals;

using Clock = std::chrono::steady_clock;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const QStringList given = QCoreApplication::arguments().mid(1);
    const QString script = given.size() < 2 ? u"exec yes"_s : given.at(1);
    RealWindow real;
    real.type(script);
    QTest::qWait(500); // the first listing and its painting are over
    const int seconds = given.isEmpty() ? 60 : given.first().toInt();
    RealWindow::expect(seconds > 0);
    const std::int64_t idle = residentMemory();

    Heartbeat heartbeat;
    MachineWatch machine;
    frames.watch(real.pane().viewport());
    real.press(u"Run"_s);
    const Clock::time_point start = Clock::now();
    heartbeat.takeGaps();
    machine.takeWorst();
    const Transcript &transcript = real.run().transcript();
    // What stood before the flood gives way to it.
    while (transcript.end() < 1024 * 1024)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const TextStore::Position begin = transcript.begin();
    while (millisecondsSince(start) < seconds * 1000)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    // Nothing that was shown is lost.
    RealWindow::expect(real.run().isRunning() && transcript.begin() == begin);
    const double shown = mebibytes(transcript.end() - begin);
    const double held = mebibytes(transcript.memory());
    const int frameCount = frames.count();
    const std::vector<double> flooded = heartbeat.takeGaps();
    const double machineWorst = machine.takeWorst();
    const std::vector<double> scrolled = jumpAbout(frames, real.pane());

    // The line that tells of the stop is of another kind, and makes the transcript drop the flood.
    heartbeat.takeGaps();
    const Clock::time_point stopped = Clock::now();
    // There is another Stop: OrbStack's.
    QTest::mouseClick(ByName::find<QAbstractButton>(real.window(), u"Stop"_s, u"Stop the run"_s), Qt::LeftButton);
    while (real.run().isRunning())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double stopping = millisecondsSince(stopped);
    frames.watch(real.pane().viewport());
    real.press(u"Clear"_s);
    frames.waitForFrame();
    QTest::qWait(50);
    const double worstAtEnd = percentile(heartbeat.takeGaps(), 1);
    const bool isBack = waitUntil([&] { return residentMemory() < idle + std::int64_t{32} * 1024 * 1024; });
    const double returning = millisecondsSince(stopped);
    const double cleared = mebibytes(residentMemory());

    printFigures("running yes", {{"seconds", seconds},
                                 {"mib_shown", shown},
                                 {"held_mib", held},
                                 {"gap_p99_ms", percentile(flooded, 0.99)},
                                 {"gap_worst_ms", percentile(flooded, 1)},
                                 {"machine_gap_worst_ms", machineWorst},
                                 {"frames_per_second", static_cast<double>(frameCount) / seconds},
                                 {"jump_median_ms", median(scrolled)},
                                 {"jump_worst_ms", percentile(scrolled, 1)},
                                 {"stop_ms", stopping},
                                 {"gap_worst_stopping_ms", worstAtEnd},
                                 {"idle_mib", mebibytes(idle)},
                                 {"peak_mib", mebibytes(heartbeat.peak())},
                                 {"cleared_mib", cleared},
                                 {"clearing_ms", returning}});
    return isBack ? 0 : 1;
}
