#pragma once

// The handle on one child process that its starter keeps, to stop it and to learn afterwards how it ended.
//
//   created ──launch failed──▶ ended (status -1, launchError)
//      └──launched──▶ running ──exit, cancel or time limit, and both pipes closed──▶ ended

#include <QString>

#include <memory>
#include <mutex>
#include <optional>

class ChildProcess;

class ProcessHandle
{
public:
    explicit ProcessHandle(std::shared_ptr<ChildProcess> child);
    ~ProcessHandle();

    /// True when the time limit asked the child to terminate. Any thread.
    bool timedOut() const;

    /// The system's description of why the child could not be started. Any thread.
    std::optional<QString> launchError() const;

    /// Asks a running child to terminate, once per call and politely; nothing happens after its end. Any thread.
    void cancel();

private:
    friend class ProcessEngine;
    friend class RunningChild;

    void setTimedOut();
    void setLaunchError(const QString &description);

    const std::shared_ptr<ChildProcess> process;
    mutable std::mutex lock;
    bool _timedOut = false;
    std::optional<QString> _launchError;
};

using ProcessHandlePointer = std::shared_ptr<ProcessHandle>;
