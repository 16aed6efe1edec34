// Finding a text in what the real window shows, beside grep over the same file: from the last key typed until it is
// selected in view, and until all of it is counted; and from the first key of a text in view until it is marked.
//
// FindingText FILE [ROUNDS] looks for what stands once in the file, at its start: its first eight characters.

#include "Find/FindBar.h"
#include "Find/FindablePane.h"
#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Measuring.h"
#include "shared/OutputArguments.h"
#include "shared/RealWindow.h"

#include <QFile>
#include <QLineEdit>
#include <QScrollBar>

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const QString path = QCoreApplication::arguments().value(1);
    const OutputArguments wanted = OutputArguments::read();
    QFile file(path);
    RealWindow::expect(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.read(8));
    RealWindow real;
    real.fill(wanted.script, wanted.bytes);
    auto *const findable = real.window().findChild<FindablePane *>();
    OutputPane &pane = real.pane();
    findable->find();
    auto *const field = findable->findChild<FindBar *>()->findChild<QLineEdit *>();

    std::vector<double> firstKeys;
    std::vector<double> found;
    std::vector<double> counted;
    std::vector<double> grepped;
    std::vector<double> gaps;
    for (int round = 0; round < wanted.rounds; ++round) {
        field->clear();
        pane.verticalScrollBar()->setValue(pane.verticalScrollBar()->maximum());
        QTest::qWait(50);
        const QString key = pane.text().text(pane.text().end() - 3, pane.text().end() - 2);
        frames.watch(pane.viewport());
        auto start = std::chrono::steady_clock::now();
        QTest::keyClicks(field, key);
        frames.waitForFrame();
        firstKeys.push_back(std::chrono::duration<double, std::milli>(frames.last() - start).count());

        field->clear();
        QTest::qWait(50);
        auto last = std::chrono::steady_clock::now();
        start = last;
        double seen = 0;
        field->setText(text);
        while (!ByName::shows(real.window(), u"1 of 1"_s)) {
            QApplication::processEvents(QEventLoop::AllEvents);
            const auto now = std::chrono::steady_clock::now();
            gaps.push_back(std::chrono::duration<double, std::milli>(now - last).count());
            last = now;
            if (seen == 0 && pane.selectedText() == text)
                seen = std::chrono::duration<double>(now - start).count();
        }
        counted.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        found.push_back(seen == 0 ? counted.back() : seen);
        grepped.push_back(secondsFor([&] {
            runBarely({"/bin/grep", "-c", "-i", "-F", text.toStdString(), path.toStdString()},
                      [](const char *, std::size_t) {});
        }));
    }
    printFigures("finding", {{"bytes", wanted.bytes},
                             {"first_key_ms", median(firstKeys)},
                             {"first_key_worst_ms", percentile(firstKeys, 1)},
                             {"found_ms", median(found) * 1e3},
                             {"counted_s", median(counted)},
                             {"grep_s", median(grepped)},
                             {"counted_to_grep", median(counted) / median(grepped)},
                             {"gap_worst_ms", percentile(gaps, 1)}});
    return 0;
}
