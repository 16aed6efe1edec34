#pragma once

// The background thread's side of one child: its pipes, its end and its time limit.
//
//   created ──start fails──▶ (of no further use)
//      └──start──▶ running ──exited, both pipes closed, end in the queue, input written or refused──▶ finished
//                     └──time limit and grace time over──▶ left behind ──exited──▶ finished
//
// Only a child with a grace time is ever left behind. It is never killed: its pipes are closed, its end is told with
// status -1, and it is reaped whenever it does exit. One that has exited, while somebody else holds its pipes, is told
// with its own status then, and with what it had printed; so is any whose starter waits no longer.

#include "Process/AwakeClock.h"
#include "Process/InputWriter.h"
#include "Process/Launch.h"
#include "Process/OutputQueue.h"
#include "Process/OutputReader.h"

#include <poll.h>

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

class RunningChild
{
public:
    using Moment = AwakeClock::time_point;
    static constexpr Moment never = Moment::max();

    /// The child's process is the handle's; its output and its end go into the queue.
    RunningChild(ProcessHandlePointer handle, std::shared_ptr<OutputQueue> queue);

    /// Starts the child and returns 0, or the system's error number: then nothing has come into the queue. Any thread,
    /// before all that follows, which is for the background thread only.
    int start(const Launch &launch);

    /// Appends what to wait for now; the output is left out while the queue is full.
    void appendPollEntries(std::vector<pollfd> &entries);

    /// When to serve the child even if nothing is reported, after appendPollEntries.
    Moment wakeTime() const;

    /// Reads, writes, and checks for the end and the deadlines. `entries` are those to which appendPollEntries
    /// appended, after the poll. Returns the number of bytes read.
    qsizetype serve(std::span<const pollfd> entries, QByteArray &block);

    bool isFinished() const { return m_isEnded && !m_isRunning && m_input.isDone(); }

private:
    void enforceTimeLimit();
    void leaveBehind();
    void end(int status);

    const ProcessHandlePointer m_handle;
    const std::shared_ptr<OutputQueue> m_queue;
    OutputReader m_output;
    OutputReader m_errorOutput;
    InputWriter m_input;
    FileDescriptor m_exitNotice;
    Moment m_deadline = never;
    /// From when on the child is not waited for; never before its deadline.
    Moment m_lastMoment = never;
    std::optional<double> m_graceTime;
    /// Where in the poll entries are standard output, standard error, standard input and the exit notice, if they are.
    std::array<std::optional<std::size_t>, 4> m_places;
    bool m_isRunning = true;
    bool m_isEnded = false;
};
