#pragma once

// What showing a child's output costs: time, gaps between two turns of the event loop, frames, memory.

#include "Figures.h"
#include "FrameWatch.h"
#include "Measuring.h"
#include "Support/ProcessMemory.h"

#include <QTimer>

class OutputMeasurement
{
public:
    explicit OutputMeasurement(FrameWatch &frames) : m_frames(frames)
    {
        m_heartbeat.setTimerType(Qt::PreciseTimer);
        m_heartbeat.callOnTimeout([this] {
            const auto now = std::chrono::steady_clock::now();
            m_gaps.push_back(std::chrono::duration<double>(now - m_lastTurn).count());
            m_lastTurn = now;
        });
    }

    /// The measurement begins; `shown` is the widget that shows the output.
    void begin(QWidget *shown)
    {
        m_idle = privateKibibytes();
        m_frames.watch(shown);
        m_start = m_lastTurn = std::chrono::steady_clock::now();
        m_heartbeat.start(1);
    }

    /// Everything has arrived and is held. The time that this takes does not count.
    void takeMemory()
    {
        const auto before = std::chrono::steady_clock::now();
        m_end = privateKibibytes();
        const auto taken = std::chrono::steady_clock::now() - before;
        m_start += taken;
        m_lastTurn += taken;
    }

    /// It ends with the frame that was painted last.
    void end()
    {
        m_heartbeat.stop();
        m_seconds = std::chrono::duration<double>(m_frames.last() - m_start).count();
        m_frameCount = m_frames.count();
    }

    void print(const char *what, qint64 bytes) const
    {
        printFigures(what,
                     {{"bytes", bytes},
                      {"seconds", m_seconds},
                      {"mib_per_second", static_cast<double>(bytes) / m_seconds / (1024 * 1024)},
                      {"gap_p99_ms", percentile(m_gaps, 0.99) * 1e3},
                      {"gap_worst_ms", percentile(m_gaps, 1) * 1e3},
                      {"frames", m_frameCount},
                      {"frames_per_second", m_frameCount / m_seconds},
                      {"idle_kib", m_idle},
                      {"end_kib", m_end},
                      {"bytes_per_byte", static_cast<double>(m_end - m_idle) * 1024 / static_cast<double>(bytes)}});
    }

private:
    FrameWatch &m_frames;
    QTimer m_heartbeat;
    std::vector<double> m_gaps;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_lastTurn;
    double m_seconds = 0;
    int m_frameCount = 0;
    long m_idle = 0;
    long m_end = 0;
};
