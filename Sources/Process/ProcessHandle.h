#pragma once

// The handle on one child process that its starter keeps, to stop it and to learn afterwards how it ended. Shared with
// the engine: dropping it stops nothing, and keeping it beyond the end is harmless.
//
//   created ──launch failed──▶ ended (status -1, launchError)
//      └──launched──▶ running ──exit, cancel or time limit, and both pipes closed──▶ ended

#include <QString>

#include <atomic>
#include <chrono>
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

    /// Sends a running child the termination signal, once for each call; does nothing after its end. Any thread.
    void cancel();

    /// Leaves what the child prints in its pipes for that much longer, also beyond a pause that is going on; the child
    /// is held up once they are full. Other children are not. The output that is there when the child ends, or is asked
    /// to terminate, is not held back. Main thread.
    void pauseOutput(std::chrono::nanoseconds time);
    /// Ends a pause; within a tenth of a second the output goes on. Main thread.
    void resumeOutput();

    /// What the child prints from now on has no use: its pipes are closed, and whoever still prints into them is told
    /// so by the system. What was read before may still be delivered. Any thread.
    void closeOutput() { m_isOutputUnwanted = true; }

private:
    friend class ProcessEngine;
    friend class RunningChild;

    void setTimedOut();
    void setLaunchError(const QString &description);

    bool isOutputPaused() const;
    bool wasAskedToTerminate() const;

    const std::unique_ptr<ChildProcess> process;
    mutable std::mutex lock; // guards the next two
    bool _timedOut = false;
    std::optional<QString> _launchError;
    std::atomic<std::chrono::steady_clock::time_point> m_pausedUntil;
    std::atomic<bool> m_wasCancelled = false;
    std::atomic<bool> m_isOutputUnwanted = false;
};

using ProcessHandlePointer = std::shared_ptr<ProcessHandle>;
