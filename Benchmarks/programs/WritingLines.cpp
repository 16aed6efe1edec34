// The limit of what writes each line by itself: a child writes lines by turns to two pipes whose reader never makes it
// wait, throws all away and naps, so that it does not take a processor from the child either.
//
// WritingLines FILE

#include "shared/Figures.h"
#include "shared/Measuring.h"

#include <fcntl.h>
#include <poll.h>

#include <array>
#include <filesystem>
#include <thread>

namespace
{

std::array<int, 2> openLargePipe()
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        std::abort();
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
#ifdef F_SETPIPE_SZ
    ::fcntl(ends[0], F_SETPIPE_SZ, 1024 * 1024);
#endif
    return ends;
}

pid_t start(std::vector<std::string> command, int output, int errorOutput)
{
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errorOutput, STDERR_FILENO);
    const pid_t pid = spawn(std::move(command), &actions);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(output);
    ::close(errorOutput);
    return pid;
}

/// Bytes read from both until their ends.
std::uintmax_t drain(int output, int errorOutput)
{
    std::array<pollfd, 2> sources{pollfd{output, POLLIN, 0}, pollfd{errorOutput, POLLIN, 0}};
    std::vector<char> buffer(1024 * 1024);
    std::uintmax_t total = 0;
    while (sources[0].fd >= 0 || sources[1].fd >= 0) {
        ::poll(sources.data(), sources.size(), -1);
        for (pollfd &source : sources) {
            if (source.fd < 0 || source.revents == 0)
                continue;
            const ssize_t size = ::read(source.fd, buffer.data(), buffer.size());
            if (size <= 0)
                source.fd = -1;
            else
                total += static_cast<std::uintmax_t>(size);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    return total;
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const char *const file = argumentCount == 2 ? arguments[1] : "";
    if (!std::filesystem::is_regular_file(file)) {
        std::fputs("WritingLines FILE\n", stderr);
        return 2;
    }
    const double seconds = secondsFor([&] {
        const auto output = openLargePipe();
        const auto errorOutput = openLargePipe();
        const pid_t writer = start({ALTERNATING_WRITER, file}, output[1], errorOutput[1]);
        int status = 0;
        if (drain(output[0], errorOutput[0]) != std::filesystem::file_size(file) ||
            ::waitpid(writer, &status, 0) != writer || status != 0)
            std::abort();
    });
    const double mebibytes = static_cast<double>(std::filesystem::file_size(file)) / (1024 * 1024);
    printFigures("writing lines", {{"seconds", seconds}, {"mib_per_second", mebibytes / seconds}});
    return 0;
}
