#include "OrbCLI/RunningChild.h"

#include "OrbCLI/ProcessHandle.h"

#include <algorithm>
#include <utility>

namespace
{

enum : std::size_t { outputEntry, errorEntry, inputEntry, noticeEntry };

/// How often a child is asked whether it still runs when the system gave no notice of its end.
constexpr auto askingInterval = std::chrono::milliseconds(10);

} // namespace

RunningChild::RunningChild(Parts parts) : m_parts(std::move(parts)) {}

std::array<pollfd, RunningChild::entryCount> RunningChild::pollEntries()
{
    const bool hasRoom = m_parts.queue->hasRoom();
    return {{{hasRoom ? m_parts.output.descriptor() : -1, POLLIN, 0},
             {hasRoom ? m_parts.errorOutput.descriptor() : -1, POLLIN, 0},
             {m_parts.input.descriptor(), POLLOUT, 0},
             {m_parts.exitNotice.number(), POLLIN, 0}}};
}

RunningChild::Moment RunningChild::wakeTime() const
{
    if (m_isRunning && !m_parts.exitNotice.isOpen())
        return std::min(m_parts.deadline, std::chrono::steady_clock::now() + askingInterval);
    return m_parts.deadline;
}

RunningChild::Outcome RunningChild::attend(std::span<const pollfd, entryCount> entries, QByteArray &block)
{
    Outcome outcome;
    const auto read = [&](OutputReader &reader) {
        const OutputReader::Outcome part = reader.read(block, *m_parts.queue);
        outcome.bytesRead += part.size;
        outcome.mustAnnounce |= part.mustAnnounce;
    };
    if (entries[outputEntry].revents != 0)
        read(m_parts.output);
    if (entries[errorEntry].revents != 0)
        read(m_parts.errorOutput);
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
        outcome.mustAnnounce |= m_parts.queue->end(m_parts.process->status());
    }
    return outcome;
}

void RunningChild::enforceTimeLimit()
{
    m_parts.deadline = never;
    if (!m_parts.process->isRunning())
        return;
    m_parts.handle->setTimedOut();
    m_parts.process->terminate();
}
