#pragma once

// A program that a benchmark starts and ends.

#include "Measuring.h"

#include <signal.h>

class StartedProgram
{
public:
    explicit StartedProgram(std::vector<std::string> command) : m_pid(spawn(std::move(command))) {}

    ~StartedProgram()
    {
        ::kill(m_pid, SIGTERM);
        ::waitpid(m_pid, nullptr, 0);
    }

    StartedProgram(const StartedProgram &) = delete;
    StartedProgram &operator=(const StartedProgram &) = delete;

    pid_t pid() const { return m_pid; }

private:
    const pid_t m_pid;
};
