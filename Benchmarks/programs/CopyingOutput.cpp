// "Copy output" of a whole text: how long the button holds the window up, and when it is painted again.
//
// CopyingOutput FILE [ROUNDS]

#include "Support/ProcessMemory.h"
#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Measuring.h"
#include "shared/OutputArguments.h"
#include "shared/RealWindow.h"

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const OutputArguments wanted = OutputArguments::read();
    RealWindow real;
    real.fill(wanted.script, wanted.bytes);

    std::vector<double> times;
    const long before = privateKibibytes();
    for (int round = 0; round < wanted.rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        real.press(u"Copy output"_s);
        frames.watch(real.pane().viewport());
        real.pane().viewport()->update();
        frames.waitForFrame();
        times.push_back(std::chrono::duration<double, std::milli>(frames.last() - start).count());
        QTest::qWait(50);
    }
    printFigures(
        "copying",
        {{"median_ms", median(times)}, {"worst_ms", percentile(times, 1)}, {"kept_kib", privateKibibytes() - before}});
    return 0;
}
