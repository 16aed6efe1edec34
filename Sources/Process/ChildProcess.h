#pragma once

// One child process: started with an argument list, an environment and its three standard streams, and with nothing
// else of ours: no other descriptor, no ignored signal, no blocked signal.
//
//   created ──start fails──▶ (stays created)
//      └──start──▶ running ──found ended by isRunning──▶ ended, with a status
//
// Asking and signalling exclude each other, so that a number that the system has given to another process is never
// signalled. Any thread, after start has returned.

#include "Process/FileDescriptor.h"

#include <sys/types.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class ChildProcess
{
public:
    struct StandardStreams {
        /// None: the null device.
        std::optional<int> input;
        int output = -1;
        int errorOutput = -1;
    };

    /// Starts `tool` and returns 0, or the system's error number.
    int start(const std::string &tool, const std::vector<std::string> &arguments,
              const std::map<std::string, std::string> &environment, const StandardStreams &streams);

    /// Asks the system at this very moment.
    bool isRunning();

    /// Sends the polite termination signal when the child is running.
    void terminate();

    /// The exit status, or the number of the signal that ended it; meaningful once isRunning has said false.
    int status();

    /// A descriptor for poll() that becomes readable when the started child ends, and stays so. Closed when the system
    /// has none to give (or the child is gone already): the caller then has to ask from time to time.
    FileDescriptor openExitNotice() const;

private:
    bool isRunningLocked();

    std::mutex m_lock;
    pid_t m_pid = 0;
    std::optional<int> m_status;
};
