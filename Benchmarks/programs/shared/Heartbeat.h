#pragma once

// What a benchmark of the real window watches from inside while something goes on: the turns of the event loop and the
// memory, from its making on.

#include "Support/ProcessMemory.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

inline double millisecondsSince(std::chrono::steady_clock::time_point moment)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - moment).count();
}

inline double mebibytes(std::int64_t bytes)
{
    return static_cast<double>(bytes) / (1024 * 1024);
}

class Heartbeat
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout([this] {
            m_gaps.push_back(millisecondsSince(m_last));
            m_last = std::chrono::steady_clock::now();
            if (m_gaps.size() % 64 != 0)
                return;
            m_peak = std::max(m_peak, residentMemory());
            m_peakPrivate = std::max(m_peakPrivate, privateMemory());
        });
        m_timer.start(1);
    }

    /// The milliseconds between two turns since the last call.
    std::vector<double> takeGaps()
    {
        m_last = std::chrono::steady_clock::now();
        return std::exchange(m_gaps, {});
    }
    /// The most that was resident, in bytes.
    std::int64_t peak() const { return m_peak; }
    std::int64_t peakPrivate() const { return m_peakPrivate; }

private:
    QTimer m_timer;
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now();
    std::vector<double> m_gaps;
    std::int64_t m_peak = residentMemory();
    std::int64_t m_peakPrivate = privateMemory();
};
