// Whether the window answers while docker prints a log without measure, in few and long lines, until its end is shown.
//
// ReadingLogs [MEBIBYTES] [MEBIBYTES OF A LINE]

#include "ContentView/Screens/ContainerLogSheet.h"
#include "Look/LogBox.h"
#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Heartbeat.h"
#include "shared/Measuring.h"
#include "shared/RealWindow.h"

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const int size = argumentCount > 1 ? std::atoi(arguments[1]) : 1024;
    const int line = argumentCount > 2 ? std::atoi(arguments[2]) : 4;
    RealWindow::expect(line > 0 && size >= line);
    RealWindow real;
    TestTools &tools = real.tools();
    const QString lineFile = tools.addFile(u"line"_s, QByteArray(qsizetype{line} * 1024 * 1024 - 1, 'x') + '\n');
    tools.addTool(u"docker"_s,
                  u"case $1 in\n"
                  "ps) echo '{\"ID\":\"1\",\"Names\":\"web\",\"Image\":\"nginx\",\"State\":\"running\"}' ;;\n"
                  "logs) for i in $(seq %1); do cat '%2'; done ;;\n"
                  "esac"_s.arg(size / line)
                      .arg(lineFile));
    real.content().setTab(AppTab::containers);
    RealWindow::expect(waitUntil([&] { return ByName::isOffered(real.window(), u"Logs"_s); }));
    QTest::qWait(500); // the first listing and its painting are over

    const std::int64_t idle = residentMemory();
    Heartbeat heartbeat;
    const auto start = std::chrono::steady_clock::now();
    real.press(u"Logs"_s);
    const LogBox *log = nullptr;
    while (log == nullptr) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (const auto *const sheet = real.window().findChild<ContainerLogSheet *>())
            log = sheet->findChild<LogBox *>();
    }
    const double shown = millisecondsSince(start);
    frames.watch(log->viewport());
    frames.waitForFrame();
    QTest::qWait(100);
    const std::vector<double> gaps = heartbeat.takeGaps();
    RealWindow::expect(log->shownText().size() > qsizetype{line} * 1024 * 1024 - 1);
    printFigures("reading logs", {{"mib", size},
                                  {"mib_a_line", line},
                                  {"seconds", shown / 1000},
                                  {"gap_p99_ms", percentile(gaps, 0.99)},
                                  {"gap_worst_ms", percentile(gaps, 1)},
                                  {"idle_mib", mebibytes(idle)},
                                  {"peak_mib", mebibytes(heartbeat.peak())}});
    return 0;
}
