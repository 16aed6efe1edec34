#include "Process/ProcessEngine.h"

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <system_error>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

/// Milliseconds for poll(): never early, -1 for no limit.
int waitUntil(RunningChild::Moment moment)
{
    if (moment == RunningChild::never)
        return -1;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(moment - AwakeClock::now()).count();
    constexpr decltype(wait) longest = 3'600'000; // waking early is harmless: the thread checks and waits again
    return static_cast<int>(std::clamp<decltype(wait)>(wait, 0, longest));
}

/// The user's signals are for the main thread; a broken pipe is an error number here.
void blockSignals(sigset_t *before)
{
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, before);
}

/// Whoever started this program may have left the child signal ignored: the system would then drop exit statuses.
void keepExitStatuses()
{
    struct sigaction action = {};
    if (::sigaction(SIGCHLD, nullptr, &action) != 0 ||
        (action.sa_handler != SIG_IGN && !(action.sa_flags & SA_NOCLDWAIT)))
        return;
    action.sa_handler = SIG_DFL;
    action.sa_flags = 0;
    ::sigaction(SIGCHLD, &action, nullptr);
}

} // namespace

ProcessEngine &ProcessEngine::instance()
{
    // Never destroyed: children and handlers that are left at the end stay where they are until the process is gone.
    static ProcessEngine *const engine = new ProcessEngine;
    return *engine;
}

ProcessEngine::ProcessEngine() = default;

ProcessHandlePointer ProcessEngine::launch(Launch launch)
{
    const auto handle = std::make_shared<ProcessHandle>();
    const OutputQueue::Listener listener{
        .onReady = [this](std::shared_ptr<OutputQueue> queue) { m_delivery.schedule(std::move(queue)); },
        .onRoom = [this] { wake(); }};
    const auto queue = std::make_shared<OutputQueue>(
        handle, std::move(launch.onOutput), std::move(launch.onExit), listener,
        launch.collectsOutput ? OutputQueue::Delivery::atTheEnd : OutputQueue::Delivery::asItComes);
    auto child = std::make_unique<RunningChild>(handle, queue);

    int error = startThread();
    if (error == 0)
        error = child->start(launch);
    if (error != 0) {
        const QString description = QString::fromLocal8Bit(std::system_category().message(error));
        handle->setLaunchError(description);
        const QString name = launch.tool.section(u'/', -1, -1, QString::SectionSkipEmpty);
        const QString line = u"Could not start "_s + name + u": "_s + description + u'\n';
        queue->append(line.toUtf8(), OutputStream::error);
        queue->end(-1);
        return handle;
    }
    {
        const std::lock_guard guard(m_lock);
        m_arrivals.push_back(std::move(child));
    }
    wake();
    return handle;
}

int ProcessEngine::startThread()
{
    const std::lock_guard guard(m_lock);
    if (m_thread.joinable() || m_isStopping)
        return 0;
    if (!m_wakePipe)
        m_wakePipe = openPipe();
    if (!m_wakePipe)
        return errno;
    makeNonBlocking(m_wakePipe->readEnd);
    makeNonBlocking(m_wakePipe->writeEnd);
    keepExitStatuses();
    sigset_t before;
    blockSignals(&before); // the new thread inherits the mask
    int error = 0;
    try {
        m_thread = std::thread(&ProcessEngine::serveChildren, this);
        qAddPostRoutine(&ProcessEngine::stopInstance);
    } catch (const std::system_error &failure) {
        error = failure.code().value();
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return error;
}

void ProcessEngine::stopInstance()
{
    instance().stop();
}

void ProcessEngine::stop()
{
    m_delivery.stop();
    {
        const std::lock_guard guard(m_lock);
        m_isStopping = true;
    }
    wake();
    m_thread.join();
}

void ProcessEngine::wake()
{
    if (!m_wakePipe)
        return;
    const char byte = 0;
    // A full pipe wakes the thread as well as one more byte would.
    static_cast<void>(::write(m_wakePipe->writeEnd.number(), &byte, 1) < 0);
}

void ProcessEngine::serveChildren()
{
    while (takeArrivals()) {
        waitForEvents();
        handleEvents();
    }
}

bool ProcessEngine::takeArrivals()
{
    const std::lock_guard guard(m_lock);
    std::move(m_arrivals.begin(), m_arrivals.end(), std::back_inserter(m_children));
    m_arrivals.clear();
    return !m_isStopping;
}

void ProcessEngine::waitForEvents()
{
    m_pollEntries.assign(1, {m_wakePipe->readEnd.number(), POLLIN, 0});
    RunningChild::Moment wakeTime = RunningChild::never;
    for (const auto &child : m_children) {
        child->appendPollEntries(m_pollEntries);
        wakeTime = std::min(wakeTime, child->wakeTime());
    }
    if (::poll(m_pollEntries.data(), static_cast<nfds_t>(m_pollEntries.size()), waitUntil(wakeTime)) < 0)
        for (pollfd &entry : m_pollEntries)
            entry.revents = 0;
    if (m_pollEntries.front().revents != 0) {
        char bytes[64];
        while (::read(m_wakePipe->readEnd.number(), bytes, sizeof bytes) == sizeof bytes) {
        }
    }
}

void ProcessEngine::handleEvents()
{
    qsizetype bytesRead = 0;
    for (const auto &child : m_children)
        bytesRead += child->serve(m_pollEntries, m_block);
    std::erase_if(m_children, [](const auto &child) { return child->isFinished(); });
    gatherSmallWrites(bytesRead);
}

void ProcessEngine::gatherSmallWrites(qsizetype bytesRead)
{
    constexpr qsizetype small = 49'152;
    constexpr int manyReads = 16;
    constexpr auto nap = std::chrono::microseconds(100);
    if (bytesRead == 0)
        return;
    // A child that prints in short pieces would pay for waking this thread with each of them. Once it has done so for a
    // while, a nap too short to notice lets the pieces gather in its pipe.
    const RunningChild::Moment now = AwakeClock::now();
    const bool isOneOfMany = bytesRead < small && now - m_lastRead < std::chrono::milliseconds(1);
    m_lastRead = now;
    m_smallReads = isOneOfMany ? m_smallReads + 1 : 0;
    if (m_smallReads >= manyReads)
        std::this_thread::sleep_for(nap);
}
