#include "TidewellApp/Quitting/TerminationSignals.h"

#include <QSocketNotifier>

#include <atomic>
#include <cerrno>

namespace
{

std::atomic<int> noted = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void note(int)
{
    const int error = errno;
    const char byte = 0;
    static_cast<void>(::write(noted, &byte, 1) < 0);
    errno = error;
}

} // namespace

TerminationSignals::TerminationSignals() : m_pipe(openPipe())
{
    if (!m_pipe)
        return;
    makeNonBlocking(m_pipe->readEnd);
    makeNonBlocking(m_pipe->writeEnd);
    noted = m_pipe->writeEnd.number();
    auto *notifier = new QSocketNotifier(m_pipe->readEnd.number(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char bytes[64];
        while (::read(m_pipe->readEnd.number(), bytes, sizeof bytes) == sizeof bytes) {
        }
        Q_EMIT received();
    });
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    for (std::size_t index = 0; index < handled.size(); ++index) {
        struct sigaction &before = m_before.at(index);
        if (::sigaction(handled.at(index), nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            ::sigaction(handled.at(index), &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals()
{
    if (!m_pipe)
        return;
    for (std::size_t index = 0; index < handled.size(); ++index)
        ::sigaction(handled.at(index), &m_before.at(index), nullptr);
    noted = -1;
}
