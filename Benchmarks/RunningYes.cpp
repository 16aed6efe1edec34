// Whether a child that never stops printing can be left alone: the main thread's gaps, the memory, and what a stop and
// a clear cost at the end. All of it goes into one segment of a transcript, at the pace the application allows.
//
// RunningYes [SECONDS] [SHELL COMMAND]

#include "Measuring.h"
#include "OrbCLI/OrbCLI.h"
#include "RunController/OutputPace.h"
#include "RunController/Transcript.h"
#include "Support/ResidentMemory.h"

#include <QCoreApplication>
#include <QTimer>

#include <thread>

namespace
{

/// What the program may keep after a clear.
constexpr std::int64_t allowance = std::int64_t{16} * 1024 * 1024;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point moment)
{
    return std::chrono::duration<double>(Clock::now() - moment).count();
}

double mebibytes(std::int64_t bytes)
{
    return static_cast<double>(bytes) / (1024 * 1024);
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const QCoreApplication application(argumentCount, arguments);
    const double seconds = argumentCount > 1 ? std::atof(arguments[1]) : 60;
    const QString command = QString::fromLocal8Bit(argumentCount > 2 ? arguments[2] : "exec yes");

    std::vector<double> gaps;
    Clock::time_point last = Clock::now();
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.callOnTimeout([&] {
        gaps.push_back(secondsSince(last));
        last = Clock::now();
    });
    heartbeat.start(1);

    const std::int64_t idle = residentMemory();
    std::int64_t peak = 0;
    Transcript transcript;
    const auto report = [&] {
        peak = std::max(peak, residentMemory());
        std::printf("%8.0f MiB shown, %5.0f MiB held by the transcript, %5.0f MiB resident\n",
                    mebibytes(transcript.end()), mebibytes(transcript.memory()), mebibytes(residentMemory()));
        std::fflush(stdout);
    };
    QTimer looks;
    looks.callOnTimeout(report);
    looks.start(static_cast<int>(seconds * 1000 / 10));

    Clock::time_point stopped;
    ProcessHandlePointer child;
    const OutputPace pace;
    child = OrbCLI::stream(
        QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command}, std::nullopt, std::nullopt,
        [&](QUtf8StringView text, bool) {
            const std::int64_t before = transcript.memory();
            transcript.append(text, OutputKind::out);
            child->pauseOutput(pace.pauseAfter(before, transcript.memory()));
        },
        [](int, const ProcessHandlePointer &) { QCoreApplication::quit(); });
    QTimer::singleShot(static_cast<int>(seconds * 1000), Qt::PreciseTimer, &application, [&] {
        stopped = Clock::now();
        child->cancel();
    });
    QCoreApplication::exec();
    const double untilEnd = secondsSince(stopped);
    report();
    const double clearing = secondsFor([&] { transcript.clear(); });
    const Clock::time_point cleared = Clock::now();
    while (residentMemory() > idle + allowance && secondsSince(cleared) < 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const double returning = secondsSince(cleared);

    std::printf("%s for %.0f s: %.0f MiB/s\n", command.toLocal8Bit().constData(), seconds,
                mebibytes(transcript.end()) / seconds);
    std::printf("  %zu turns of the event loop: longest gap %.2f ms, p99 %.2f ms, median %.2f ms\n", gaps.size(),
                *std::max_element(gaps.begin(), gaps.end()) * 1e3, percentile(gaps, 0.99) * 1e3, median(gaps) * 1e3);
    std::printf("  from the stop to the end %.1f ms; the clear %.1f ms, and %.1f ms later all is given back\n",
                untilEnd * 1e3, clearing * 1e3, returning * 1e3);
    std::printf("  resident: %.0f MiB at the start, %.0f MiB at most, %.0f MiB after the clear\n", mebibytes(idle),
                mebibytes(peak), mebibytes(residentMemory()));
    return 0;
}
