// Whether a reader who has scrolled up in the window of all output keeps the place while 1,000 lines a second arrive:
// the first character in view and the selection must stay, and the frames of the main window must come in time.
//
// ReadingMeanwhile [SECONDS]

#include "TidewellApp/OutputWindow.h"
#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Heartbeat.h"
#include "shared/Measuring.h"
#include "shared/RealWindow.h"

#include <QScrollBar>

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const QStringList given = QCoreApplication::arguments().mid(1);
    const int seconds = given.isEmpty() ? 60 : given.first().toInt();
    RealWindow::expect(seconds > 0);
    RealWindow real;
    real.type(u"i=0; while :; do seq $i $((i + 99)); i=$((i + 100)); sleep 0.1; done"_s);
    real.press(u"Run"_s);
    const TextView &record = real.run().transcript().record();
    while (record.end() < 20000)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    real.window().showAllOutput();
    OutputPane *all = nullptr;
    for (QWidget *each : QApplication::topLevelWidgets()) {
        if (auto *const window = qobject_cast<OutputWindow *>(each))
            all = window->findChild<OutputPane *>();
    }
    frames.watch(all->viewport());
    frames.waitForFrame();
    all->verticalScrollBar()->setValue(all->verticalScrollBar()->maximum() / 2);
    const OutputPane::Position first = all->visibleRange().begin;
    all->select(first + 100, first + 120);
    const QString selected = all->selectedText();
    QTest::qWait(100);

    Heartbeat heartbeat;
    frames.watch(real.pane().viewport());
    heartbeat.takeGaps();
    const OutputPane::Position before = record.end();
    const auto start = std::chrono::steady_clock::now();
    int looks = 0;
    int moves = 0;
    while (millisecondsSince(start) < seconds * 1000) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        ++looks;
        if (all->visibleRange().begin != first || all->selectedText() != selected)
            ++moves;
    }
    const std::vector<double> gaps = heartbeat.takeGaps();
    const int frameCount = frames.count();
    RealWindow::expect(real.run().isRunning() && record.end() > before);
    printFigures("reading meanwhile", {{"seconds", seconds},
                                       {"kib_arrived", static_cast<double>(record.end() - before) / 1024},
                                       {"looks", looks},
                                       {"moves", moves},
                                       {"gap_p99_ms", percentile(gaps, 0.99)},
                                       {"gap_worst_ms", percentile(gaps, 1)},
                                       {"frames", frameCount}});
    return moves == 0 ? 0 : 1;
}
