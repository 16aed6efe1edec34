#pragma once

// What the benchmarks share: the plainest way to run a child and read it to its end, a clock, and medians.

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

extern char **environ;

inline double secondsFor(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double percentile(std::vector<double> values, double share)
{
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

inline double median(const std::vector<double> &values)
{
    return percentile(values, 0.5);
}

/// posix_spawn, with this program's environment.
inline pid_t spawn(std::vector<std::string> command, const posix_spawn_file_actions_t *actions = nullptr)
{
    std::vector<char *> arguments;
    for (std::string &argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    pid_t pid = 0;
    if (::posix_spawn(&pid, arguments[0], actions, nullptr, arguments.data(), environ) != 0)
        std::abort();
    return pid;
}

/// posix_spawn with one pipe, read() to the end of file, waitpid().
inline void runBarely(std::vector<std::string> command, const std::function<void(const char *, std::size_t)> &onRead)
{
    int ends[2];
    if (::pipe(ends) != 0)
        std::abort();
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addclose(&actions, ends[0]);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addclose(&actions, ends[1]);
    const pid_t pid = spawn(std::move(command), &actions);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    static char buffer[64 * 1024];
    ssize_t size = 0;
    while ((size = ::read(ends[0], buffer, sizeof buffer)) > 0)
        onRead(buffer, static_cast<std::size_t>(size));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (status != 0)
        std::abort();
}
