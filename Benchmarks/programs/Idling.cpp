// What the application does when nothing happens: its processor time beside that of the smallest window which starts
// the same three children every six seconds, at the same time, and what grows meanwhile. The tools are those in
// /opt/homebrew/bin.
//
// Idling [--json] [SECONDS]

#include "Measuring.h"
#include "StartedProgram.h"

#include <filesystem>
#include <fstream>
#include <string_view>
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

void report(const char *what, const Usage &before, const Usage &after, double seconds, bool asJson)
{
    std::printf(asJson ? "{\"what\":\"%s\",\"seconds\":%.0f,\"processor_ms\":%.1f,\"with_children_ms\":%.0f,"
                         "\"kib_before\":%ld,\"kib_after\":%ld,\"descriptors_before\":%ld,\"descriptors_after\":%ld,"
                         "\"threads_before\":%ld,\"threads_after\":%ld}\n"
                       : "%-16s %.0f s: %.1f ms of processor time (%.0f with children); memory %ld to %ld KiB, "
                         "descriptors %ld to %ld, threads %ld to %ld\n",
                what, seconds, (after.processor - before.processor) * 1e3,
                (after.withChildren - before.withChildren) * 1e3, before.kibibytes, after.kibibytes, before.descriptors,
                after.descriptors, before.threads, after.threads);
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const bool asJson = argumentCount > 1 && std::string_view(arguments[1]) == "--json";
    const int secondsAt = asJson ? 2 : 1;
    const double seconds = argumentCount > secondsAt ? std::atof(arguments[secondsAt]) : 300;
    const StartedProgram smallest({SMALLEST_WINDOW, "--polling"});
    const StartedProgram ours({TIDEWELL});
    // Two rounds, so that all that is made once has been made. Not in the middle of a round, nor is the end.
    std::this_thread::sleep_for(std::chrono::seconds(15));
    const Usage smallestBefore = usageOf(smallest.pid());
    const Usage oursBefore = usageOf(ours.pid());
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    const Usage smallestAfter = usageOf(smallest.pid());
    const Usage oursAfter = usageOf(ours.pid());
    report("Tidewell", oursBefore, oursAfter, seconds, asJson);
    report("smallest window", smallestBefore, smallestAfter, seconds, asJson);
    if (!asJson)
        std::printf("ratio %.2f\n", (oursAfter.processor - oursBefore.processor) /
                                        (smallestAfter.processor - smallestBefore.processor));
    return 0;
}
