// With a whole text in the transcript: leaving the Run tab, coming back to it, and making the window one column wider
// or narrower, each until the window is painted.
//
// LeavingAndResizing FILE [ROUNDS]

#include "ContentView/Screens/HistoryView.h"
#include "Look/Typography.h"
#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Measuring.h"
#include "shared/OutputArguments.h"
#include "shared/RealWindow.h"

using namespace Qt::StringLiterals;

namespace
{

/// Milliseconds from the act to the end of the first frame in which the widget that it returns is painted.
double untilPainted(FrameWatch &frames, const std::function<QWidget *()> &act)
{
    const auto start = std::chrono::steady_clock::now();
    frames.watch(act());
    frames.waitForFrame();
    return std::chrono::duration<double, std::milli>(frames.last() - start).count();
}

void report(const char *what, const std::vector<double> &times)
{
    printFigures(what, {{"median_ms", median(times)}, {"worst_ms", percentile(times, 1)}});
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const OutputArguments wanted = OutputArguments::read();
    RealWindow real;
    real.fill(wanted.script, wanted.bytes);

    std::vector<double> leaving;
    std::vector<double> comingBack;
    std::vector<double> resizing;
    for (int round = 0; round < wanted.rounds; ++round) {
        leaving.push_back(untilPainted(frames, [&] {
            real.content().setTab(AppTab::history);
            return real.content().findChild<HistoryView *>();
        }));
        QTest::qWait(50);
        comingBack.push_back(untilPainted(frames, [&] {
            real.content().setTab(AppTab::run);
            return real.pane().viewport();
        }));
        RealWindow::expect(real.showsEnd());
        QTest::qWait(50);
    }
    const int column = QFontMetrics(Typography::monospaced(12)).horizontalAdvance(u'0') + 1;
    for (int round = 0; round < wanted.rounds; ++round) {
        const int width = real.pane().viewport()->width();
        resizing.push_back(untilPainted(frames, [&] {
            real.window().resize(real.window().width() + (round % 2 == 0 ? -column : column), real.window().height());
            return real.pane().viewport();
        }));
        RealWindow::expect(real.showsEnd() && real.pane().viewport()->width() != width);
        QTest::qWait(50);
    }
    report("leaving the Run tab", leaving);
    report("coming back", comingBack);
    report("resizing", resizing);
    return 0;
}
