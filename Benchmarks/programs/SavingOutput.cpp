// File > Save Output As… of a whole text beside `cp` of the same file, by turns: how long each takes, and the gaps
// between two turns of the window's event loop meanwhile.
//
// SavingOutput FILE [ROUNDS]: the file in ASCII, because a longer character that two reads part is not saved as it was.

#include "shared/Figures.h"
#include "shared/FrameWatch.h"
#include "shared/Heartbeat.h"
#include "shared/Measuring.h"
#include "shared/OutputArguments.h"
#include "shared/RealWindow.h"

#include <QFileDialog>
#include <QTemporaryDir>

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

/// Whether a saved file ends with all that was printed, byte for byte.
bool endsAs(const QString &saved, const OutputArguments &wanted)
{
    const QString skipped = QString::number(QFileInfo(saved).size() - wanted.bytes);
    int status = 0;
    ::waitpid(spawn({"/usr/bin/cmp", "--ignore-initial", skipped.toStdString() + ":0", saved.toStdString(),
                     wanted.file.toStdString()}),
              &status, 0);
    return status == 0;
}

/// Chooses the file and waits until it is there. The beat counts from the choice on.
void save(MainWindow &window, const QString &to, Heartbeat &heartbeat)
{
    bool isOver = false;
    bool isSaved = false;
    const auto connection = QObject::connect(&window.saving(), &OutputSaving::ended, [&](bool succeeded) {
        isOver = true;
        isSaved = succeeded;
    });
    window.saving().action()->trigger();
    auto *dialog = window.findChild<QFileDialog *>();
    heartbeat.takeGaps();
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
    Heartbeat heartbeat;
    double worstGap = 0;
    std::vector<double> copying;
    std::vector<double> saving;
    std::vector<double> ratios;
    for (int round = 0; round < wanted.rounds; ++round) {
        const QString copied = folder.filePath(u"copied"_s);
        const QString saved = folder.filePath(u"saved"_s);
        copying.push_back(secondsFor([&] { copy(wanted.file, copied); }));
        // Both find as much memory free, and nothing to be written on behalf of the other.
        RealWindow::expect(QFile::remove(copied));
        saving.push_back(secondsFor([&] { save(real.window(), saved, heartbeat); }));
        worstGap = std::max(worstGap, percentile(heartbeat.takeGaps(), 1));
        ratios.push_back(saving.back() / copying.back());
        // The command is told above what it prints.
        RealWindow::expect(QFileInfo(saved).size() > wanted.bytes);
        RealWindow::expect(endsAs(saved, wanted));
        RealWindow::expect(QFile::remove(saved));
    }
    printFigures("saving", {{"mib", static_cast<double>(wanted.bytes) / (1024 * 1024)},
                            {"copying_s", median(copying)},
                            {"saving_s", median(saving)},
                            {"ratio", median(ratios)},
                            {"gap_worst_ms", worstGap}});
    return 0;
}
