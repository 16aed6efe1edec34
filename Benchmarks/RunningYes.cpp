// Whether a script that never stops printing can be left alone in the real window: the gaps between two turns of the
// event loop, the frames, the memory; how it scrolls through what is far from the end, and what Stop and Clear cost.
//
// RunningYes [SECONDS] [SCRIPT]

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
    const int seconds = argumentCount > 1 ? std::atoi(arguments[1]) : 60;
    const QString script = QString::fromLocal8Bit(argumentCount > 2 ? arguments[2] : "exec yes");
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
        if (gaps.back() > 20 && looks.isActive())
            std::printf("  a gap of %.1f ms after %.1f s\n", gaps.back(), millisecondsSince(start) / 1000);
        last = Clock::now();
        peak = std::max(peak, gaps.size() % 64 == 0 ? residentMemory() : 0);
    });
    looks.callOnTimeout([&] { report(real.run()); });
    looks.start(seconds * 1000 / 10);

    std::printf("%s for %d s\n", script.toLocal8Bit().constData(), seconds);
    frames.watch(real.pane().viewport());
    real.press(u"Run"_s);
    start = last = Clock::now();
    heartbeat.start(1);
    while (millisecondsSince(start) < seconds * 1000)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const Transcript &transcript = real.run().transcript();
    const double shown = mebibytes(transcript.end() - transcript.begin());
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

    std::printf("  %.0f MiB/s; gap p99 %.1f ms, worst %.1f ms; %.0f frames a second\n", shown / seconds,
                percentile(flooded, 0.99), percentile(flooded, 1), static_cast<double>(frameCount) / seconds);
    std::printf("  a jump with the scroll bar: median %.1f ms, worst %.1f ms\n", median(scrolled),
                percentile(scrolled, 1));
    std::printf("  Stop: the run has ended after %.0f ms; worst gap until Clear is painted %.1f ms\n", stopping,
                worstAtEnd);
    std::printf("  resident: %.0f MiB idle, %.0f MiB at most, %.0f MiB after Clear (%s, %.0f ms after Stop)\n",
                mebibytes(idle), mebibytes(peak), mebibytes(residentMemory()), isBack ? "given back" : "NOT GIVEN BACK",
                returning);
    return isBack ? 0 : 1;
}
