// Whether a script that never stops printing can be left alone in the real window: the gaps between two turns of the
// event loop, the frames, the memory; how it scrolls through what is far from the end, and what Stop and Clear cost.
//
// Or how one that ends by itself fares, after so many mebibytes.
//
// RunningYes [SECONDS] [SCRIPT]
// RunningYes MEBIBYTESm SCRIPT

#include "Figures.h"
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

/// The turns of the event loop and the memory from its making on.
class Heartbeat
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout([this] {
            m_gaps.push_back(millisecondsSince(m_last));
            m_last = Clock::now();
            if (m_gaps.size() % 64 != 0)
                return;
            m_peak = std::max(m_peak, residentMemory());
            m_peakPrivate = std::max(m_peakPrivate, privateMemory());
        });
        m_timer.start(1);
    }

    std::vector<double> takeGaps()
    {
        m_last = Clock::now();
        return std::exchange(m_gaps, {});
    }
    std::int64_t peak() const { return m_peak; }
    std::int64_t peakPrivate() const { return m_peakPrivate; }

private:
    QTimer m_timer;
    Clock::time_point m_last = Clock::now();
    std::vector<double> m_gaps;
    std::int64_t m_peak = residentMemory();
    std::int64_t m_peakPrivate = privateMemory();
};

/// Runs a script that prints so much and ends, and looks at all of it from end to end of the record.
int runToItsEnd(FrameWatch &frames, RealWindow &real, std::int64_t size)
{
    Heartbeat heartbeat;
    frames.watch(real.pane().viewport());
    real.press(u"Run"_s);
    const Clock::time_point start = Clock::now();
    heartbeat.takeGaps();
    while (real.run().isRunning())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double seconds = millisecondsSince(start) / 1000;
    const std::vector<double> gaps = heartbeat.takeGaps();
    const TextView &record = real.run().transcript().record();
    RealWindow::expect(real.run().plainText().contains(u"exit status 0"_s));
    RealWindow::expect(real.run().outputLoss().isEmpty() && record.end() - record.begin() > size);

    // As somebody would who reads here and there.
    std::mt19937_64 random(1);
    std::vector<double> reading;
    for (int read = 0; read < 200; ++read) {
        const auto number = std::uniform_int_distribution(record.firstBlock(), record.endBlock() - 1)(random);
        const Clock::time_point begin = Clock::now();
        RealWindow::expect(record.bytes(number).size() == record.block(number).size.bytes);
        reading.push_back(millisecondsSince(begin));
    }
    printFigures("running to its end", {{"mib_shown", mebibytes(size)},
                                        {"mib_per_second", mebibytes(size) / seconds},
                                        {"held_mib", mebibytes(real.run().transcript().memory())},
                                        {"gap_p99_ms", percentile(gaps, 0.99)},
                                        {"gap_worst_ms", percentile(gaps, 1)},
                                        {"frames_per_second", frames.count() / seconds},
                                        {"read_median_ms", median(reading)},
                                        {"read_worst_ms", percentile(reading, 1)},
                                        {"peak_mib", mebibytes(heartbeat.peak())},
                                        {"peak_private_mib", mebibytes(heartbeat.peakPrivate())}});
    return 0;
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const QStringList given = QCoreApplication::arguments().mid(1);
    const QString amount = given.isEmpty() ? u"60"_s : given.first();
    const QString script = given.size() < 2 ? u"exec yes"_s : given.at(1);
    RealWindow real;
    real.type(script);
    QTest::qWait(500); // the first listing and its painting are over
    if (amount.endsWith(u'm'))
        return runToItsEnd(frames, real, amount.chopped(1).toLongLong() * 1024 * 1024);
    const int seconds = amount.toInt();
    RealWindow::expect(seconds > 0);
    const std::int64_t idle = residentMemory();

    Heartbeat heartbeat;
    frames.watch(real.pane().viewport());
    real.press(u"Run"_s);
    const Clock::time_point start = Clock::now();
    heartbeat.takeGaps();
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
    const std::vector<double> scrolled = scrollAbout(frames, real.pane());

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
