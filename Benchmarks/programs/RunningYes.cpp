// Whether a script that never stops printing can be left alone in the real window: the gaps between two turns of the
// event loop, the frames, the memory; how it scrolls through what is far from the end, and what Stop and Clear cost.
//
// RunningYes [--json] [SECONDS] [SCRIPT]

#include "FrameWatch.h"
#include "Measuring.h"
#include "RealWindow.h"
#include "Support/ProcessMemory.h"

#include <QScrollBar>
#include <QTimer>

#include <random>

using namespace Qt::StringLiterals;

namespace
{

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point moment)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - moment).count();
}

double mebibytes(std::int64_t bytes)
{
    return static_cast<double>(bytes) / (1024 * 1024);
}

/// A look in between. What is held grows all the time, so it is worth seeing how.
void report(const RunController &run)
{
    std::printf("  %9.0f MiB shown, %5.0f MiB held by the transcript, %5.0f MiB resident\n",
                mebibytes(run.transcript().end() - run.transcript().begin()), mebibytes(run.transcript().memory()),
                mebibytes(residentMemory()));
    std::fflush(stdout);
}

/// Jumps with the scroll bar to places anywhere in the text, each until it is painted.
std::vector<double> scrollAbout(FrameWatch &frames, OutputPane &pane)
{
    std::mt19937 random(1);
    std::vector<double> times;
    for (int jump = 0; jump < 100; ++jump) {
        const int place = std::uniform_int_distribution<int>(0, pane.verticalScrollBar()->maximum())(random);
        frames.watch(pane.viewport());
        const Clock::time_point start = Clock::now();
        pane.verticalScrollBar()->setValue(place);
        pane.viewport()->repaint();
        times.push_back(millisecondsSince(start));
        QApplication::processEvents();
    }
    return times;
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    QStringList given = QCoreApplication::arguments().mid(1);
    const bool asJson = given.removeAll(u"--json"_s) > 0;
    const int seconds = given.isEmpty() ? 60 : given.first().toInt();
    const QString script = given.size() < 2 ? u"exec yes"_s : given.at(1);
    RealWindow::expect(seconds > 0);
    RealWindow real;
    real.type(script);
    QTest::qWait(500); // the first listing and its painting are over
    const std::int64_t idle = residentMemory();
    std::int64_t peak = idle;

    std::vector<double> gaps;
    Clock::time_point start;
    Clock::time_point last;
    QTimer looks;
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.callOnTimeout([&] {
        gaps.push_back(millisecondsSince(last));
        if (!asJson && gaps.back() > 20 && looks.isActive())
            std::printf("  a gap of %.1f ms after %.1f s\n", gaps.back(), millisecondsSince(start) / 1000);
        last = Clock::now();
        peak = std::max(peak, gaps.size() % 64 == 0 ? residentMemory() : 0);
    });
    looks.callOnTimeout([&] {
        if (!asJson)
            report(real.run());
    });
    looks.start(seconds * 1000 / 10);

    frames.watch(real.pane().viewport());
    real.press(u"Run"_s);
    start = last = Clock::now();
    heartbeat.start(1);
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
    const int frameCount = frames.count();
    const std::vector<double> flooded = std::exchange(gaps, {});
    looks.stop();
    const std::vector<double> scrolled = scrollAbout(frames, real.pane());

    // The line that tells of the stop is of another kind, and makes the transcript drop the flood.
    last = Clock::now();
    gaps.clear();
    const Clock::time_point stopped = last;
    // There is another Stop: OrbStack's.
    QTest::mouseClick(ByName::find<QAbstractButton>(real.window(), u"Stop"_s, u"Stop the run"_s), Qt::LeftButton);
    while (real.run().isRunning())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double stopping = millisecondsSince(stopped);
    frames.watch(real.pane().viewport());
    real.press(u"Clear"_s);
    frames.waitForFrame();
    QTest::qWait(50);
    const double worstAtEnd = percentile(gaps, 1);
    const bool isBack = waitUntil([&] { return residentMemory() < idle + std::int64_t{32} * 1024 * 1024; });
    const double returning = millisecondsSince(stopped);
    const double cleared = mebibytes(residentMemory());

    const double framesPerSecond = static_cast<double>(frameCount) / seconds;
    if (asJson) {
        std::printf("{\"what\":\"running yes\",\"seconds\":%d,\"mib_shown\":%.0f,\"gap_p99_ms\":%.2f,"
                    "\"gap_worst_ms\":%.2f,\"frames_per_second\":%.1f,\"jump_worst_ms\":%.2f,\"stop_ms\":%.1f,"
                    "\"gap_worst_stopping_ms\":%.2f,\"idle_mib\":%.0f,\"peak_mib\":%.0f,\"cleared_mib\":%.0f,"
                    "\"clearing_ms\":%.0f}\n",
                    seconds, shown, percentile(flooded, 0.99), percentile(flooded, 1), framesPerSecond,
                    percentile(scrolled, 1), stopping, worstAtEnd, mebibytes(idle), mebibytes(peak), cleared,
                    returning);
        return isBack ? 0 : 1;
    }
    std::printf("%s for %d s: %.0f MiB/s; gap p99 %.1f ms, worst %.1f ms; %.0f frames a second\n",
                script.toLocal8Bit().constData(), seconds, shown / seconds, percentile(flooded, 0.99),
                percentile(flooded, 1), framesPerSecond);
    std::printf("  a jump with the scroll bar: median %.1f ms, worst %.1f ms\n", median(scrolled),
                percentile(scrolled, 1));
    std::printf("  Stop: the run has ended after %.0f ms; worst gap until Clear is painted %.1f ms\n", stopping,
                worstAtEnd);
    std::printf("  resident: %.0f MiB idle, %.0f MiB at most, %.0f MiB after Clear (%s, %.0f ms after Stop)\n",
                mebibytes(idle), mebibytes(peak), cleared, isBack ? "given back" : "NOT GIVEN BACK", returning);
    return isBack ? 0 : 1;
}
