// What the application does when nothing happens: its processor time beside that of the smallest window which starts
// the same three children every six seconds, at the same time, and what grows meanwhile. The tools are those in
// /opt/homebrew/bin.
//
// Idling [SECONDS]

#include "shared/Figures.h"
#include "shared/Measuring.h"
#include "shared/StartedProgram.h"

#include <filesystem>
#include <fstream>
#include <thread>

namespace
{

struct Usage {
    /// Of its own threads, in seconds.
    double processor = 0;
    /// The same with its children, as coarse as the system counts it.
    double withChildren = 0;
    long kibibytes = 0;
    long descriptors = 0;
    long threads = 0;
};

long entriesIn(const std::filesystem::path &folder)
{
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

Usage usageOf(pid_t pid)
{
    const std::filesystem::path process = "/proc/" + std::to_string(pid);
    Usage usage;
    for (const auto &thread : std::filesystem::directory_iterator(process / "task")) {
        double nanoseconds = 0;
        std::ifstream(thread.path() / "schedstat") >> nanoseconds;
        usage.processor += nanoseconds / 1e9;
    }
    std::string statistics;
    std::getline(std::ifstream(process / "stat"), statistics);
    long ticks[4] = {};
    std::sscanf(statistics.c_str() + statistics.rfind(')'),
                ") %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld %ld %ld", &ticks[0], &ticks[1], &ticks[2],
                &ticks[3]);
    usage.withChildren =
        static_cast<double>(ticks[0] + ticks[1] + ticks[2] + ticks[3]) / static_cast<double>(::sysconf(_SC_CLK_TCK));
    std::ifstream memory(process / "smaps_rollup");
    for (std::string line; std::getline(memory, line);) {
        long kibibytes = 0;
        if (std::sscanf(line.c_str(), "Private_%*[A-Za-z]: %ld kB", &kibibytes) == 1 &&
            line.find("Hugetlb") == std::string::npos)
            usage.kibibytes += kibibytes;
    }
    usage.descriptors = entriesIn(process / "fd");
    usage.threads = entriesIn(process / "task");
    return usage;
}

void report(const char *what, const Usage &before, const Usage &after, double seconds)
{
    printFigures(what, {{"seconds", seconds},
                        {"processor_ms", (after.processor - before.processor) * 1e3},
                        {"with_children_ms", (after.withChildren - before.withChildren) * 1e3},
                        {"kib_before", before.kibibytes},
                        {"kib_after", after.kibibytes},
                        {"descriptors_before", before.descriptors},
                        {"descriptors_after", after.descriptors},
                        {"threads_before", before.threads},
                        {"threads_after", after.threads}});
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const double seconds = argumentCount > 1 ? std::atof(arguments[1]) : 300;
    const StartedProgram smallest({SMALLEST_WINDOW, "--polling"});
    const StartedProgram ours({TIDEWELL});
    // Two rounds, so that all that is made once has been made. Not in the middle of a round, nor is the end.
    std::this_thread::sleep_for(std::chrono::seconds(15));
    const Usage smallestBefore = usageOf(smallest.pid());
    const Usage oursBefore = usageOf(ours.pid());
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    const Usage smallestAfter = usageOf(smallest.pid());
    const Usage oursAfter = usageOf(ours.pid());
    report("Tidewell", oursBefore, oursAfter, seconds);
    report("smallest window", smallestBefore, smallestAfter, seconds);
    return 0;
}
