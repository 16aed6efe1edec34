#include "OrbCLI/ProcessHandle.h"

#include "OrbCLI/ChildProcess.h"

#include <algorithm>
#include <utility>

ProcessHandle::ProcessHandle(std::shared_ptr<ChildProcess> child) : process(std::move(child)) {}

ProcessHandle::~ProcessHandle() = default;

bool ProcessHandle::timedOut() const
{
    const std::lock_guard guard(lock);
    return _timedOut;
}

std::optional<QString> ProcessHandle::launchError() const
{
    const std::lock_guard guard(lock);
    return _launchError;
}

void ProcessHandle::cancel()
{
    {
        const std::lock_guard guard(lock);
        _wasCancelled = true;
    }
    process->terminate();
}

void ProcessHandle::pauseOutput(std::chrono::nanoseconds time)
{
    const std::lock_guard guard(lock);
    _pausedUntil = std::max(_pausedUntil, std::chrono::steady_clock::now()) + time;
}

void ProcessHandle::resumeOutput()
{
    const std::lock_guard guard(lock);
    _pausedUntil = {};
}

bool ProcessHandle::isOutputPaused() const
{
    const std::lock_guard guard(lock);
    return _pausedUntil > std::chrono::steady_clock::now();
}

bool ProcessHandle::wasAskedToTerminate() const
{
    const std::lock_guard guard(lock);
    return _wasCancelled || _timedOut;
}

void ProcessHandle::setTimedOut()
{
    const std::lock_guard guard(lock);
    _timedOut = true;
}

void ProcessHandle::setLaunchError(const QString &description)
{
    const std::lock_guard guard(lock);
    _launchError = description;
}
