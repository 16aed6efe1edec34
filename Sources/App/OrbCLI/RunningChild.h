#pragma once

// The background thread's side of one started child: its pipes, its end and its time limit.

#include "OrbCLI/ChildProcess.h"
#include "OrbCLI/InputWriter.h"
#include "OrbCLI/OutputQueue.h"
#include "OrbCLI/OutputReader.h"

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

    /// What to wait for now; a full queue's pipes are left out.
    std::array<pollfd, entryCount> pollEntries();

    /// When to look again even if nothing is reported.
    Moment wakeTime() const;

    struct Outcome {
        qsizetype bytesRead = 0;
        bool mustAnnounce = false;
    };

    /// Reads, writes, and looks for the end and the deadline.
    Outcome attend(std::span<const pollfd, entryCount> entries, QByteArray &block);

    const std::shared_ptr<OutputQueue> &queue() const { return m_parts.queue; }

    /// The end is in the queue and the input is written or refused.
    bool isFinished() const { return m_isEnded && m_parts.input.isDone(); }

private:
    void enforceTimeLimit();

    Parts m_parts;
    bool m_isRunning = true;
    bool m_isEnded = false;
};
