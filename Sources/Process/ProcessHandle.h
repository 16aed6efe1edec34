#pragma once

// The handle on one child process that its starter keeps, to stop it and to learn afterwards how it ended. Shared with
// the engine: dropping it stops nothing, and keeping it beyond the end is harmless.
//
//   created ──launch failed──▶ ended (status -1, launchError)
//      └──launched──▶ running ──exit, cancel or time limit, and both pipes closed──▶ ended

#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

class ChildProcess;

class ProcessHandle
{
public:
    ProcessHandle();
    ~ProcessHandle();

    /// True when the time limit asked the child to terminate. Any thread.
    bool timedOut() const;

    /// The system's description of why the child could not be started. Any thread.
    std::optional<QString> launchError() const;

    /// Whether the child is there at this very moment; one that was left behind is, after its end was told. Any thread.
    bool isRunning() const;

    /// Sends a running child the termination signal, once for each call; does nothing after its end. Any thread.
    void cancel();

    /// What the child prints from now on has no use: its pipes are closed, and whoever still prints into them is told
    /// so by the system. What was read before may still be delivered. Any thread.
    void closeOutput();

    /// Whoever else holds the pipes of a child that has exited is given a second more; then its end is told, with its
    /// own status. Nothing while the child runs. Any thread.
    void waitNoLonger();

private:
    friend class ProcessEngine;
    friend class RunningChild;

    void setTimedOut();
    void setLaunchError(const QString &description);

    const std::unique_ptr<ChildProcess> process;
    mutable std::mutex lock; // guards the next two
    bool _timedOut = false;
    std::optional<QString> _launchError;
    std::atomic<bool> m_isOutputUnwanted = false;
    std::atomic<bool> m_isWaitOver = false;
};

using ProcessHandlePointer = std::shared_ptr<ProcessHandle>;
