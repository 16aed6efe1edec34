#pragma once

// What the machine itself keeps a program waiting: a thread of the highest priority that the system gives does nothing
// but wake every millisecond, and remembers the longest that it was not woken.

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

class MachineWatch
{
public:
    MachineWatch()
    {
        // Without the right to it, a thread like any other, which other work keeps waiting as well.
        const sched_param first{.sched_priority = ::sched_get_priority_max(SCHED_FIFO)};
        m_isFirst = ::pthread_setschedparam(m_thread.native_handle(), SCHED_FIFO, &first) == 0;
    }
    ~MachineWatch()
    {
        m_isOver = true;
        m_thread.join();
    }
    MachineWatch(const MachineWatch &) = delete;
    MachineWatch &operator=(const MachineWatch &) = delete;

    /// The longest time between two wakings since the last call, in milliseconds; -1 where other work counts as well.
    double takeWorst()
    {
        const double worst = m_worst.exchange(0);
        return m_isFirst ? worst : -1;
    }

private:
    void watch()
    {
        auto last = std::chrono::steady_clock::now();
        while (!m_isOver) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            const auto now = std::chrono::steady_clock::now();
            m_worst = std::max(m_worst.load(), std::chrono::duration<double, std::milli>(now - last).count());
            last = now;
        }
    }

    std::atomic<bool> m_isOver = false;
    std::atomic<double> m_worst = 0;
    bool m_isFirst = false;
    std::thread m_thread{[this] { watch(); }};
};
