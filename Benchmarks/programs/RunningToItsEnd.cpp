// How a script fares that prints much and ends by itself, in the real window: its pace, the gaps between two turns of
// the event loop, the memory; and how long a jump to anywhere in all of its output takes in the window for that.
//
// RunningToItsEnd MEBIBYTES SCRIPT

#include "TidewellApp/OutputWindow.h"
#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Heartbeat.h"
#include "shared/JumpingAbout.h"
#include "shared/Measuring.h"
#include "shared/RealWindow.h"

#include <random>

using namespace Qt::StringLiterals;

namespace
{

OutputWindow &allOutput()
{
    for (QWidget *each : QApplication::topLevelWidgets()) {
        if (auto *const found = qobject_cast<OutputWindow *>(each))
            return *found;
    }
    std::abort();
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const QStringList given = QCoreApplication::arguments().mid(1);
    RealWindow::expect(given.size() == 2);
    const std::int64_t size = given.first().toLongLong() * 1024 * 1024;
    RealWindow real;
    real.type(given.at(1));
    QTest::qWait(500); // the first listing and its painting are over

    Heartbeat heartbeat;
    frames.watch(real.pane().viewport());
    real.press(u"Run"_s);
    const auto start = std::chrono::steady_clock::now();
    heartbeat.takeGaps();
    while (real.run().isRunning())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double seconds = millisecondsSince(start) / 1000;
    const std::vector<double> gaps = heartbeat.takeGaps();
    const int frameCount = frames.count();
    const TextView &record = real.run().transcript().record();
    RealWindow::expect(real.run().plainText().contains(u"exit status 0"_s));
    RealWindow::expect(real.run().outputLoss().isEmpty() && record.end() - record.begin() > size);

    heartbeat.takeGaps();
    real.window().showAllOutput();
    OutputPane &all = *allOutput().findChild<OutputPane *>();
    frames.watch(all.viewport());
    frames.waitForFrame();
    const std::vector<double> jumps = jumpAbout(frames, all);
    const double worstAtJumps = percentile(heartbeat.takeGaps(), 1);

    // As somebody would who reads here and there.
    std::mt19937_64 random(1);
    std::vector<double> reading;
    for (int read = 0; read < 200; ++read) {
        const auto number = std::uniform_int_distribution(record.firstBlock(), record.endBlock() - 1)(random);
        const auto begin = std::chrono::steady_clock::now();
        RealWindow::expect(record.bytes(number).size() == record.block(number).size.bytes);
        reading.push_back(millisecondsSince(begin));
    }
    printFigures("running to its end", {{"mib_shown", mebibytes(size)},
                                        {"mib_per_second", mebibytes(size) / seconds},
                                        {"held_mib", mebibytes(real.run().transcript().memory())},
                                        {"gap_p99_ms", percentile(gaps, 0.99)},
                                        {"gap_worst_ms", percentile(gaps, 1)},
                                        {"frames_per_second", frameCount / seconds},
                                        {"jump_median_ms", median(jumps)},
                                        {"jump_worst_ms", percentile(jumps, 1)},
                                        {"gap_worst_jumping_ms", worstAtJumps},
                                        {"read_median_ms", median(reading)},
                                        {"read_worst_ms", percentile(reading, 1)},
                                        {"peak_mib", mebibytes(heartbeat.peak())},
                                        {"peak_private_mib", mebibytes(heartbeat.peakPrivate())}});
    return 0;
}
