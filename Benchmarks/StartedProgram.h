#pragma once

// A program that a benchmark starts and ends.

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <vector>

extern char **environ;

class StartedProgram
{
public:
    explicit StartedProgram(std::vector<std::string> command)
    {
        std::vector<char *> arguments;
        for (std::string &argument : command)
            arguments.push_back(argument.data());
        arguments.push_back(nullptr);
        if (::posix_spawn(&m_pid, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
            std::abort();
    }

    ~StartedProgram()
    {
        ::kill(m_pid, SIGTERM);
        ::waitpid(m_pid, nullptr, 0);
    }

    StartedProgram(const StartedProgram &) = delete;
    StartedProgram &operator=(const StartedProgram &) = delete;

    pid_t pid() const { return m_pid; }

private:
    pid_t m_pid = 0;
};
