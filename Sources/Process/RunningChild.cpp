#include "Process/RunningChild.h"

#include "Process/ProcessHandle.h"

#include <algorithm>
#include <utility>

namespace
{

enum : std::size_t { outputEntry, errorEntry, inputEntry, noticeEntry };

/// How often a child is asked whether it still runs when the system gave no notice of its end.
constexpr auto askingInterval = std::chrono::milliseconds(10);
/// How often it is looked whether a pause of the output has ended or was called off.
constexpr auto pauseInterval = std::chrono::milliseconds(50);
/// For so long a child that is wanted as a whole is not read: most have ended by then, and are read once.
constexpr auto readingDelay = std::chrono::milliseconds(20);

} // namespace

RunningChild::RunningChild(Parts parts) : m_parts(std::move(parts))
{
    const bool isWantedAsAWhole = m_parts.queue->announcing() == OutputQueue::Announcing::atTheEnd;
    if (isWantedAsAWhole && m_parts.exitNotice.isOpen())
        m_firstRead = std::chrono::steady_clock::now() + readingDelay;
}

std::array<pollfd, RunningChild::entryCount> RunningChild::pollEntries()
{
    m_awaitsPause = isPaused();
    m_awaitsFirstRead = m_isRunning && std::chrono::steady_clock::now() < m_firstRead;
    const bool reads = !m_awaitsPause && !m_awaitsFirstRead && m_parts.queue->hasRoom();
    return {{{reads ? m_parts.output.descriptor() : -1, POLLIN, 0},
             {reads ? m_parts.errorOutput.descriptor() : -1, POLLIN, 0},
             {m_parts.input.descriptor(), POLLOUT, 0},
             {m_parts.exitNotice.number(), POLLIN, 0}}};
}

bool RunningChild::isPaused() const
{
    if (!m_parts.handle->isOutputPaused())
        return false;
    const bool isEnding = !m_isRunning || m_parts.handle->wasAskedToTerminate();
    if (isEnding && m_lastOutput > 0)
        return false;
    // Once nobody is left who could print, what the pipes hold is no flood, and their end is to be noticed.
    return !(m_parts.output.isComplete() && m_parts.errorOutput.isComplete());
}

RunningChild::Moment RunningChild::wakeTime() const
{
    const Moment now = std::chrono::steady_clock::now();
    Moment wake = m_parts.deadline;
    if (m_isRunning && !m_parts.exitNotice.isOpen())
        wake = std::min(wake, now + askingInterval);
    if (m_awaitsPause)
        wake = std::min(wake, now + pauseInterval);
    if (m_awaitsFirstRead)
        wake = std::min(wake, m_firstRead);
    return wake;
}

qsizetype RunningChild::attend(std::span<const pollfd, entryCount> entries, QByteArray &block)
{
    qsizetype bytesRead = 0;
    // A pause may have begun while the thread waited.
    const bool reads = !isPaused();
    if (reads && entries[outputEntry].revents != 0)
        bytesRead += m_parts.output.read(block, *m_parts.queue);
    if (reads && entries[errorEntry].revents != 0)
        bytesRead += m_parts.errorOutput.read(block, *m_parts.queue);
    if (!m_isRunning || m_parts.handle->wasAskedToTerminate())
        m_lastOutput -= bytesRead;
    if (entries[inputEntry].revents != 0)
        m_parts.input.write();

    if (m_isRunning && (entries[noticeEntry].revents != 0 || !m_parts.exitNotice.isOpen())) {
        m_isRunning = m_parts.process->isRunning();
        if (!m_isRunning)
            m_parts.exitNotice.close();
    }
    if (m_parts.deadline <= std::chrono::steady_clock::now())
        enforceTimeLimit();

    // A grandchild may hold the pipes long after the child has ended, and a child may close them and run on.
    if (!m_isEnded && !m_isRunning && m_parts.output.isAtEnd() && m_parts.errorOutput.isAtEnd()) {
        m_isEnded = true;
        m_parts.queue->end(m_parts.process->status());
    }
    return bytesRead;
}

void RunningChild::enforceTimeLimit()
{
    m_parts.deadline = never;
    if (!m_parts.process->isRunning())
        return;
    m_parts.handle->setTimedOut();
    m_parts.process->terminate();
}
