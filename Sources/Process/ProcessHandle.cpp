#include "Process/ProcessHandle.h"

#include "Process/ChildProcess.h"
#include "Process/ProcessEngine.h"

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

bool ProcessHandle::isRunning() const
{
    return process->isRunning();
}

void ProcessHandle::cancel()
{
    process->terminate();
}

void ProcessHandle::closeOutput()
{
    m_isOutputUnwanted = true;
    ProcessEngine::instance().wake();
}

void ProcessHandle::waitNoLonger()
{
    if (process->isRunning())
        return;
    m_isWaitOver = true;
    ProcessEngine::instance().wake();
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
