// Whether the window stays alive while a child floods: the gaps between two turns of the main thread's event loop, told
// by a zero-length timer, while the output goes into the transcript.
//
// TurningWhileFlooded [SECONDS] [WRITE SIZE]

#include "OrbCLI/OrbCLI.h"
#include "Transcript/Transcript.h"
#include "shared/Figures.h"
#include "shared/Measuring.h"

#include <QCoreApplication>
#include <QTimer>

int main(int argumentCount, char *arguments[])
{
    const QCoreApplication application(argumentCount, arguments);
    const double seconds = argumentCount > 1 ? std::atof(arguments[1]) : 5;
    const QString size = QString::fromUtf8(argumentCount > 2 ? arguments[2] : "80");

    std::vector<double> gaps;
    auto last = std::chrono::steady_clock::now();
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.callOnTimeout([&] {
        const auto now = std::chrono::steady_clock::now();
        gaps.push_back(std::chrono::duration<double>(now - last).count());
        last = now;
    });
    heartbeat.start(1);

    Transcript transcript;
    double bytes = 0;
    OrbCLI::stream(
        QStringLiteral(BLOCK_WRITER), {size, QStringLiteral("1000000000000000")}, std::nullopt, seconds,
        [&](QUtf8StringView text, bool) {
            bytes += static_cast<double>(text.size());
            // By turns, so that the transcript drops its oldest segments and memory stays bounded.
            const bool isOdd = (static_cast<long long>(bytes) >> 16) & 1;
            transcript.append(text, isOdd ? OutputKind::out : OutputKind::err);
        },
        [](int, const ProcessHandlePointer &) { QCoreApplication::quit(); });
    QCoreApplication::exec();

    printFigures("turning", {{"bytes_a_write", size.toInt()},
                             {"seconds", seconds},
                             {"mib_per_second", bytes / seconds / (1024 * 1024)},
                             {"turns", gaps.size()},
                             {"gap_worst_ms", percentile(gaps, 1) * 1e3},
                             {"gap_p99_ms", percentile(gaps, 0.99) * 1e3},
                             {"gap_median_ms", median(gaps) * 1e3}});
    return 0;
}
