#include "Process/RunningChild.h"

#include "Process/ChildProcess.h"
#include "Process/Pipe.h"
#include "Process/ProcessHandle.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace
{

enum Place : std::size_t { outputPlace, errorPlace, inputPlace, noticePlace };

/// How often the system is asked whether a child still runs when it has no exit notice for it.
constexpr auto exitCheckInterval = std::chrono::milliseconds(10);

/// What had been printed before its end has long been read by then.
constexpr double timeForLastWords = 1; // seconds

constexpr double longestWait = 1e8; // seconds; far beyond any wait, and within what the clock can count

AwakeClock::duration duration(double seconds)
{
    const std::chrono::duration<double> wait(std::clamp(seconds, 0.0, longestWait));
    return std::chrono::ceil<AwakeClock::duration>(wait);
}

RunningChild::Moment momentAfter(std::optional<double> seconds)
{
    if (!seconds || *seconds > longestWait)
        return RunningChild::never;
    return AwakeClock::now() + duration(*seconds);
}

std::vector<std::string> toUtf8(const QStringList &texts)
{
    std::vector<std::string> result;
    result.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString &text : texts)
        result.push_back(text.toStdString());
    return result;
}

} // namespace

RunningChild::RunningChild(ProcessHandlePointer handle, std::shared_ptr<OutputQueue> queue)
    : m_handle(std::move(handle)),
      m_queue(std::move(queue))
{
}

int RunningChild::start(const Launch &launch)
{
    std::optional<Pipe> output = openPipe();
    if (!output)
        return errno;
    std::optional<Pipe> errorOutput = openPipe();
    if (!errorOutput)
        return errno;
    ChildProcess::StandardStreams streams;
    streams.output = output->writeEnd.number();
    streams.errorOutput = errorOutput->writeEnd.number();
    std::optional<Pipe> input;
    if (launch.input) {
        input = openPipe();
        if (!input)
            return errno;
        streams.input = input->readEnd.number();
    }
    ChildProcess &process = *m_handle->process;
    const int error = process.start(launch.tool.toStdString(), toUtf8(launch.arguments), launch.environment, streams);
    if (error != 0)
        return error;
    m_deadline = momentAfter(launch.timeLimit);
    m_graceTime = launch.graceTime;
    m_exitNotice = process.openExitNotice();
    m_output = OutputReader(std::move(output->readEnd), OutputStream::standard);
    m_errorOutput = OutputReader(std::move(errorOutput->readEnd), OutputStream::error);
    if (input)
        m_input = InputWriter(std::move(input->writeEnd), launch.input->toUtf8());
    return 0;
}

void RunningChild::appendPollEntries(std::vector<pollfd> &entries)
{
    m_places = {};
    const auto append = [&](Place which, int descriptor, short events) {
        // poll() would skip what is closed, but the system takes no more entries than there may be descriptors.
        if (descriptor < 0)
            return;
        m_places[which] = entries.size();
        entries.push_back({descriptor, events, 0});
    };
    if (m_queue->hasRoom()) {
        append(outputPlace, m_output.descriptor(), POLLIN);
        append(errorPlace, m_errorOutput.descriptor(), POLLIN);
    }
    append(inputPlace, m_input.descriptor(), POLLOUT);
    append(noticePlace, m_exitNotice.number(), POLLIN);
}

RunningChild::Moment RunningChild::wakeTime() const
{
    const Moment now = AwakeClock::now();
    Moment wake = std::min(m_deadline, m_lastMoment);
    if (m_isRunning && !m_exitNotice.isOpen())
        wake = std::min(wake, now + exitCheckInterval);
    return wake;
}

qsizetype RunningChild::serve(std::span<const pollfd> entries, QByteArray &block)
{
    const auto isReported = [&](Place which) {
        const std::optional<std::size_t> place = m_places[which];
        return place && entries[*place].revents != 0;
    };
    qsizetype bytesRead = 0;
    if (m_handle->m_isOutputUnwanted) {
        m_output.close();
        m_errorOutput.close();
    }
    if (isReported(outputPlace) && !m_output.isAtEnd())
        bytesRead += m_output.read(block, *m_queue);
    if (isReported(errorPlace) && !m_errorOutput.isAtEnd())
        bytesRead += m_errorOutput.read(block, *m_queue);
    if (isReported(inputPlace))
        m_input.write();

    if (m_isRunning && (isReported(noticePlace) || !m_exitNotice.isOpen())) {
        m_isRunning = m_handle->process->isRunning();
        if (!m_isRunning)
            m_exitNotice.close();
    }
    if (m_handle->m_isWaitOver && !m_isEnded && m_lastMoment == never)
        m_lastMoment = momentAfter(timeForLastWords);
    if (m_deadline <= AwakeClock::now())
        enforceTimeLimit();
    if (m_lastMoment <= AwakeClock::now())
        leaveBehind();

    // A grandchild may hold the pipes long after the child has ended, and a child may close them and run on.
    if (!m_isEnded && !m_isRunning && m_output.isAtEnd() && m_errorOutput.isAtEnd())
        end(m_handle->process->status());
    return bytesRead;
}

void RunningChild::enforceTimeLimit()
{
    m_deadline = never;
    if (m_handle->process->isRunning()) {
        m_handle->setTimedOut();
        m_handle->process->terminate();
    }
    m_lastMoment = momentAfter(m_graceTime);
}

void RunningChild::leaveBehind()
{
    m_output = OutputReader();
    m_errorOutput = OutputReader();
    m_input.close();
    // A child that has exited was only waited for because somebody else has its pipes, perhaps for ever.
    end(m_isRunning ? -1 : m_handle->process->status());
}

void RunningChild::end(int status)
{
    m_isEnded = true;
    m_deadline = never;
    m_lastMoment = never;
    m_queue->end(status);
}
