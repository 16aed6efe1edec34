#pragma once

// The background thread's side of one started child: its pipes, its end and its time limit.

#include "Process/ChildProcess.h"
#include "Process/InputWriter.h"
#include "Process/OutputQueue.h"
#include "Process/OutputReader.h"

#include <poll.h>

#include <array>
#include <chrono>
#include <memory>
#include <span>

class RunningChild
{
public:
    using Moment = std::chrono::steady_clock::time_point;
    static constexpr Moment never = Moment::max();

    struct Parts {
        std::shared_ptr<ChildProcess> process;
        ProcessHandlePointer handle;
        std::shared_ptr<OutputQueue> queue;
        OutputReader output;
        OutputReader errorOutput;
        InputWriter input;
        FileDescriptor exitNotice;
        Moment deadline = never;
    };
    explicit RunningChild(Parts parts);

    /// One place each for standard output, standard error, standard input and the exit notice.
    static constexpr std::size_t entryCount = 4;

    /// What to wait for now; the pipes are left out while the queue is full, the output is paused, or it is too early.
    std::array<pollfd, entryCount> pollEntries();

    /// When to look again even if nothing is reported, after pollEntries.
    Moment wakeTime() const;

    /// Reads, writes, and looks for the end and the deadline. Returns the number of bytes read.
    qsizetype attend(std::span<const pollfd, entryCount> entries, QByteArray &block);

    /// The end is in the queue and the input is written or refused.
    bool isFinished() const { return m_isEnded && m_parts.input.isDone(); }

private:
    bool isPaused() const;
    void enforceTimeLimit();

    Parts m_parts;
    /// Bytes still read during a pause once the child has ended or was asked to: all that its pipes can hold, and what
    /// a grandchild may hurry to print. Not without end, for it may print on and on.
    qsizetype m_lastOutput = qsizetype{64} * 1024 * 1024;
    Moment m_firstRead = Moment::min();
    /// The pipes were left out because it is too early to read them.
    bool m_awaitsFirstRead = false;
    /// The pipes were left out because of a pause, whose end nothing reports.
    bool m_awaitsPause = false;
    bool m_isRunning = true;
    bool m_isEnded = false;
};
