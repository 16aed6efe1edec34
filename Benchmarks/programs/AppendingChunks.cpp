// Whether a chunk costs the same however much the transcript holds: 80 bytes to an empty one and to one of many
// mebibytes, all of one kind, the pane looking on.
//
// AppendingChunks [MEBIBYTES] [ROUNDS]

#include "OutputPane/OutputPane.h"
#include "RunController/RunController.h"
#include "shared/Figures.h"
#include "shared/Measuring.h"

#include <QApplication>

#include <memory>

namespace
{

constexpr int chunksPerRound = 2000;

struct Watched {
    RunController run;
    OutputPane pane{run, run.transcript().text()};

    Watched()
    {
        pane.resize(900, 400);
        pane.show();
        QApplication::processEvents();
    }
};

/// Nanoseconds for one chunk.
double appendMany(RunController &run, const QByteArray &chunk)
{
    const double seconds = secondsFor([&] {
        for (int count = 0; count < chunksPerRound; ++count)
            run.append(QUtf8StringView(chunk.constData(), chunk.size()), OutputKind::out);
    });
    return seconds / chunksPerRound * 1e9;
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argumentCount, arguments);
    const QStringList given = QApplication::arguments().mid(1);
    const int mebibytes = given.isEmpty() ? 100 : given[0].toInt();
    const int rounds = given.size() > 1 ? given[1].toInt() : 51;

    const QByteArray chunk = QByteArray(79, 'x') + '\n';
    Watched full;
    while (full.run.transcript().end() < qint64{mebibytes} * 1024 * 1024)
        full.run.append(QUtf8StringView(chunk.constData(), chunk.size()), OutputKind::out);
    QApplication::processEvents();

    std::vector<double> toEmpty;
    std::vector<double> toFull;
    for (int round = 0; round < rounds; ++round) {
        auto empty = std::make_unique<Watched>();
        toEmpty.push_back(appendMany(empty->run, chunk));
        toFull.push_back(appendMany(full.run, chunk));
        QApplication::processEvents();
    }
    printFigures(
        "appending 80 bytes",
        {{"empty_ns", median(toEmpty)}, {"full_ns", median(toFull)}, {"ratio", median(toFull) / median(toEmpty)}});
    return 0;
}
