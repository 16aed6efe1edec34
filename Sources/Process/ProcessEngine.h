#pragma once

// Starts children and serves all of them on one background thread, which waits in poll() for their output, their
// input, their ends and their time limits, whichever comes first. Nothing that a child does or leaves undone blocks it.
//
// It starts with the first child and ends with the application object; children that still run are left alone, and
// their handlers are not called any more.

#include "Process/FileDescriptor.h"
#include "Process/MainThreadDelivery.h"
#include "Process/Pipe.h"
#include "Process/RunningChild.h"

#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class ProcessEngine
{
public:
    static ProcessEngine &instance();

    /// Starts the child and returns its handle at once, before any output. A child that cannot be started is one line
    /// of error output and status -1. Any thread.
    ProcessHandlePointer launch(Launch launch);

    /// Has the background thread look at all children; nothing when there never was one. Any thread
    /// that knows of one.
    void wake();

private:
    ProcessEngine();

    /// 0, or the system's error number.
    int startThread();
    static void stopInstance();
    void stop();

    void serveChildren();
    bool takeArrivals();
    void waitForEvents();
    void handleEvents();
    void gatherSmallWrites(qsizetype bytesRead);

    MainThreadDelivery m_delivery;

    std::mutex m_lock; // guards the four below
    std::optional<Pipe> m_wakePipe;
    std::thread m_thread;
    std::vector<std::unique_ptr<RunningChild>> m_arrivals;
    bool m_isStopping = false;

    // The background thread's own.
    std::vector<std::unique_ptr<RunningChild>> m_children;
    std::vector<pollfd> m_pollEntries; // the wake pipe's, then the children's
    QByteArray m_block;
    RunningChild::Moment m_lastRead;
    int m_smallReads = 0;
};
