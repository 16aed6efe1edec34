#include "Process/ProcessHandle.h"

#include "Process/ChildProcess.h"

#include <algorithm>

ProcessHandle::ProcessHandle() : process(std::make_unique<ChildProcess>()) {}

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
    m_wasCancelled = true;
    process->terminate();
}

void ProcessHandle::pauseOutput(std::chrono::nanoseconds time)
{
    m_pausedUntil = std::max(m_pausedUntil.load(), std::chrono::steady_clock::now()) + time;
}

void ProcessHandle::resumeOutput()
{
    m_pausedUntil = std::chrono::steady_clock::time_point();
}

bool ProcessHandle::isOutputPaused() const
{
    return m_pausedUntil.load() > std::chrono::steady_clock::now();
}

bool ProcessHandle::wasAskedToTerminate() const
{
    return m_wasCancelled || timedOut();
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
