// File > Save Output As… of a whole text beside `cp` of the same file, by turns: how long each takes, and the gaps
// between two turns of the window's event loop meanwhile.
//
// SavingOutput FILE [ROUNDS]

#include "Figures.h"
#include "FrameWatch.h"
#include "Measuring.h"
#include "OutputArguments.h"
#include "RealWindow.h"

#include <QFileDialog>
#include <QTemporaryDir>
#include <QTimer>

#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace
{

void copy(const QString &from, const QString &to)
{
    int status = 0;
    ::waitpid(spawn({"/bin/cp", from.toStdString(), to.toStdString()}, nullptr), &status, 0);
    RealWindow::expect(status == 0);
}

/// Chooses the file and waits until it is there.
void save(MainWindow &window, const QString &to)
{
    bool isOver = false;
    bool isSaved = false;
    const auto connection = QObject::connect(&window.saving(), &OutputSaving::ended, [&](bool succeeded) {
        isOver = true;
        isSaved = succeeded;
    });
    window.saving().action()->trigger();
    auto *dialog = window.findChild<QFileDialog *>();
    Q_EMIT dialog->fileSelected(to);
    delete dialog;
    while (!isOver)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QObject::disconnect(connection);
    RealWindow::expect(isSaved);
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const FrameWatch application(argumentCount, arguments);
    const OutputArguments wanted = OutputArguments::read();
    RealWindow real;
    real.fill(wanted.script, wanted.bytes);

    // On the disk that holds the file, so that both write to the same one.
    const QTemporaryDir folder(QFileInfo(wanted.file).absolutePath() + u"/saving-XXXXXX"_s);
    RealWindow::expect(folder.isValid());
    double worstGap = 0;
    auto last = std::chrono::steady_clock::now();
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.callOnTimeout([&] {
        const auto now = std::chrono::steady_clock::now();
        worstGap = std::max(worstGap, std::chrono::duration<double, std::milli>(now - last).count());
        last = now;
    });

    std::vector<double> copying;
    std::vector<double> saving;
    std::vector<double> ratios;
    for (int round = 0; round < wanted.rounds; ++round) {
        const QString copied = folder.filePath(u"copied"_s);
        const QString saved = folder.filePath(u"saved"_s);
        copying.push_back(secondsFor([&] { copy(wanted.file, copied); }));
        last = std::chrono::steady_clock::now();
        heartbeat.start(1);
        saving.push_back(secondsFor([&] { save(real.window(), saved); }));
        heartbeat.stop();
        ratios.push_back(saving.back() / copying.back());
        // The command is told above what it prints.
        RealWindow::expect(QFileInfo(saved).size() > wanted.bytes);
        RealWindow::expect(QFile::remove(copied) && QFile::remove(saved));
    }
    printFigures("saving", {{"mib", static_cast<double>(wanted.bytes) / (1024 * 1024)},
                            {"copying_s", median(copying)},
                            {"saving_s", median(saving)},
                            {"ratio", median(ratios)},
                            {"gap_worst_ms", worstGap}});
    return 0;
}
